/*
 * Device data beside the records: the version of stored data, the double-count setting, a stand-in for raw
 * device storage, and bytes as hexadecimal text.
 *
 * None of it goes through the query engine. Every function may be called from several threads at once; calls
 * that work on the same directory or file are not ordered among each other. Since 1.0.
 */
#ifndef QRYLIB_DEVICE_DATA_H
#define QRYLIB_DEVICE_DATA_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Data version: a number in the file "version" of a directory of the device's file store, 4 bytes, the most
 * significant first. `area` and `directory` are handed to the file store as they are.
 *
 * Failures of the file store come back as 5 (its code 1), 2 (its code 4), 3 (its code 35), 4 (its code 36) or
 * 257 (any other), and are written to the platform trace.
 */

/* Stores `version`, creating the directory when it is missing. 0, or a code as above. */
QRY_LIB_API uint32_t qry_lib_write_data_version(uint32_t area, uint32_t directory, uint32_t version);

/*
 * Makes sure that the directory holds data of version `expected`. 0: it does. 1: it did not, and was removed
 * WITH EVERYTHING IN IT and created anew with nothing but the version file: this is how stored data of an
 * earlier format is discarded. Otherwise a code as above. A version file that cannot be read for one of the
 * reasons 2, 3 and 4 leaves the directory alone; one that cannot be read for another reason counts as a
 * different version.
 */
QRY_LIB_API uint32_t qry_lib_check_data_version(uint32_t area, uint32_t directory, uint32_t expected);

/*
 * Reads the double-count mode (0 to 3) of one of the three kinds of setting (1 to 3) into `mode`. 0; 0x102:
 * no such kind, or null; 1: the element tables refused the setting's address; 2: they could not deliver it.
 * Failures are written to the platform trace.
 */
QRY_LIB_API uint32_t qry_lib_get_doublecount_mode(uint32_t kind, uint32_t *mode);

/*
 * Decides whether output of the measured `value` counts once (1) or twice (2), by the setting of `kind`: in
 * mode 0 always once, in modes 1, 2 and 3 twice above 4199, 3560 and 3299. `result` is written on success
 * only. 0; 0x102: value 0, no such kind, null, or a mode above 3; 1 and 2: the setting could not be had.
 * Failures are written to the platform trace.
 */
QRY_LIB_API uint32_t qry_lib_judge_doublecount(uint32_t value, uint32_t kind, uint32_t *result);

/*
 * Device access: byte-addressed storage kept in the file "test_file_debug.dat" of the process's current
 * directory. For debugging: short reads, short writes and a full disk are not reported.
 */

/* Creates the file with `size` zero bytes, unless it is there already; then its contents stay. */
QRY_LIB_API void qry_lib_dev_access_init(uint32_t size);

/*
 * Read and write `size` bytes at `offset` bytes from the start. `device` is ignored. 0; 1 when the file
 * cannot be opened, which is also said on standard output; 0x102 for a null buffer. What lies beyond the end
 * of the file is not read: those bytes of the buffer stay.
 */
QRY_LIB_API uint32_t qry_lib_dev_access_read(uint32_t device, uint32_t offset, void *buffer, uint32_t size);
QRY_LIB_API uint32_t qry_lib_dev_access_write(uint32_t device, uint32_t offset, const void *buffer,
                                              uint32_t size);

/*
 * Writes `count` bytes as two lower-case hexadecimal digits each, and a terminator: `out` holds at least
 * 2 * count + 1 characters. Null `bytes` read as no bytes; a null `out` is left alone.
 */
QRY_LIB_API void qry_lib_convert_to_Hex(char *out, const uint8_t *bytes, uint16_t count);

/*
 * Reads 2 * count hexadecimal digits of either case into `count` bytes. A pair with any other character gives
 * 0xFF and the conversion goes on, so `text` must hold all 2 * count characters. Nothing is written when
 * either pointer is null.
 */
QRY_LIB_API void qry_lib_convert_to_Bin(uint8_t *out, const char *text, uint16_t count);

#ifdef __cplusplus
}
#endif

#endif
