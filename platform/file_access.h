/*
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

/* 0: the file exists, or, with a null name, the directory itself; 5: it does not. */
uint32_t fsa_fio_existfile(uint32_t area, uint32_t directory, const char *name);

/* Creates the directory. */
uint32_t fsa_fio_mkdir(uint32_t area, uint32_t directory);

/* Removes the directory with everything in it. */
uint32_t fsa_fio_remove(uint32_t area, uint32_t directory);

/* Opens a file, mode 0 for reading, 1 for writing from its start, and stores its number. */
uint32_t fsa_fio_fopen(uint32_t area, uint32_t directory, const char *name, uint32_t mode, uint32_t *file);

/* Read and write `size` bytes. A short read or write is a failure. */
uint32_t fsa_fio_fread(uint32_t file, void *buffer, uint32_t size);
uint32_t fsa_fio_fwrite(uint32_t file, const void *buffer, uint32_t size);

/* Closes a file; called once for every file opened, after a failed read or write too. */
uint32_t fsa_fio_fclose(uint32_t file);

#ifdef __cplusplus
}
#endif

#endif
