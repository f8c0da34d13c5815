/**
 * @file
 * The library's version and its return codes in words, for people and tools. The texts are constants of the
 * library, not to be freed. May be called from any thread.
 *
 * @since 1.0
 */
#ifndef QRYLIB_VERSION_H
#define QRYLIB_VERSION_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Tells the library's version.
 *
 * @return major, minor and patch number: "1.4.0"
 */
QRY_LIB_API const char *qry_lib_version(void);

/**
 * Tells what a return code means.
 *
 * @param code  as a function of the library returned it
 * @return one English sentence; for a code that is not the library's one that says so. Never null
 */
QRY_LIB_API const char *qry_lib_code_text(uint32_t code);

#ifdef __cplusplus
}
#endif

#endif
