// The exported qry_lib_db_* functions: each forwards its arguments unchanged to its wrapper.
#include <qrylib/qrylib.h>

#include "api/qry_lib_db_wrapper.h"

extern "C" {

void qry_lib_db_stmt_init(qry_lib_db_stmt_ *stmt) {
    qry_lib_db_wrapper_stmt_init(stmt);
}
uint32_t qry_lib_db_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt) {
    return qry_lib_db_wrapper_get_stmt(db_name, stmt);
}
void qry_lib_db_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name) {
    qry_lib_db_wrapper_stmt_set_table_name(stmt, name);
}
void qry_lib_db_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type) {
    qry_lib_db_wrapper_stmt_set_exec_type(stmt, type);
}
void qry_lib_db_stmt_set_col_num(qry_lib_db_stmt_ *stmt, int32_t col_num) {
    qry_lib_db_wrapper_stmt_set_col_num(stmt, col_num);
}
void qry_lib_db_stmt_set_col_name(qry_lib_db_stmt_ *stmt, int32_t index, const char *name) {
    qry_lib_db_wrapper_stmt_set_col_name(stmt, index, name);
}
void qry_lib_db_stmt_set_elem_as_int(qry_lib_db_stmt_ *stmt, int32_t index, int32_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_int(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_uchar(qry_lib_db_stmt_ *stmt, int32_t index, uint8_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_uchar(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_ushort(qry_lib_db_stmt_ *stmt, int32_t index, uint16_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_ushort(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_uint(qry_lib_db_stmt_ *stmt, int32_t index, uint32_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_uint(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_ulong(qry_lib_db_stmt_ *stmt, int32_t index, uint32_t value) {
    qry_lib_db_wrapper_stmt_set_elem_as_ulong(stmt, index, value);
}
void qry_lib_db_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, int32_t index, const char *value) {
    qry_lib_db_wrapper_stmt_set_elem_as_str(stmt, index, value);
}
void qry_lib_db_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    qry_lib_db_wrapper_stmt_set_where_phrase(stmt, text);
}
void qry_lib_db_stmt_set_where_equal_int(qry_lib_db_stmt_ *stmt, const char *col_name, int32_t value) {
    qry_lib_db_wrapper_stmt_set_where_equal_int(stmt, col_name, value);
}
void qry_lib_db_stmt_set_where_equal_ulong(qry_lib_db_stmt_ *stmt, const char *col_name, uint32_t value) {
    qry_lib_db_wrapper_stmt_set_where_equal_ulong(stmt, col_name, value);
}
void qry_lib_db_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name, const char *value) {
    qry_lib_db_wrapper_stmt_set_where_equal_str(stmt, col_name, value);
}
void qry_lib_db_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    qry_lib_db_wrapper_stmt_set_orderby_phrase(stmt, text);
}
void qry_lib_db_stmt_set_max_rows(qry_lib_db_stmt_ *stmt, uint32_t max_rows) {
    qry_lib_db_wrapper_stmt_set_max_rows(stmt, max_rows);
}
void qry_lib_db_stmt_term(qry_lib_db_stmt_ *stmt) {
    qry_lib_db_wrapper_stmt_term(stmt);
}

} // extern "C"
