// The exported qry_lib_db_* functions: each forwards its arguments unchanged to its wrapper.
#include <qrylib/db_handle.h>
#include <qrylib/qrylib.h>

#include "api/qry_lib_db_wrapper.h"

extern "C" {

void qry_lib_db_stmt_init(qry_lib_db_stmt_ *stmt) {
    qry_lib_db_wrapper_stmt_init(stmt);
}
std::uint32_t qry_lib_db_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt) {
    return qry_lib_db_wrapper_get_stmt(db_name, stmt);
}
void qry_lib_db_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name) {
    qry_lib_db_wrapper_stmt_set_table_name(stmt, name);
}
void qry_lib_db_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type) {
    qry_lib_db_wrapper_stmt_set_exec_type(stmt, type);
}
void qry_lib_db_stmt_set_col_num(qry_lib_db_stmt_ *stmt, std::int32_t col_num) {
    qry_lib_db_wrapper_stmt_set_col_num(stmt, col_num);
}
void qry_lib_db_stmt_set_col_name(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *name) {
    qry_lib_db_wrapper_stmt_set_col_name(stmt, index, name);
}
void qry_lib_db_stmt_set_elem_as_int(qry_lib_db_stmt_ *stmt, std::int32_t index, std::int32_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_int(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_uchar(qry_lib_db_stmt_ *stmt, std::int32_t index, std::uint8_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_uchar(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_ushort(qry_lib_db_stmt_ *stmt, std::int32_t index, std::uint16_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_ushort(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_uint(qry_lib_db_stmt_ *stmt, std::int32_t index, std::uint32_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_uint(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_ulong(qry_lib_db_stmt_ *stmt, std::int32_t index, std::uint32_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_ulong(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *value) {
    qry_lib_db_wrapper_stmt_set_elem_as_str(stmt, index, value);
}
void qry_lib_db_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    qry_lib_db_wrapper_stmt_set_where_phrase(stmt, text);
}
void qry_lib_db_stmt_set_where_equal_int(qry_lib_db_stmt_ *stmt, const char *col_name, std::int32_t value) {
    qry_lib_db_wrapper_stmt_set_where_equal_int(stmt, col_name, value);
}
void qry_lib_db_stmt_set_where_equal_ulong(qry_lib_db_stmt_ *stmt, const char *col_name,
                                           std::uint32_t value) {
    qry_lib_db_wrapper_stmt_set_where_equal_ulong(stmt, col_name, value);
}
void qry_lib_db_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name, const char *value) {
    qry_lib_db_wrapper_stmt_set_where_equal_str(stmt, col_name, value);
}
void qry_lib_db_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    qry_lib_db_wrapper_stmt_set_orderby_phrase(stmt, text);
}
void qry_lib_db_stmt_set_max_rows(qry_lib_db_stmt_ *stmt, std::uint32_t max_rows) {
    qry_lib_db_wrapper_stmt_set_max_rows(stmt, max_rows);
}
void qry_lib_db_stmt_term(qry_lib_db_stmt_ *stmt) {
    qry_lib_db_wrapper_stmt_term(stmt);
}
std::uint32_t qry_lib_db_exec_query(qry_lib_db_stmt_ *stmt, const char *sql, qry_lib_db_rowset_ *rowset) {
    return qry_lib_db_wrapper_exec_query(stmt, sql, rowset);
}
std::uint32_t qry_lib_db_exec(qry_lib_db_stmt_ *stmt, const char *sql) {
    return qry_lib_db_wrapper_exec(stmt, sql);
}
std::uint32_t qry_lib_db_stmt_exec_query(qry_lib_db_stmt_ *stmt, qry_lib_db_rowset_ *rowset) {
    return qry_lib_db_wrapper_stmt_exec_query(stmt, rowset);
}
std::uint32_t qry_lib_db_stmt_exec(qry_lib_db_stmt_ *stmt) {
    return qry_lib_db_wrapper_stmt_exec(stmt);
}
std::uint32_t qry_lib_db_init_datasource(char *out, std::uint32_t a, std::uint32_t b, const char *name) {
    return qry_lib_db_wrapper_init_datasource(out, a, b, name);
}
std::uint32_t qry_lib_db_get_connection(const char *db_name, std::uint32_t ignored, char *out) {
    return qry_lib_db_wrapper_get_connection(db_name, ignored, out);
}
std::uint32_t qry_lib_db_get_connection_keep(const char *db_name, std::uint32_t ignored, char *out) {
    return qry_lib_db_wrapper_get_connection_keep(db_name, ignored, out);
}
std::uint32_t qry_lib_db_get_connection_keep_start(const char *db_name) {
    return qry_lib_db_wrapper_get_connection_keep_start(db_name);
}
std::uint32_t qry_lib_db_disconnect(std::uint32_t connection) {
    return qry_lib_db_wrapper_disconnect(connection);
}
std::uint32_t qry_lib_db_disconnect_keep(std::uint32_t connection) {
    return qry_lib_db_wrapper_disconnect_keep(connection);
}
std::uint32_t qry_lib_db_disconnect_keep_end(void) {
    return qry_lib_db_wrapper_disconnect_keep_end();
}
std::uint32_t qry_lib_db_commit(void) {
    return qry_lib_db_wrapper_commit();
}
std::uint32_t qry_lib_db_rollback(void) {
    return qry_lib_db_wrapper_rollback();
}
void qry_lib_db_rowset_init(qry_lib_db_rowset_ *rowset) {
    qry_lib_db_wrapper_rowset_init(rowset);
}
void qry_lib_db_rowset_term(qry_lib_db_rowset_ *rowset) {
    qry_lib_db_wrapper_rowset_term(rowset);
}
std::uint32_t qry_lib_db_rowset_next(qry_lib_db_rowset_ *rowset) {
    return qry_lib_db_wrapper_rowset_next(rowset);
}
void qry_lib_db_rowset_init_value(qry_lib_db_rowset_ *rowset) {
    qry_lib_db_wrapper_rowset_init_value(rowset);
}
std::uint16_t qry_lib_db_rowset_get_row_num(qry_lib_db_rowset_ *rowset) {
    return qry_lib_db_wrapper_rowset_get_row_num(rowset);
}
std::uint32_t qry_lib_db_rowset_get_ulong(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                          std::uint32_t default_value) {
    return qry_lib_db_wrapper_rowset_get_ulong(rowset, col_index, default_value);
}
std::uint32_t qry_lib_db_rowset_get_uint(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                         std::uint32_t default_value) {
    return qry_lib_db_wrapper_rowset_get_uint(rowset, col_index, default_value);
}
std::int32_t qry_lib_db_rowset_get_int(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                       std::int32_t default_value) {
    return qry_lib_db_wrapper_rowset_get_int(rowset, col_index, default_value);
}
void qry_lib_db_rowset_get_str(char *buffer, std::uint32_t buffer_len, qry_lib_db_rowset_ *rowset,
                               std::uint16_t col_index, const char *default_str) {
    qry_lib_db_wrapper_rowset_get_str(buffer, buffer_len, rowset, col_index, default_str);
}

std::uint32_t qry_lib_db_get_unused_id(const qry_lib_db_unused_id_param_ *param, std::uint32_t *id_out) {
    return qry_lib_db_wrapper_get_unused_id(param, id_out);
}

} // extern "C"
