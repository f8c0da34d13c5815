/*
 * The database-handle service: gives a thread a handle, and asks the library which handle belongs to the
 * thread that is calling. It must not call back while it is registering, deregistering or creating a handle,
 * since the library then holds its own mutex.
 */
#ifndef QRYLIB_PLATFORM_DB_HANDLE_H
#define QRYLIB_PLATFORM_DB_HANDLE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Answers the calling thread's handle, 0 for none. `head_cell` is what was given at registration. */
typedef uint32_t (*sdb_db_handle_callback)(void *head_cell);

/*
 * Creates a handle and stores a code: 0, or why there is none. The service owns its handles; the library
 * never destroys one. A code other than 0 makes the library drop every thread's entry and deregister.
 */
uint32_t sdb_CreateDBHandle(int32_t *code);

/*
 * Registers the callback, to be called from any thread with `head_cell` until it is deregistered. 0 is
 * success; any other code is handed to the caller of dsql_db_handle_add.
 */
int32_t sdb_RegisterDBHandleService(sdb_db_handle_callback callback, void *head_cell);

/* Ends the registration. The library does not look at the result. */
int32_t sdb_DeregisterDBHandleService(void);

#ifdef __cplusplus
}
#endif

#endif
