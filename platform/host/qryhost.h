/**
 * @file
 * The workstation's own controls: what a test, the shell or a caller under development uses to set the
 * simulated device up. Functions that return int answer 0, or non-zero with a sentence in qryhost_error().
 */
#ifndef QRYLIB_PLATFORM_HOST_QRYHOST_H
#define QRYLIB_PLATFORM_HOST_QRYHOST_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Opens the element store: private memory, which every process has until it asks for more unless
 * QRYLIB_IMAGE names an image, or a device image, which all processes that open it share. Refused while
 * another thread is inside a call or holds a list; the thread's own lists stay as they are. Values of private
 * memory are dropped; the store stays as it was when the new one is refused.
 *
 * An image that is not there is created, all zeros. It belongs to one build: one of another schema,
 * capacities, word size, byte order or C library is refused, as is any other file. One of the earlier format
 * version, one on a network file system and one that cannot be written are opened for reading; writes then
 * answer 0x5245, with the reason in qryhost_error(), and resetting or loading fails. The room on the disk is
 * reserved, and an opener waits no longer than a second for a file lock that another process holds.
 *
 * A process that is killed at any moment leaves every value old or new, and no lock behind. A value is one
 * element of one record: a statement, a reset or a load that changes several may have changed some of them.
 * One that is stopped keeps nobody who reads waiting, and those who write as long as qryhost_set_patience()
 * says. A process must not close the descriptors of an image that it goes on using.
 *
 * A child of fork has its parent's store: a copy of private memory as it is between two writes, or the same
 * image. Lists and the library's mutexes that other threads hold are not open there. A trace sink must not
 * fork.
 *
 * @param image_path  the image; null for private memory
 * @return 0, or non-zero
 */
int qryhost_open(const char *image_path);

/**
 * Closes the store; the next platform call opens the default one afresh. Refused while another thread is
 * inside a call or holds a list.
 *
 * @return 0, or non-zero
 */
int qryhost_close(void);

/**
 * Says how long a call waits for others that hold records of a device image: ten seconds unless this says
 * otherwise. Then a call that writes answers 0x5246, and resetting or loading fails; qryhost_error() says who
 * holds them. Who only reads does not wait for who writes.
 *
 * @param milliseconds  the longest wait, of all threads
 */
void qryhost_set_patience(uint32_t milliseconds);

/**
 * Puts every record, default record and setting back to its initial value: zeros.
 *
 * @return 0, or non-zero
 */
int qryhost_reset(void);

/**
 * Replaces records, default records and settings by those of a JSON file, whose format
 * platform/host/fixture.h describes. A file that is refused changes nothing.
 *
 * @param json_path  the file
 * @return 0, or non-zero
 */
int qryhost_load(const char *json_path);

/**
 * Writes records, default records and settings to a JSON file: to a temporary one beside it, which is synced
 * and renamed. A link is followed, the mode of a file that is there is kept and a new one is its owner's alone;
 * a device or a pipe is written through, and a SQLite file of another program is refused.
 *
 * @param json_path  the file; one that is there is replaced
 * @return 0, or non-zero
 */
int qryhost_save(const char *json_path);

/**
 * Does what qryhost_load() does, with a file's text.
 *
 * @param json  the text, terminated
 * @return 0, or non-zero
 */
int qryhost_load_text(const char *json);

/**
 * Called with the text of qryhost_save_text().
 *
 * @param context  as given to qryhost_save_text()
 * @param json     the text, terminated, valid during the call
 */
typedef void (*qryhost_text_sink)(void *context, const char *json);

/**
 * Hands over the text of the file that qryhost_save() writes.
 *
 * @param sink     called once, unless the call fails; not null
 * @param context  handed to the sink
 * @return 0, or non-zero
 */
int qryhost_save_text(qryhost_text_sink sink, void *context);

/**
 * Called for every finding of qryhost_check().
 *
 * @param context    as given to qryhost_check()
 * @param is_damage  0 for what is only worth knowing
 * @param text       one line without a line end, valid during the call
 */
typedef void (*qryhost_check_sink)(void *context, int is_damage, const char *text);

/**
 * Examines a device image without opening it as the store and without changing it: header, writes in
 * progress, the end of every string, primary keys that two records have, and free records.
 *
 * @param image_path  the image
 * @param sink        called for every finding; may be null
 * @param context     handed to the sink
 * @return 0; non-zero when there is damage, or the file is no image at all
 */
int qryhost_check(const char *image_path, qryhost_check_sink sink, void *context);

/**
 * Tells why the calling thread's last control call failed, or a later call of the element tables that
 * answered 0x5242 (there is no store), 0x5245 (it can only be read) or 0x5246 (others hold the records).
 *
 * @return one sentence, valid until the thread's next such call; "" when none failed. Never null
 */
