/*
 * Running queries: SQL text or a statement record goes in, a code and, for SELECT and COUNT, a rowset come
 * out.
 *
 * A query is applied at once; there are no connections to open and no transactions, and the calls for them
 * exist for the interface's sake. Every function may be called from any number of threads at once, each with
 * a statement and a rowset of its own. Codes of the parser (0xDB00), the executer (0xDB02, 0xDB04, 0xDB05,
 * 0xFFFF, 1) and the element tables (0x5241, 0x5243, the platform's own) come back unchanged, and each is
 * traced. A null argument is answered with 0xDB05. When the standard library cannot allocate, std::bad_alloc
 * passes through, with every block given back. Since 1.0.
 */
#ifndef QRYLIB_QUERY_H
#define QRYLIB_QUERY_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Runs the SELECT `sql` against the statement's database (the statement carries only the name) and fills
 * `rowset`, which must be empty; free it with qry_lib_db_rowset_term(). The cursor stands before the first
 * row. COUNT(*) gives one row with one column of type UINT. A text that is refused (0xDB00) leaves the rowset
 * untouched. 0x2001 and 0x2002: the result rowset could not be created or filled; 0xFFFF: the query over
 * several tables could not be split.
 */
QRY_LIB_API uint32_t qry_lib_db_exec_query(qry_lib_db_stmt_ *stmt, const char *sql,
                                           qry_lib_db_rowset_ *rowset);

/* Runs any other SQL text: DELETE FROM, DROP TABLE (deletes every record), CREATE (accepted, no effect). */
QRY_LIB_API uint32_t qry_lib_db_exec(qry_lib_db_stmt_ *stmt, const char *sql);

/* Runs a statement record of type SELECT into `rowset`, which must be empty. Like exec_query otherwise. */
QRY_LIB_API uint32_t qry_lib_db_stmt_exec_query(qry_lib_db_stmt_ *stmt, qry_lib_db_rowset_ *rowset);

/*
 * Runs a statement record of type INSERT, UPDATE or DELETE. An INSERT of an existing key overwrites its
 * record; without a free record it answers 0xDB04. An UPDATE that matches nothing answers 0xDB02, a DELETE
 * that matches nothing 0. Records written before a failure stay written.
 */
QRY_LIB_API uint32_t qry_lib_db_stmt_exec(qry_lib_db_stmt_ *stmt);

/* Copies `name` (at most 255 characters) into `out` (256 bytes). The words `a` and `b` are ignored. */
QRY_LIB_API uint32_t qry_lib_db_init_datasource(char *out, uint32_t a, uint32_t b, const char *name);

/* Copy `db_name` (at most 255 characters) into `out` (256 bytes). */
QRY_LIB_API uint32_t qry_lib_db_get_connection(const char *db_name, uint32_t ignored, char *out);
QRY_LIB_API uint32_t qry_lib_db_get_connection_keep(const char *db_name, uint32_t ignored, char *out);

/* Answer 0 and change nothing. */
QRY_LIB_API uint32_t qry_lib_db_get_connection_keep_start(const char *db_name);
QRY_LIB_API uint32_t qry_lib_db_disconnect(uint32_t connection);
QRY_LIB_API uint32_t qry_lib_db_disconnect_keep(uint32_t connection);
QRY_LIB_API uint32_t qry_lib_db_disconnect_keep_end(void);
QRY_LIB_API uint32_t qry_lib_db_commit(void);
QRY_LIB_API uint32_t qry_lib_db_rollback(void);

#ifdef __cplusplus
}
#endif

#endif
