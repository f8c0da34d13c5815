/**
 * @file
 * Statement records: INSERT, UPDATE, DELETE and SELECT built field by field instead of written as SQL text.
 *
 * Order of calls: get_stmt, set_exec_type, set_table_name, set_col_num, then per column set_col_name and one
 * set_elem_as_*, the phrases as needed, an execution call (query.h), term.
 *
 * The setters only fill the record; names are checked against the schema when the statement is executed. They
 * return nothing: a refused call (null pointer, index outside the record, name or value beyond its capacity,
 * no memory) leaves the statement as it was and is written to the platform trace. Not thread-safe on one
 * statement; any number of statements may be built at once.
 *
 * @since 1.0
 */
#ifndef QRYLIB_STATEMENT_H
#define QRYLIB_STATEMENT_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Fills the record with zeros. Frees nothing: a statement that holds blocks takes qry_lib_db_stmt_term().
 *
 * @param stmt  the caller's record, with anything in it
 */
QRY_LIB_API void qry_lib_db_stmt_init(qry_lib_db_stmt_ *stmt);

/**
 * Initialises a statement and binds it to a database; qry_lib_db_stmt_term() ends it. Since 1.1 a
 * refused call leaves an initialised statement too, bound to no database: setters and term are safe on it.
 *
 * @param db_name  "adbk_db", "department_db", "usrac_db" or "log_db"; at most 255 characters, looked up when
 * the statement is executed
 * @param stmt     the caller's record, with anything in it
 * @return 0; 0xDB05 for a null argument or a longer name
 */
QRY_LIB_API uint32_t qry_lib_db_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt);

/**
 * Sets the table. The first name given wins; later calls do nothing.
 *
 * @param stmt  the statement
 * @param name  at most 127 characters, copied
 */
QRY_LIB_API void qry_lib_db_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name);

/**
 * Sets what the statement does.
 *
 * @param stmt  the statement
 * @param type  only INSERT, UPDATE, DELETE and SELECT can be executed
 */
QRY_LIB_API void qry_lib_db_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type);

/**
 * Sets the number of columns and drops every column name and value set so far.
 *
 * @param stmt     the statement
 * @param col_num  0 to 65535, for an INSERT, an UPDATE and a SELECT from 1; looked at when the statement is
 *                 executed
 */
QRY_LIB_API void qry_lib_db_stmt_set_col_num(qry_lib_db_stmt_ *stmt, int32_t col_num);

/**
 * Names a column. Its value stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param name   at most 31 characters, copied
 */
QRY_LIB_API void qry_lib_db_stmt_set_col_name(qry_lib_db_stmt_ *stmt, int32_t index, const char *name);

/**
 * Gives a column a signed number of 32 bits. Its name stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param value  the value
 */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_int(qry_lib_db_stmt_ *stmt, int32_t index, int32_t value);

/**
 * Gives a column an unsigned number of 8 bits. Its name stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param value  the value
 */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_uchar(qry_lib_db_stmt_ *stmt, int32_t index, uint8_t value);

/**
 * Gives a column an unsigned number of 16 bits. Its name stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param value  the value
 */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_ushort(qry_lib_db_stmt_ *stmt, int32_t index, uint16_t value);

/**
 * Gives a column an unsigned number of 32 bits. Its name stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param value  the value
 */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_uint(qry_lib_db_stmt_ *stmt, int32_t index, uint32_t value);

/**
 * Gives a column an unsigned number of 32 bits, of type ULONG. Its name stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param value  the value
 */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_ulong(qry_lib_db_stmt_ *stmt, int32_t index, uint32_t value);

/**
 * Gives a column a string. Its name stays.
 *
 * @param stmt   the statement
 * @param index  of the column, from 0 and below the number of columns
 * @param value  the value; at most 2999 characters, copied
 */
QRY_LIB_API void qry_lib_db_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, int32_t index, const char *value);

/**
 * Sets the condition. The block of an earlier phrase is not given back.
 *
 * @param stmt  the statement
 * @param text  without the word WHERE ("PSN_ID = 5"), copied
 */
QRY_LIB_API void qry_lib_db_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text);

/**
 * Sets the condition to one equality. An earlier condition is replaced, never added to.
 *
 * @param stmt      the statement
 * @param col_name  the column; the finished text must fit 255 characters
 * @param value     the number
 */
QRY_LIB_API void qry_lib_db_stmt_set_where_equal_int(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                     int32_t value);

/**
 * Sets the condition to one equality. An earlier condition is replaced, never added to.
 *
 * @param stmt      the statement
 * @param col_name  the column; the finished text must fit 255 characters
 * @param value     the number; 2147483648 and above is written as its negative counterpart, and compares
 * alike
 */
QRY_LIB_API void qry_lib_db_stmt_set_where_equal_ulong(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                       uint32_t value);

/**
 * Sets the condition to one equality. An earlier condition is replaced, never added to.
 *
 * @param stmt      the statement
 * @param col_name  the column; the finished text must fit 255 characters
 * @param value     the text; null and an empty one are refused
 */
QRY_LIB_API void qry_lib_db_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                     const char *value);

/**
 * Sets the sort phrase. The block of an earlier phrase is not given back.
 *
 * @param stmt  the statement
 * @param text  without the words ORDER BY ("PSN_ID DESC"), copied
 */
QRY_LIB_API void qry_lib_db_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text);

/**
 * Does nothing: a result has every row.
 *
 * @param stmt      ignored
 * @param max_rows  ignored
 */
QRY_LIB_API void qry_lib_db_stmt_set_max_rows(qry_lib_db_stmt_ *stmt, uint32_t max_rows);

/**
 * Gives back every block and fills the record with zeros, the database name included. The record itself stays
 * the caller's.
 *
 * @param stmt  the statement
 */
QRY_LIB_API void qry_lib_db_stmt_term(qry_lib_db_stmt_ *stmt);

#ifdef __cplusplus
}
#endif

#endif