const char *qryhost_error(void);

/**
 * Called for every trace line, one at a time, from the thread that traces. Must not trace, set a sink or
 * fork.
 *
 * @param context      as given to qryhost_set_trace_sink()
 * @param destination  as the library gave it: 0
 * @param module       as the library gave it: 258
 * @param level        as the library gave it: 2
 * @param text         one formatted line, valid during the call
 */
typedef void (*qryhost_trace_sink)(void *context, uint32_t destination, uint32_t module, uint32_t level,
                                   const char *text);

/**
 * Sends the traces somewhere else than where QRYLIB_TRACE says.
 *
 * @param sink     called for every line; null drops them
 * @param context  handed to the sink
 */
void qryhost_set_trace_sink(qryhost_trace_sink sink, void *context);

/**
 * Tells where the traces go, so that whoever sets a sink for a while can give the former one back.
 *
 * @param sink     takes the sink; null where traces are dropped
 * @param context  takes what is handed to it
 */
void qryhost_get_trace_sink(qryhost_trace_sink *sink, void **context);

/**
 * Counts the memory-partition blocks now in use.
 *
 * @return their number, of all threads
 */
uint32_t qryhost_pool_blocks(void);

/**
 * Tells the most bytes that the calling thread had taken and not given back at once since its last reset.
 *
 * @return bytes; those of each block are rounded up as the workstation keeps them
 */
uint64_t qryhost_pool_peak_bytes(void);

/** Starts the calling thread's peak anew, from what is held at this moment. */
void qryhost_pool_reset_peak(void);

/**
 * Tells the calling thread's database handle, as the database-handle service asks the library for it.
 *
 * @return the handle; 0 when the thread has none or no service is registered
 */
uint32_t qryhost_current_db_handle(void);

/**
 * The platform calls that can be made to fail, and are counted. Releases of what was taken before never fail.
 */
typedef enum {
    QRYHOST_ALLOC,            /**< pfwOSWOrgAllocMemPart */
    QRYHOST_CREATE_MUTEX,     /**< pfwOSWCreateMutexSem */
    QRYHOST_REQUEST_MUTEX,    /**< pfwOSWRequestMutexSem */
    QRYHOST_LOCK_TASK,        /**< pfwOSWLockTask */
    QRYHOST_GET_TABLE,        /**< tbctSTCGetTable */
    QRYHOST_SET_TABLE,        /**< tbctSTCSetTable, tbctSTCSetStatus */
    QRYHOST_INIT_TABLE,       /**< tbSTCInitTable, tbctResetTable */
    QRYHOST_GET_STATUS,       /**< tbctSTCGetStatus */
    QRYHOST_CREATE_LIST,      /**< tbctSTCCreateListTable */
    QRYHOST_LIST_SET_POS,     /**< tbctSTCListTableSetPos */
    QRYHOST_LIST_GET_VAL,     /**< tbctSTCListTableGetVal */
    QRYHOST_SORT,             /**< cmn_lib_sort */
    QRYHOST_CREATE_HANDLE,    /**< sdb_CreateDBHandle */
    QRYHOST_REGISTER_SERVICE, /**< sdb_RegisterDBHandleService */
    QRYHOST_FILE_EXIST,       /**< fsa_fio_existfile */
    QRYHOST_FILE_MKDIR,       /**< fsa_fio_mkdir */
    QRYHOST_FILE_REMOVE,      /**< fsa_fio_remove */
    QRYHOST_FILE_OPEN,        /**< fsa_fio_fopen */
    QRYHOST_FILE_READ,        /**< fsa_fio_fread */
    QRYHOST_FILE_WRITE,       /**< fsa_fio_fwrite */
    QRYHOST_FILE_CLOSE,       /**< fsa_fio_fclose */
    QRYHOST_CALL_NUM          /**< the number of kinds */
} qryhost_call;

/**
 * Makes platform calls of one kind fail, in all threads; forgets an earlier order for that kind.
 *
 * @param call   the kind
 * @param skip   calls that are let through first
 * @param times  calls that fail then
 * @param code   what they answer
 */
void qryhost_fail(qryhost_call call, uint32_t skip, uint32_t times, uint32_t code);

/** Ends every injected failure and sets the call counts to 0. */
void qryhost_fail_clear(void);

/**
 * Counts the platform calls of one kind.
 *
 * @param call  the kind
 * @return calls since the last qryhost_fail_clear(), of all threads
 */
uint32_t qryhost_call_count(qryhost_call call);

/**
 * Counts the calling thread's platform calls of one kind.
 *
 * @param call  the kind
 * @return calls since the thread began
 */
uint32_t qryhost_thread_call_count(qryhost_call call);

#ifdef __cplusplus
}
#endif

#endif
