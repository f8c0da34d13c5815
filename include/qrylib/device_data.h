/**
 * @file
 * Device data beside the records: the version of stored data, the double-count setting, a stand-in for raw
 * device storage, and bytes as hexadecimal text.
 *
 * None of it goes through the query engine. Every function may be called from several threads at once; calls
 * that work on the same directory or file are not ordered among each other. No function hands out memory.
 *
 * The data version is a number in the file "version" of a directory of the device's file store, 4 bytes, the
 * most significant first. Failures of the file store come back as 5 (its code 1), 2 (its code 4), 3 (its code
 * 35), 4 (its code 36) or 257 (any other), and are written to the platform trace.
 *
 * Device access is byte-addressed storage kept in the file "test_file_debug.dat" of the process's current
 * directory. For debugging: short reads, short writes and a full disk are not reported.
 *
 * @since 1.0
 */
#ifndef QRYLIB_DEVICE_DATA_H
#define QRYLIB_DEVICE_DATA_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Stores a data version, creating the directory when it is missing.
 *
 * @param area       handed to the file store as it is
 * @param directory  handed to the file store as it is
 * @param version    the version
 * @return 0, or 2, 3, 4, 5 or 257 as above
 */
QRY_LIB_API uint32_t qry_lib_write_data_version(uint32_t area, uint32_t directory, uint32_t version);

/**
 * Makes sure that a directory holds data of one version: data of any other is discarded WITH EVERYTHING IN
 * THE DIRECTORY, which is created anew with nothing but the version file. A version file that cannot be read
 * for one of the reasons 2, 3 and 4 leaves the directory alone; one that cannot be read for another reason
 * counts as a different version.
 *
 * @param area       handed to the file store as it is
 * @param directory  handed to the file store as it is
 * @param expected   the version
 * @return 0: the directory held data of that version; 1: it did not, and does now; otherwise 2, 3, 4, 5 or
 * 257 as above
 */
QRY_LIB_API uint32_t qry_lib_check_data_version(uint32_t area, uint32_t directory, uint32_t expected);

/**
 * Reads a double-count mode. Failures are written to the platform trace.
 *
 * @param kind  of setting, 1 to 3
 * @param mode  the mode; 0 to 3 have a meaning
 * @return 0; 0x102: no such kind, or null; 1: the element tables refused the setting's address; 2: they could
 *         not deliver it
 */
QRY_LIB_API uint32_t qry_lib_get_doublecount_mode(uint32_t kind, uint32_t *mode);

/**
 * Decides whether output counts once or twice, by the setting: in mode 0 always once, in modes 1, 2 and 3
 * twice above 4199, 3560 and 3299. Failures are written to the platform trace.
 *
 * @param value   what was measured, above 0, in the unit of these limits
 * @param kind    of setting, 1 to 3
 * @param result  1: once, 2: twice; written on success only
 * @return 0; 0x102: value 0, no such kind, null, or a mode above 3; 1 and 2: the setting could not be had, as
 *         of qry_lib_get_doublecount_mode()
 */
QRY_LIB_API uint32_t qry_lib_judge_doublecount(uint32_t value, uint32_t kind, uint32_t *result);

/**
 * Creates the device-access file with zero bytes, unless it is there already; then its contents stay.
 *
 * @param size  of the file, in bytes
 */
QRY_LIB_API void qry_lib_dev_access_init(uint32_t size);

/**
 * Reads from the device-access file. What lies beyond its end is not read: those bytes of the buffer stay.
 *
 * @param device  ignored
 * @param offset  where to begin, in bytes from the start
 * @param buffer  at least `size` bytes
 * @param size    bytes to read
 * @return 0; 1 when the file cannot be opened, which is also said on standard output; 0x102 for a null buffer
 */
QRY_LIB_API uint32_t qry_lib_dev_access_read(uint32_t device, uint32_t offset, void *buffer, uint32_t size);

/**
 * Writes to the device-access file.
 *
 * @param device  ignored
 * @param offset  where to begin, in bytes from the start
 * @param buffer  at least `size` bytes
 * @param size    bytes to write
 * @return 0; 1 when the file cannot be opened, which is also said on standard output; 0x102 for a null buffer
 */
QRY_LIB_API uint32_t qry_lib_dev_access_write(uint32_t device, uint32_t offset, const void *buffer,
                                              uint32_t size);

/**
 * Writes bytes as two lower-case hexadecimal digits each, and a terminator.
 *
 * @param out    at least 2 * count + 1 characters; left alone when it is null
 * @param bytes  the bytes; null reads as no bytes
 * @param count  their number
 */
QRY_LIB_API void qry_lib_convert_to_Hex(char *out, const uint8_t *bytes, uint16_t count);

/**
 * Reads hexadecimal digits of either case into bytes. A pair with any other character gives 0xFF and the
 * conversion goes on. Nothing is written when either pointer is null.
 *
 * @param out    at least `count` bytes
 * @param text   all 2 * count characters
 * @param count  the number of bytes
 */
QRY_LIB_API void qry_lib_convert_to_Bin(uint8_t *out, const char *text, uint16_t count);

#ifdef __cplusplus
}
#endif

#endif
