// The functions behind the exported qry_lib_db_* calls. An exported call forwards its arguments unchanged to
// the wrapper of the same name; the wrapper checks them and does the work. C linkage, not exported.
#pragma once

#include <cstdint>

#include <qrylib/db_handle.h>
#include <qrylib/types.h>

extern "C" {

void qry_lib_db_wrapper_stmt_init(qry_lib_db_stmt_ *stmt);
std::uint32_t qry_lib_db_wrapper_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt);
void qry_lib_db_wrapper_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name);
void qry_lib_db_wrapper_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type);
void qry_lib_db_wrapper_stmt_set_col_num(qry_lib_db_stmt_ *stmt, std::int32_t col_num);

// Creates the zero-filled column array on first use. 0, or 1 when there is no memory.
std::uint32_t qry_lib_db_wrapper_stmt_set_alloc(qry_lib_db_stmt_ *stmt);

void qry_lib_db_wrapper_stmt_set_col_name(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *name);
void qry_lib_db_wrapper_stmt_set_elem_as_int(qry_lib_db_stmt_ *stmt, std::int32_t index, std::int32_t value);
void qry_lib_db_wrapper_stmt_set_elem_as_uchar(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                               std::uint8_t value);
void qry_lib_db_wrapper_stmt_set_elem_as_ushort(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                                std::uint16_t value);
void qry_lib_db_wrapper_stmt_set_elem_as_uint(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                              std::uint32_t value);
void qry_lib_db_wrapper_stmt_set_elem_as_ulong(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                               std::uint32_t value);
void qry_lib_db_wrapper_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *value);
void qry_lib_db_wrapper_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text);
void qry_lib_db_wrapper_stmt_set_where_equal_int(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                 std::int32_t value);
void qry_lib_db_wrapper_stmt_set_where_equal_ulong(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                   std::uint32_t value);
void qry_lib_db_wrapper_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                 const char *value);
void qry_lib_db_wrapper_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text);
void qry_lib_db_wrapper_stmt_set_max_rows(qry_lib_db_stmt_ *stmt, std::uint32_t max_rows);
void qry_lib_db_wrapper_stmt_term(qry_lib_db_stmt_ *stmt);

std::uint32_t qry_lib_db_wrapper_exec_query(qry_lib_db_stmt_ *stmt, const char *sql,
                                            qry_lib_db_rowset_ *rowset);
std::uint32_t qry_lib_db_wrapper_exec(qry_lib_db_stmt_ *stmt, const char *sql);
std::uint32_t qry_lib_db_wrapper_stmt_exec_query(qry_lib_db_stmt_ *stmt, qry_lib_db_rowset_ *rowset);
std::uint32_t qry_lib_db_wrapper_stmt_exec(qry_lib_db_stmt_ *stmt);
std::uint32_t qry_lib_db_wrapper_init_datasource(char *out, std::uint32_t a, std::uint32_t b,
                                                 const char *name);
std::uint32_t qry_lib_db_wrapper_get_connection(const char *db_name, std::uint32_t ignored, char *out);
std::uint32_t qry_lib_db_wrapper_get_connection_keep(const char *db_name, std::uint32_t ignored, char *out);
std::uint32_t qry_lib_db_wrapper_get_connection_keep_start(const char *db_name);
std::uint32_t qry_lib_db_wrapper_disconnect(std::uint32_t connection);
std::uint32_t qry_lib_db_wrapper_disconnect_keep(std::uint32_t connection);
std::uint32_t qry_lib_db_wrapper_disconnect_keep_end(void);
std::uint32_t qry_lib_db_wrapper_commit(void);
std::uint32_t qry_lib_db_wrapper_rollback(void);

void qry_lib_db_wrapper_rowset_init(qry_lib_db_rowset_ *rowset);
void qry_lib_db_wrapper_rowset_term(qry_lib_db_rowset_ *rowset);
std::uint32_t qry_lib_db_wrapper_rowset_next(qry_lib_db_rowset_ *rowset);
void qry_lib_db_wrapper_rowset_init_value(qry_lib_db_rowset_ *rowset);
std::uint16_t qry_lib_db_wrapper_rowset_get_row_num(qry_lib_db_rowset_ *rowset);
std::uint32_t qry_lib_db_wrapper_rowset_get_ulong(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                                  std::uint32_t default_value);
std::uint32_t qry_lib_db_wrapper_rowset_get_uint(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                                 std::uint32_t default_value);
std::int32_t qry_lib_db_wrapper_rowset_get_int(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                               std::int32_t default_value);
void qry_lib_db_wrapper_rowset_get_str(char *buffer, std::uint32_t buffer_len, qry_lib_db_rowset_ *rowset,
                                       std::uint16_t col_index, const char *default_str);

std::uint32_t qry_lib_db_wrapper_get_unused_id(const qry_lib_db_unused_id_param_ *param,
                                               std::uint32_t *id_out);

} // extern "C"
