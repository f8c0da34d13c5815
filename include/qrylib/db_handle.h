/**
 * @file
 * Database handles of threads, and free record ids.
 *
 * A thread that uses the platform's database service directly gets a handle of its own with
 * dsql_db_handle_add() and gives it up with dsql_db_handle_delete(). Queries through this library need none.
 * Every function may be called from several threads at once.
 *
 * @since 1.0
 */
#ifndef QRYLIB_DB_HANDLE_H
#define QRYLIB_DB_HANDLE_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Creates a database handle for the calling thread, to be dropped with dsql_db_handle_delete(). A second call
 * gives the thread a second handle, which hides the first until it is deleted.
 *
 * When the platform cannot create the handle, the entries of ALL threads are dropped and the service is
 * deregistered; every other failure leaves the entries as they were. Failures are written to the platform
 * trace.
 *
 * @return 0; -1 when there is no memory; otherwise the platform's code
 */
QRY_LIB_API int32_t dsql_db_handle_add(void);

/**
 * Drops the calling thread's newest entry; the handle itself belongs to the platform.
 *
 * @return 0; 1 when the thread has no entry, or the platform refused the mutex
 */
QRY_LIB_API int32_t dsql_db_handle_delete(void);

/**
 * What the platform's database-handle service calls to learn the calling thread's handle. Not for callers.
 *
 * @param head_cell  what the service was given at registration
 * @return the thread's newest handle; 0 when it has none
 */
QRY_LIB_API uint32_t dsql_db_handle_callback(void *head_cell);

/** Which id qry_lib_db_get_unused_id() looks for. The caller's, names included; only read. */
typedef struct {
    const char *db_name;    /**< database to search */
    const char *table_name; /**< table to search */
    const char *col_name;   /**< the id column, its values unique */
    uint32_t min_id;        /**< smallest id allowed */
    uint32_t max_id;        /**< largest id allowed */
    uint32_t max_count;     /**< no id is given when this many rows or more carry an id in the range */
    uint8_t id_kind;        /**< 1: 32-bit id, max_id up to 2147483647; 2: 16-bit id, max_id up to 32767 */
} qry_lib_db_unused_id_param_;

/**
 * Finds the smallest id in a range that no row of a table carries. Where no row carries an id in the range
 * the answer is `min_id`, whatever `max_count` is, and also where `min_id` is above `max_id`: a range without
 * ids has no rows. The id is not reserved: two callers may be given the same. Failures are written to the
 * platform trace.
 *
 * @param param   what to look for
 * @param id_out  the id; written on success only
 * @return 0; 0xDB05: null argument, unknown database, table or column, `id_kind` other than 1 and 2, `max_id`
 *         beyond its kind; 0xDB04: `max_count` rows or more in the range, or no gap up to `max_id`; 0xFFFF:
 * the names are too long for the query (255 characters); otherwise the code of the query
 */
QRY_LIB_API uint32_t qry_lib_db_get_unused_id(const qry_lib_db_unused_id_param_ *param, uint32_t *id_out);

#ifdef __cplusplus
}
#endif

#endif
