// The library's side: statements through the public functions, values through the element tables.
#include <qrylib/qrylib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "oracle/engines.h"
#include "platform/host/element_store.h"
#include "platform/host/qryhost.h"

namespace oracle {

namespace {

constexpr std::uint32_t requester = 0x2301;
constexpr std::size_t buffer_size = norvane::member_offset_max + sizeof(QRY_LIB_COLUMN_VALUE) + 1;

void require(bool holds, const char *what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

std::uint32_t read_element(const QRY_LIB_ELEMENT_INFO &info, int record, char *buffer) {
    return record == default_record
               ? qry_lib_tb_get_stc_default_table(info.category_id, info.element_id, buffer)
               : qry_lib_tb_get_stc_table(info.category_id, static_cast<std::uint32_t>(record),
                                          info.element_id, buffer);
}

std::uint32_t write_element(const QRY_LIB_ELEMENT_INFO &info, int record, const char *buffer) {
    return record == default_record
               ? qry_lib_tb_set_stc_default_table(requester, info.category_id, info.element_id, buffer)
               : qry_lib_tb_set_stc_table(requester, info.category_id, static_cast<std::uint32_t>(record),
                                          info.element_id, buffer);
}

// The number's bytes in the machine's order, as many as the element has.
std::uint32_t load(const char *from, std::size_t width) {
    std::uint8_t one = 0;
    std::uint16_t two = 0;
    std::uint32_t four = 0;
    std::memcpy(width == 1   ? static_cast<void *>(&one)
                : width == 2 ? static_cast<void *>(&two)
                             : &four,
                from, width);
    return width == 1 ? one : width == 2 ? two : four;
}

void store(char *to, std::uint32_t number, std::size_t width) {
    const auto one = static_cast<std::uint8_t>(number);
    const auto two = static_cast<std::uint16_t>(number);
    std::memcpy(to,
                width == 1   ? static_cast<const void *>(&one)
                : width == 2 ? static_cast<const void *>(&two)
                             : &number,
                width);
}

std::string number_value(const QRY_LIB_COLUMN &column) {
    switch (static_cast<std::uint32_t>(column.type)) {
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return std::to_string(column.value.uchar_value);
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return std::to_string(column.value.ushort_value);
    default:
        return std::to_string(column.value.ulong_value);
    }
}

std::vector<row> read_rows(const qry_lib_db_rowset_ &rowset) {
    std::vector<row> rows;
    for (std::int32_t r = 0; r < rowset.record_num; ++r) {
        row &read = rows.emplace_back();
        for (std::int32_t c = 0; c < rowset.records[r].col_num; ++c) {
            const QRY_LIB_COLUMN &column = rowset.records[r].cols[c];
            const bool is_text = column.type == QRY_LIB_COLUMN_TYPE_STR;
            read.push_back(cell_text(column.table_name, column.col_name, column.type,
                                     is_text ? column.value.str_value : number_value(column)));
        }
    }
    return rows;
}

void give_value(qry_lib_db_stmt_ &stmt, std::int32_t index, const given_value &value) {
    switch (value.type) {
    case QRY_LIB_COLUMN_TYPE_INT:
        return qry_lib_db_stmt_set_elem_as_int(&stmt, index, static_cast<std::int32_t>(value.number));
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return qry_lib_db_stmt_set_elem_as_uchar(&stmt, index, static_cast<std::uint8_t>(value.number));
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return qry_lib_db_stmt_set_elem_as_ushort(&stmt, index, static_cast<std::uint16_t>(value.number));
    case QRY_LIB_COLUMN_TYPE_UINT:
        return qry_lib_db_stmt_set_elem_as_uint(&stmt, index, value.number);
    case QRY_LIB_COLUMN_TYPE_ULONG:
        return qry_lib_db_stmt_set_elem_as_ulong(&stmt, index, value.number);
    default:
        return qry_lib_db_stmt_set_elem_as_str(&stmt, index, value.text.c_str());
    }
}

QRY_LIB_DB_QUERY_TYPE record_type(kind what) {
    switch (what) {
    case kind::insert:
        return QRY_LIB_DB_QUERY_TYPE_INSERT;
    case kind::update:
        return QRY_LIB_DB_QUERY_TYPE_UPDATE;
    case kind::remove:
    case kind::drop:
        return QRY_LIB_DB_QUERY_TYPE_DELETE;
    default:
        return QRY_LIB_DB_QUERY_TYPE_SELECT;
    }
}

void fill_record(qry_lib_db_stmt_ &stmt, const statement &made) {
    qry_lib_db_stmt_set_exec_type(&stmt, record_type(made.what));
    qry_lib_db_stmt_set_table_name(&stmt, made.from[0]->name.c_str());
    const std::size_t column_num = made.what == kind::count ? 1 : made.columns.size();
    qry_lib_db_stmt_set_col_num(&stmt, static_cast<std::int32_t>(column_num));
    for (std::size_t i = 0; i < made.columns.size(); ++i) {
        const auto index = static_cast<std::int32_t>(i);
        qry_lib_db_stmt_set_col_name(&stmt, index, made.columns[i].name.c_str());
        if (!made.values.empty()) {
            give_value(stmt, index, made.values[i]);
        }
    }
    if (made.what == kind::count) {
        qry_lib_db_stmt_set_col_name(&stmt, 0, "COUNT(*)");
    }
    if (const std::string where = where_text(made); !where.empty()) {
        qry_lib_db_stmt_set_where_phrase(&stmt, where.c_str());
    }
    if (!made.order.empty()) {
        qry_lib_db_stmt_set_orderby_phrase(&stmt, (made.order + (made.descends ? " DESC" : " ASC")).c_str());
    }
}

std::uint32_t execute(qry_lib_db_stmt_ &stmt, const statement &made, qry_lib_db_rowset_ &rowset) {
    if (made.by_record) {
        fill_record(stmt, made);
        return made.is_write() ? qry_lib_db_stmt_exec(&stmt) : qry_lib_db_stmt_exec_query(&stmt, &rowset);
    }
    const std::string sql = text_of(made);
    return made.is_write() ? qry_lib_db_exec(&stmt, sql.c_str())
                           : qry_lib_db_exec_query(&stmt, sql.c_str(), &rowset);
}

std::string element_value(const column_def &column, const char *value) {
    if (!column.is_text) {
        return std::to_string(load(value, column.info.size));
    }
    const void *end = std::memchr(value, '\0', column.info.size);
    return {value, end == nullptr ? column.info.size
                                  : static_cast<std::size_t>(static_cast<const char *>(end) - value)};
}

} // namespace

std::string cell_text(const std::string &table, const std::string &column, std::uint32_t type,
                      const std::string &value) {
    return table + "." + column + " " + std::to_string(type) + " [" + value + "]";
}

library::library() {
    qryhost_set_trace_sink(nullptr, nullptr);
    require(qryhost_reset() == 0, qryhost_error());
}

void library::put(const table_def &table, int record, const std::vector<given_value> &values) {
    for (std::size_t c = 0; c < values.size(); ++c) {
        const column_def &column = table.columns[c];
        alignas(8) char buffer[buffer_size] = {};
        require(read_element(column.info, record, buffer) == 0, "an element cannot be read");
        char *place = buffer + column.info.member_offset;
        if (column.is_text) {
            std::memcpy(place, values[c].text.c_str(), values[c].text.size() + 1);
        } else {
            store(place, values[c].number, column.info.size);
        }
        require(write_element(column.info, record, buffer) == 0, "an element cannot be written");
    }
}

answer library::run(const statement &made) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt(made.from[0]->database.c_str(), &stmt);
    qry_lib_db_rowset_ rowset{0, nullptr, -1};
    answer given{execute(stmt, made, rowset), {}};
    given.rows = read_rows(rowset);
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    require(qryhost_pool_blocks() == blocks, "blocks of the memory partition are lost");
    return given;
}

std::vector<row> library::content(const table_def &table) {
    std::vector<row> rows;
    for (int record = default_record; record < record_num; ++record) {
        row &read = rows.emplace_back();
        for (const column_def &column : table.columns) {
            alignas(8) char buffer[buffer_size] = {};
            require(read_element(column.info, record, buffer) == 0, "an element cannot be read");
            read.push_back(element_value(column, buffer + column.info.member_offset));
        }
    }
    return rows;
}

std::vector<std::uint8_t> library::save() {
    return qryhost::current_store()->snapshot();
}

void library::restore(const std::vector<std::uint8_t> &saved) {
    qryhost::current_store()->replace(saved);
}

} // namespace oracle
