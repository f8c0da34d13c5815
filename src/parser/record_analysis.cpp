// Statement records: what a caller built field by field becomes the same analyzed query that text becomes.
#include <cstring>

#include "parser/qry_lib_sql_parser.h"
#include "util/bounded_text.h"
#include "util/element_type.h"
#include "util/trace.h"

namespace norvane {

namespace {

// A table name that was never set is an empty one.
bool is_blank(const char *text) {
    return text == nullptr || text[0] == '\0';
}

// The caller's arrays end with a terminator.
bool is_within_capacity(const QRY_LIB_COLUMN &column) {
    return fits(column.col_name, QRY_LIB_COLUMN_NAME_MAX) &&
           (!is_string_element(column.type) || fits(column.value.str_value, QRY_LIB_STRING_MAX));
}

// Sets type, database and table. 0xDB00, traced, for a table name beyond its capacity.
std::uint32_t set_target(const char *function, QRY_LIB_DB_QUERY_TYPE type, const char *db_name,
                         const char *table, qry_lib_analyze_info &info) {
    if (!fits(table, QRY_LIB_TABLE_NAME_MAX)) {
        return refuse(function, __LINE__);
    }
    info.set_exec_type(type);
    info.set_db_name(db_name);
    info.set_table(table);
    return 0;
}

// Adds the record's columns; `nameless_line` is the point of a column without a name. Columns that were
// counted but never set have no names.
std::uint32_t add_columns(const char *function, int nameless_line, const QRY_LIB_RECORD &record,
                          qry_lib_analyze_info &info) {
    if (record.col_num > UINT16_MAX) {
        return refuse(function, __LINE__);
    }
    if (record.cols != nullptr && record.col_num > 0) {
        info.expect_cols(static_cast<std::size_t>(record.col_num));
    }
    for (std::int32_t i = 0; i < record.col_num; ++i) {
        if (record.cols == nullptr || record.cols[i].col_name[0] == '\0') {
            return refuse(function, nameless_line);
        }
        const QRY_LIB_COLUMN &column = record.cols[i];
        if (!is_within_capacity(column)) {
            return refuse(function, __LINE__);
        }
        info.add_cols(column.col_name, column.value, column.type);
    }
    return 0;
}

} // namespace

std::uint32_t qry_lib_sql_parser::analyze_param(const qry_lib_db_stmt_ *stmt,
                                                qry_lib_analyze_info &info) const {
    switch (stmt->exec_type) {
    case QRY_LIB_DB_QUERY_TYPE_INSERT:
        return analyze_param_insert(stmt->db_name, &stmt->record, stmt->table_name, info);
    case QRY_LIB_DB_QUERY_TYPE_UPDATE:
        return analyze_param_update(stmt->db_name, &stmt->record, stmt->table_name, stmt->where_phrase, info);
    case QRY_LIB_DB_QUERY_TYPE_DELETE:
        return analyze_param_delete(stmt->db_name, stmt->table_name, stmt->where_phrase, info);
    case QRY_LIB_DB_QUERY_TYPE_SELECT:
        return analyze_param_select(stmt->db_name, &stmt->record, stmt->table_name, stmt->where_phrase,
                                    stmt->orderby_phrase, info);
    default:
        return QRY_LIB_NOT_ACCEPTED;
    }
}

std::uint32_t qry_lib_sql_parser::analyze_param_insert(const char *db_name, const QRY_LIB_RECORD *record,
                                                       const char *table, qry_lib_analyze_info &info) const {
    if (is_blank(table) || record->col_num == 0) {
        return refuse(__func__, 757);
    }
    if (const std::uint32_t code = set_target(__func__, QRY_LIB_DB_QUERY_TYPE_INSERT, db_name, table, info);
        code != 0) {
        return code;
    }
    return add_columns(__func__, 774, *record, info);
}

std::uint32_t qry_lib_sql_parser::analyze_param_update(const char *db_name, const QRY_LIB_RECORD *record,
                                                       const char *table, const char *where,
                                                       qry_lib_analyze_info &info) const {
    if (is_blank(table) || record->col_num == 0) {
        return refuse(__func__, 812);
    }
    if (const std::uint32_t code = set_target(__func__, QRY_LIB_DB_QUERY_TYPE_UPDATE, db_name, table, info);
        code != 0) {
        return code;
    }
    if (const std::uint32_t code = add_columns(__func__, 829, *record, info); code != 0) {
        return code;
    }
    return is_blank(where) ? 0 : set_filter_str(where, info);
}

std::uint32_t qry_lib_sql_parser::analyze_param_delete(const char *db_name, const char *table,
                                                       const char *where, qry_lib_analyze_info &info) const {
    if (is_blank(table)) {
        return refuse(__func__, 872);
    }
    if (const std::uint32_t code = set_target(__func__, QRY_LIB_DB_QUERY_TYPE_DELETE, db_name, table, info);
        code != 0) {
        return code;
    }
    return is_blank(where) ? 0 : set_filter_str(where, info);
}

std::uint32_t qry_lib_sql_parser::analyze_param_select(const char *db_name, const QRY_LIB_RECORD *record,
                                                       const char *table, const char *where,
                                                       const char *order, qry_lib_analyze_info &info) const {
    // A negative count adds no columns to a change, but leaves a SELECT nothing to select.
    if (is_blank(table) || record->col_num <= 0) {
        return refuse(__func__, 668);
    }
    if (const std::uint32_t code = set_target(__func__, QRY_LIB_DB_QUERY_TYPE_SELECT, db_name, table, info);
        code != 0) {
        return code;
    }
    // As large as a table's name, which is the contract's size for it; a column's name is cut to its own.
    char first[QRY_LIB_TABLE_NAME_MAX + 1] = {};
    if (record->cols != nullptr) {
        copy_bounded<QRY_LIB_COLUMN_NAME_MAX>(static_cast<char *>(first), record->cols[0].col_name);
    }
    if (const std::uint32_t code = trim_space_all(first); code != 0) {
        return trace_return(__func__, 685, code);
    }
    if (std::strstr(first, "COUNT(*)") != nullptr) {
        info.set_exec_type(QRY_LIB_DB_QUERY_TYPE_COUNT);
    } else if (const std::uint32_t code = add_columns(__func__, 699, *record, info); code != 0) {
        return code;
    }
    if (!is_blank(where) && set_filter_str(where, info) != 0) {
        return refuse(__func__, 713);
    }
    if (!is_blank(order) && set_sort_str(order, info) != 0) {
        return refuse(__func__, 724);
    }
    return 0;
}

} // namespace norvane
