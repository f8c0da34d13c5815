/* The library's version and its return codes in words, for people and tools. Since 1.0. */
#ifndef QRYLIB_VERSION_H
#define QRYLIB_VERSION_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* "1.0.0". A constant of the library. */
QRY_LIB_API const char *qry_lib_version(void);

/* One English sentence for each return code; for any other code a sentence that says so. Never null. */
QRY_LIB_API const char *qry_lib_code_text(uint32_t code);

#ifdef __cplusplus
}
#endif

#endif
