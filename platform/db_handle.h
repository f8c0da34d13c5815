/**
 * @file
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

/**
 * Answers the calling thread's handle.
 *
 * @param head_cell  what was given at registration
 * @return the handle; 0 for none
 */
typedef uint32_t (*sdb_db_handle_callback)(void *head_cell);

/**
 * Creates a handle. The service owns its handles; the library never destroys one.
 *
 * @param code  0, or why there is none: then the library drops every thread's entry and deregisters
 * @return the handle
 */
uint32_t sdb_CreateDBHandle(int32_t *code);

/**
 * Registers the callback, to be called from any thread until it is deregistered.
 *
 * @param callback   what to call
 * @param head_cell  what to call it with
 * @return 0; any other code is handed to the caller of dsql_db_handle_add
 */
int32_t sdb_RegisterDBHandleService(sdb_db_handle_callback callback, void *head_cell);

/**
 * Ends the registration.
 *
 * @return a code that the library does not look at
 */
int32_t sdb_DeregisterDBHandleService(void);

#ifdef __cplusplus
}
#endif

#endif
