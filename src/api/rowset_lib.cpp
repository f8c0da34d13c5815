// Rowset storage and cursor.
#include <cstring>

#include "api/qry_lib_db_rowset_lib.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

namespace {

// Gives back the column arrays of the first `row_num` rows.
void free_columns(QRY_LIB_RECORD *records, std::int32_t row_num) {
    for (std::int32_t row = 0; row < row_num; ++row) {
        pool_block columns(records[row].cols);
    }
}

} // namespace

std::uint32_t qry_lib_db_rowset_lib::init_rowset(std::uint16_t col_num, std::uint16_t row_num,
                                                 qry_lib_db_rowset_ &rowset) const {
    if (col_num == 0) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    if (row_num == 0) {
        rowset.record_num = 0;
        rowset.current = -1;
        return 0;
    }
    pool_block rows;
    if (rows.take(row_num, sizeof(QRY_LIB_RECORD)) != 0) {
        return trace_return(__func__, __LINE__, QRY_LIB_NO_MEMORY);
    }
    QRY_LIB_RECORD *records = rows.as<QRY_LIB_RECORD>();
    for (std::int32_t row = 0; row < row_num; ++row) {
        pool_block columns;
        if (columns.take(col_num, sizeof(QRY_LIB_COLUMN)) != 0) {
            free_columns(records, row);
            rows.give_back();
            return trace_return(__func__, __LINE__, QRY_LIB_NO_MEMORY);
        }
        records[row].col_num = col_num;
        records[row].cols = static_cast<QRY_LIB_COLUMN *>(columns.release());
    }
    rowset.records = static_cast<QRY_LIB_RECORD *>(rows.release());
    rowset.record_num = row_num;
    rowset.current = -1;
    return 0;
}

void qry_lib_db_rowset_lib::delete_rowset(qry_lib_db_rowset_ &rowset) const {
    if (rowset.record_num != 0) {
        free_columns(rowset.records, rowset.record_num);
        pool_block rows(rowset.records);
        rowset.records = nullptr;
    }
    rowset.current = -1;
    rowset.record_num = 0;
}

std::uint32_t qry_lib_db_rowset_lib::set_col(qry_lib_db_rowset_ &rowset, std::uint16_t col_index,
                                             const QRY_LIB_COLUMN &column) const {
    QRY_LIB_COLUMN *place = col_at(rowset, col_index);
    if (place == nullptr) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    std::memcpy(place, &column, sizeof column);
    return 0;
}

std::uint32_t qry_lib_db_rowset_lib::get_col(const qry_lib_db_rowset_ &rowset, std::uint16_t col_index,
                                             QRY_LIB_COLUMN &column) const {
    const QRY_LIB_COLUMN *place = col_at(rowset, col_index);
    if (place == nullptr) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    std::memcpy(&column, place, sizeof column);
    return 0;
}

std::uint32_t qry_lib_db_rowset_lib::get_col_index(const qry_lib_db_rowset_ &rowset, const char *table_name,
                                                   const char *col_name, std::uint16_t &index) const {
    if (rowset.record_num <= 0) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    const QRY_LIB_RECORD &first = rowset.records[0];
    for (std::int32_t i = 0; i < first.col_num; ++i) {
        if (std::strcmp(first.cols[i].col_name, col_name) == 0 &&
            std::strcmp(first.cols[i].table_name, table_name) == 0) {
            index = static_cast<std::uint16_t>(i);
            return 0;
        }
    }
    return QRY_LIB_NO_SUCH_ITEM;
}

std::uint32_t qry_lib_db_rowset_lib::next_record_index(qry_lib_db_rowset_ &rowset) const {
    if (rowset.current >= rowset.record_num - 1) {
        return 0;
    }
    ++rowset.current;
    return 1;
}

} // namespace norvane
