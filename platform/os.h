/*
 * What the library asks of the operating-system wrapper: a memory partition, mutexes and a task lock.
 * Every function returns 0 for success. Every function may be called from several threads at once.
 */
#ifndef QRYLIB_PLATFORM_OS_H
#define QRYLIB_PLATFORM_OS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Takes a block of `size` bytes (never 0) from partition `part` (the library passes 0) and stores its address
 * through `block`, aligned for any fundamental type. The content is not cleared; the library clears what it
 * needs cleared. Any other code than 0 means that there is no block: `block` is then not read. The library
 * reports a refusal to its caller as code 1 in nearly every place and goes on working.
 */
uint32_t pfwOSWOrgAllocMemPart(uint32_t part, void **block, uint32_t size);

/* Gives a block back. The library never passes a null pointer and never reads the result. */
uint32_t pfwOSWOrgFreeMemPart(uint32_t part, void *block);

/*
 * Creates a mutex (called with option 0, count 1: free, one holder) and stores its identifier, which is never
 * 0. Called under the task lock, once in the life of a process. A failure is handed to the caller of
 * dsql_db_handle_add and tried again at the next call.
 */
uint32_t pfwOSWCreateMutexSem(uint32_t *mutex, uint32_t option, uint32_t count);

/* Takes the mutex; `timeout` is always -1: wait without a time limit. The same thread never takes it twice.
 */
uint32_t pfwOSWRequestMutexSem(uint32_t mutex, int32_t timeout);

/* Releases the mutex that the calling thread holds. */
uint32_t pfwOSWReleaseMutexSem(uint32_t mutex);

/*
 * Keeps the process's other threads from running library code between Lock and Unlock: held only while the
 * one mutex is created. A failing Lock is handed to the caller; Unlock then is not called.
 */
uint32_t pfwOSWLockTask(void);
uint32_t pfwOSWUnlockTask(void);

#ifdef __cplusplus
}
#endif

#endif
