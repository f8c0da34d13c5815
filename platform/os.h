/**
 * @file
 * What the library asks of the operating-system wrapper: a memory partition, mutexes and a task lock.
 * Every function returns 0 for success. Every function may be called from several threads at once.
 */
#ifndef QRYLIB_PLATFORM_OS_H
#define QRYLIB_PLATFORM_OS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Takes a block from the memory partition. It need not be cleared. After a refusal the library traces it,
 * gives back what it holds and goes on working. What the block was for decides which code its caller gets: 1,
 * 0xDB00, 0xDB05, 0x2001, 0x5243 or -1; the setters of a statement record have none, and leave their field.
 *
 * @param part   the partition; the library passes 0
 * @param block  the block, aligned for any fundamental type; not read after a refusal
 * @param size   bytes, never 0
 * @return 0; any other code: there is no block
 */
uint32_t pfwOSWOrgAllocMemPart(uint32_t part, void **block, uint32_t size);

/**
 * Gives a block back.
 *
 * @param part   the partition; the library passes 0
 * @param block  the block, never null
 * @return a code that the library does not look at
 */
uint32_t pfwOSWOrgFreeMemPart(uint32_t part, void *block);

/**
 * Creates a mutex. Called under the task lock, once in the life of a process.
 *
 * @param mutex   its identifier, never 0
 * @param option  0
 * @param count   1: free, for one holder
 * @return 0; any other code is handed to the caller of dsql_db_handle_add, whose next call tries again
 */
uint32_t pfwOSWCreateMutexSem(uint32_t *mutex, uint32_t option, uint32_t count);

/**
 * Takes a mutex. The same thread never takes it twice.
 *
 * @param mutex    its identifier
 * @param timeout  always -1: wait without a limit
 * @return 0, or a code
 */
uint32_t pfwOSWRequestMutexSem(uint32_t mutex, int32_t timeout);

/**
 * Releases a mutex.
 *
 * @param mutex  its identifier; the calling thread holds it
 * @return a code that the library does not look at
 */
uint32_t pfwOSWReleaseMutexSem(uint32_t mutex);

/**
 * Keeps the process's other threads from running library code until pfwOSWUnlockTask(): held only while the
 * one mutex is created.
 *
 * @return 0; any other code is handed to the caller, and the lock is not undone
 */
uint32_t pfwOSWLockTask(void);

/**
 * Ends what pfwOSWLockTask() began.
 *
 * @return a code that the library does not look at
 */
uint32_t pfwOSWUnlockTask(void);

#ifdef __cplusplus
}
#endif

#endif
