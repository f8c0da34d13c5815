/*
 * Statement records: INSERT, UPDATE, DELETE and SELECT built field by field instead of written as SQL text.
 *
 * Order of calls: get_stmt, set_exec_type, set_table_name, set_col_num, then per column set_col_name and one
 * set_elem_as_*, the phrases as needed, an execution call (query.h), term.
 *
 * The setters only fill the record; names are checked against the schema when the statement is executed. They
 * return nothing: a refused call (null pointer, index outside the record, name or value beyond its capacity,
 * no memory) leaves the statement as it was and is written to the platform trace. Not thread-safe on one
 * statement; any number of statements may be built at once. Since 1.0.
 */
#ifndef QRYLIB_STATEMENT_H
#define QRYLIB_STATEMENT_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Fills the record with zeros. Frees nothing: use term on a statement that holds blocks. */
QRY_LIB_API void qry_lib_db_stmt_init(qry_lib_db_stmt_ *stmt);

/*
 * Initialises the statement and binds it to a database ("adbk_db", "department_db", "usrac_db" or "log_db").
 * Returns 0, or 0xDB05 for a null argument or a name of more than 255 characters.
 */
QRY_LIB_API uint32_t qry_lib_db_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt);

/* Sets the table (at most 127 characters). The first name given wins; later calls do nothing. */
QRY_LIB_API void qry_lib_db_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name);

/* Sets what the statement does; only INSERT, UPDATE, DELETE and SELECT can be executed. */
QRY_LIB_API void qry_lib_db_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type);

/* Sets the number of columns and drops every column name and value set so far. */
QRY_LIB_API void qry_lib_db_stmt_set_col_num(qry_lib_db_stmt_ *stmt, int32_t col_num);

/* Names column `index` (0 <= index < col_num; at most 31 characters). Its value stays. */
QRY_LIB_API void qry_lib_db_stmt_set_col_name(qry_lib_db_stmt_ *stmt, int32_t index, const char *name);

/* Give column `index` a value and its type. The name stays. A string has at most 2999 characters. */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_int(qry_lib_db_stmt_ *stmt, int32_t index, int32_t value);
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_uchar(qry_lib_db_stmt_ *stmt, int32_t index, uint8_t value);
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_ushort(qry_lib_db_stmt_ *stmt, int32_t index, uint16_t value);
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_uint(qry_lib_db_stmt_ *stmt, int32_t index, uint32_t value);
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_ulong(qry_lib_db_stmt_ *stmt, int32_t index, uint32_t value);
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, int32_t index, const char *value);

/*
 * Sets the condition, without the word WHERE ("PSN_ID = 5"). The text is copied. The block of an earlier
 * phrase is not given back.
 */
QRY_LIB_API void qry_lib_db_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text);

/*
 * Set the condition to one equality. An earlier condition is replaced, never added to. The finished text must
 * fit 255 characters. An unsigned value of 2147483648 and above is written as its negative counterpart, which
 * compares alike. A null or empty string is refused.
 */
QRY_LIB_API void qry_lib_db_stmt_set_where_equal_int(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                     int32_t value);
QRY_LIB_API void qry_lib_db_stmt_set_where_equal_ulong(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                       uint32_t value);
QRY_LIB_API void qry_lib_db_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                     const char *value);

/*
 * Sets the sort phrase, without the words ORDER BY ("PSN_ID DESC"). The text is copied. The block of an
 * earlier phrase is not given back.
 */
QRY_LIB_API void qry_lib_db_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text);

/* Accepted and ignored. */
QRY_LIB_API void qry_lib_db_stmt_set_max_rows(qry_lib_db_stmt_ *stmt, uint32_t max_rows);

/* Gives back every block and fills the record with zeros, the database name included. */
QRY_LIB_API void qry_lib_db_stmt_term(qry_lib_db_stmt_ *stmt);

#ifdef __cplusplus
}
#endif

#endif
