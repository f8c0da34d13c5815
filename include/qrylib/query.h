/**
 * @file
 * Running queries: SQL text or a statement record goes in, a code and, for SELECT and COUNT, a rowset come
 * out.
 *
 * A query is applied at once; there are no connections to open and no transactions, and the calls for them
 * exist for the interface's sake. Every function may be called from any number of threads at once, each with
 * a statement and a rowset of its own. Codes of the parser (0xDB00), the executer (0xDB02, 0xDB04, 0xDB05,
 * 0xFFFF, 1) and the element tables (0x5241, 0x5243, the platform's own) come back unchanged, and each is
 * traced. A null argument is answered with 0xDB05. When the standard library cannot allocate, std::bad_alloc
 * passes through, with every block given back.
 *
 * @since 1.0
 */
#ifndef QRYLIB_QUERY_H
#define QRYLIB_QUERY_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Runs a SELECT.
 *
 * @param stmt    bound to the database with qry_lib_db_get_stmt(); carries nothing else
 * @param sql     the text; docs/dialect.md has the grammar
 * @param rowset  must be empty. Takes the rows, the cursor before the first; give them back with
 *                qry_lib_db_rowset_term(). COUNT(*) gives one row with one column of type UINT. A text that
 * is refused (0xDB00) leaves the rowset untouched
 * @return 0; 0x2001 and 0x2002: the result rowset could not be created or filled; 0xFFFF: the query over
 *         several tables could not be split; otherwise as above
 */
QRY_LIB_API uint32_t qry_lib_db_exec_query(qry_lib_db_stmt_ *stmt, const char *sql,
                                           qry_lib_db_rowset_ *rowset);

/**
 * Runs any other SQL text: DELETE FROM, DROP TABLE (deletes every record), CREATE (accepted, no effect).
 *
 * @param stmt  bound to the database with qry_lib_db_get_stmt(); carries nothing else
 * @param sql   the text; docs/dialect.md has the grammar
 * @return 0, or a code as above; records deleted before a failure stay deleted
 */
QRY_LIB_API uint32_t qry_lib_db_exec(qry_lib_db_stmt_ *stmt, const char *sql);

/**
 * Runs a statement record of type SELECT.
 *
 * @param stmt    the statement, which stays the caller's and may be run again
 * @param rowset  must be empty; as for qry_lib_db_exec_query()
 * @return as of qry_lib_db_exec_query()
 */
QRY_LIB_API uint32_t qry_lib_db_stmt_exec_query(qry_lib_db_stmt_ *stmt, qry_lib_db_rowset_ *rowset);

/**
 * Runs a statement record of type INSERT, UPDATE or DELETE. An INSERT of an existing key overwrites its
 * record. Records written before a failure stay written.
 *
 * @param stmt  the statement, which stays the caller's and may be run again
 * @return 0, for a DELETE that matches nothing too; 0xDB04: an INSERT without a free record; 0xDB02: an
 * UPDATE that matches nothing; otherwise as above
 */
QRY_LIB_API uint32_t qry_lib_db_stmt_exec(qry_lib_db_stmt_ *stmt);

/**
 * Copies a name: there is nothing to be initialised.
 *
 * @param out   256 bytes
 * @param a     ignored
 * @param b     ignored
 * @param name  at most 255 characters
 * @return 0; 0xDB05 for a null argument or a longer name
 */
QRY_LIB_API uint32_t qry_lib_db_init_datasource(char *out, uint32_t a, uint32_t b, const char *name);

/**
 * Copies a name: there are no connections.
 *
 * @param db_name  at most 255 characters
 * @param ignored  has no meaning
 * @param out      256 bytes
 * @return 0; 0xDB05 for a null argument or a longer name
 */
QRY_LIB_API uint32_t qry_lib_db_get_connection(const char *db_name, uint32_t ignored, char *out);

/**
 * Does what qry_lib_db_get_connection() does.
 *
 * @param db_name  at most 255 characters
 * @param ignored  has no meaning
 * @param out      256 bytes
 * @return 0; 0xDB05 for a null argument or a longer name
 */
QRY_LIB_API uint32_t qry_lib_db_get_connection_keep(const char *db_name, uint32_t ignored, char *out);

/**
 * Changes nothing.
 *
 * @param db_name  at most 255 characters
 * @return 0; 0xDB05 for null or a longer name
 */
QRY_LIB_API uint32_t qry_lib_db_get_connection_keep_start(const char *db_name);

/**
 * Changes nothing.
 *
 * @param connection  ignored
 * @return 0
 */
QRY_LIB_API uint32_t qry_lib_db_disconnect(uint32_t connection);

/**
 * Changes nothing.
 *
 * @param connection  ignored
 * @return 0
 */
QRY_LIB_API uint32_t qry_lib_db_disconnect_keep(uint32_t connection);

/**
 * Changes nothing.
 *
 * @return 0
 */
QRY_LIB_API uint32_t qry_lib_db_disconnect_keep_end(void);

/**
 * Changes nothing: every statement is applied at once.
 *
 * @return 0
 */
QRY_LIB_API uint32_t qry_lib_db_commit(void);

/**
 * Changes nothing, and takes nothing back.
 *
 * @return 0
 */
QRY_LIB_API uint32_t qry_lib_db_rollback(void);

#ifdef __cplusplus
}
#endif

#endif
