// Each column of each row through the typed read that its type tag asks for.
#include "tools/text/result_reader.h"

#include <array>

#include "tools/text/column_titles.h"

namespace qrytext {

namespace {

std::string read_text(qry_lib_db_rowset_ &rows, std::uint16_t index) {
    std::array<char, QRY_LIB_STRING_MAX + 1> buffer{};
    qry_lib_db_rowset_get_str(buffer.data(), static_cast<std::uint32_t>(buffer.size()), &rows, index, "");
    return buffer.data();
}

cell read_cell(qry_lib_db_rowset_ &rows, std::uint16_t index, QRY_LIB_COLUMN_TYPE type) {
    switch (type) {
    case QRY_LIB_COLUMN_TYPE_INT:
        return std::int64_t{qry_lib_db_rowset_get_int(&rows, index, 0)};
    case QRY_LIB_COLUMN_TYPE_STR:
        return read_text(rows, index);
    default:
        return std::int64_t{qry_lib_db_rowset_get_ulong(&rows, index, 0)};
    }
}

std::vector<cell> read_row(qry_lib_db_rowset_ &rows, const QRY_LIB_RECORD &row) {
    std::vector<cell> cells;
    cells.reserve(static_cast<std::size_t>(row.col_num));
    for (std::int32_t i = 0; i < row.col_num; ++i) {
        cells.push_back(read_cell(rows, static_cast<std::uint16_t>(i), row.cols[i].type));
    }
    return cells;
}

std::vector<column_name> named_columns(const QRY_LIB_RECORD &row) {
    std::vector<column_name> columns;
    columns.reserve(static_cast<std::size_t>(row.col_num));
    for (std::int32_t i = 0; i < row.col_num; ++i) {
        columns.push_back({row.cols[i].table_name, row.cols[i].col_name});
    }
    return columns;
}

} // namespace

result read_result(qry_lib_db_rowset_ &rows, std::string_view sql) {
    const bool empty = rows.record_num == 0;
    result answer{make_titles(empty ? select_list(sql) : named_columns(rows.records[0])), {}};
    qry_lib_db_rowset_init_value(&rows);
    while (qry_lib_db_rowset_next(&rows) != 0) {
        answer.rows.push_back(read_row(rows, rows.records[rows.current]));
    }
    return answer;
}

} // namespace qrytext
