/**
 * @file
 * File access: small files in the device's file store, addressed by an area, a directory and a name. The
 * values of area and directory come from the library's caller and are passed through.
 *
 * Codes: 0 done, or exists; 5 is not there. The library converts every other code for its caller: 1 to 5, 4
 * to 2, 35 to 3, 36 to 4, anything else to 257. May be called from several threads at once.
 */
#ifndef QRYLIB_PLATFORM_FILE_ACCESS_H
#define QRYLIB_PLATFORM_FILE_ACCESS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Tells whether a file exists, or a directory.
 *
 * @param area       as the caller gave it
 * @param directory  as the caller gave it
 * @param name       of the file; null asks for the directory itself
 * @return 0: it exists; 5: it does not; otherwise a code
 */
uint32_t fsa_fio_existfile(uint32_t area, uint32_t directory, const char *name);

/**
 * Creates a directory.
 *
 * @param area       as the caller gave it
 * @param directory  as the caller gave it
 * @return 0, or a code
 */
uint32_t fsa_fio_mkdir(uint32_t area, uint32_t directory);

/**
 * Removes a directory with everything in it.
 *
 * @param area       as the caller gave it
 * @param directory  as the caller gave it
 * @return 0, or a code
 */
uint32_t fsa_fio_remove(uint32_t area, uint32_t directory);

/**
 * Opens a file. The library closes it with fsa_fio_fclose().
 *
 * @param area       as the caller gave it
 * @param directory  as the caller gave it
 * @param name       of the file
 * @param mode       0: for reading; 1: for writing from its start
 * @param file       the number of the open file
 * @return 0, or a code; nothing is open then
 */
uint32_t fsa_fio_fopen(uint32_t area, uint32_t directory, const char *name, uint32_t mode, uint32_t *file);

/**
 * Reads from an open file.
 *
 * @param file    its number
 * @param buffer  at least `size` bytes
 * @param size    bytes to read
 * @return 0, or a code; a short read is a failure
 */
uint32_t fsa_fio_fread(uint32_t file, void *buffer, uint32_t size);

/**
 * Writes to an open file.
 *
 * @param file    its number
 * @param buffer  at least `size` bytes
 * @param size    bytes to write
 * @return 0, or a code; a short write is a failure
 */
uint32_t fsa_fio_fwrite(uint32_t file, const void *buffer, uint32_t size);

/**
 * Closes a file; called once for every file opened, after a failed read or write too.
 *
 * @param file  its number
 * @return 0, or a code
 */
uint32_t fsa_fio_fclose(uint32_t file);

#ifdef __cplusplus
}
#endif

#endif
