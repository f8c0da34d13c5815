/*
 * The workstation's own controls: what a test, the shell or a caller under development uses to set the
 * simulated device up. Functions that return int answer 0, or non-zero with a sentence in qryhost_error().
 */
#ifndef QRYLIB_PLATFORM_HOST_QRYHOST_H
#define QRYLIB_PLATFORM_HOST_QRYHOST_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Opens the element store: null for private memory (what every process has until it asks for more, unless
 * QRYLIB_IMAGE names an image), or the path of a device image, which all processes that open it share. Must
 * not run beside other platform calls. Values of private memory are dropped; the store stays as it was when
 * the new one is refused.
 *
 * An image that is not there is created, all zeros. It belongs to one build: one of another format version,
 * schema, capacities, word size or byte order is refused, as is any other file. An image that cannot be
 * written is opened for reading; writes then answer 0x5245, and resetting or loading fails.
 *
 * A process that is killed at any moment leaves every value old or new, and no lock behind. A value is one
 * element of one record: a statement, a reset or a load that changes several may have changed some of them.
 * A process must not close the descriptors of an image that it goes on using.
 */
int qryhost_open(const char *image_path);

/* Closes the store; the next platform call opens the default one afresh. */
int qryhost_close(void);

/* Puts every record, default record and setting back to its initial value: zeros. */
int qryhost_reset(void);

/*
 * Replaces records, default records and settings by those of a JSON file; a file that is refused changes
 * nothing. Saving writes a temporary file beside the target, syncs it and renames it. The format is described
 * in platform/host/fixture.h.
 */
int qryhost_load(const char *json_path);
int qryhost_save(const char *json_path);

/* Called for every finding with one line of text; `is_damage` is 0 for what is only worth knowing. */
typedef void (*qryhost_check_sink)(void *context, int is_damage, const char *text);

/*
 * Examines a device image without opening it as the store and without changing it: header, writes in
 * progress, the end of every string, primary keys that two records have, and free records. Fails when there
 * is damage, or the file is no image at all. `sink` may be null.
 */
int qryhost_check(const char *image_path, qryhost_check_sink sink, void *context);

/* Why the calling thread's last control call failed, in one sentence; "" when it did not. Never null. */
const char *qryhost_error(void);

/*
 * Called for every trace line, one at a time. `text` is one formatted line, valid during the call. A sink
 * must not trace and must not set a sink.
 */
typedef void (*qryhost_trace_sink)(void *context, uint32_t destination, uint32_t module, uint32_t level,
                                   const char *text);

/* Sends the traces to `sink` instead of where QRYLIB_TRACE says; null drops them. */
void qryhost_set_trace_sink(qryhost_trace_sink sink, void *context);

/* Memory-partition blocks now in use, in all threads. */
uint32_t qryhost_pool_blocks(void);

/*
 * The most bytes that the calling thread had taken and not given back at once since its last reset, as the
 * workstation's allocator rounds them. A reset starts from what is held at that moment.
 */
uint64_t qryhost_pool_peak_bytes(void);
void qryhost_pool_reset_peak(void);

/*
 * The calling thread's database handle, as the database-handle service asks the library for it; 0 when the
 * thread has none or no service is registered.
 */
uint32_t qryhost_current_db_handle(void);

/*
 * The platform calls that can be made to fail, and are counted. tbctResetTable counts as INIT_TABLE and
 * tbctSTCSetStatus as SET_TABLE. Releases of what was taken before never fail.
 */
typedef enum {
    QRYHOST_ALLOC,
    QRYHOST_CREATE_MUTEX,
    QRYHOST_REQUEST_MUTEX,
    QRYHOST_LOCK_TASK,
    QRYHOST_GET_TABLE,
    QRYHOST_SET_TABLE,
    QRYHOST_INIT_TABLE,
    QRYHOST_GET_STATUS,
    QRYHOST_CREATE_LIST,
    QRYHOST_LIST_SET_POS,
    QRYHOST_LIST_GET_VAL,
    QRYHOST_SORT,
    QRYHOST_CREATE_HANDLE,
    QRYHOST_REGISTER_SERVICE,
    QRYHOST_FILE_EXIST,
    QRYHOST_FILE_MKDIR,
    QRYHOST_FILE_REMOVE,
    QRYHOST_FILE_OPEN,
    QRYHOST_FILE_READ,
    QRYHOST_FILE_WRITE,
    QRYHOST_FILE_CLOSE,
    QRYHOST_CALL_NUM
} qryhost_call;

/* Lets `skip` calls of this kind through and fails the next `times` with `code`; forgets an earlier order. */
void qryhost_fail(qryhost_call call, uint32_t skip, uint32_t times, uint32_t code);

/* Ends every injected failure and sets the call counts to 0. */
void qryhost_fail_clear(void);

/* Calls of this kind since the last qryhost_fail_clear. */
uint32_t qryhost_call_count(qryhost_call call);

#ifdef __cplusplus
}
#endif

#endif
