/**
 * @file
 * The mark of an exported function.
 */
#ifndef QRYLIB_EXPORT_H
#define QRYLIB_EXPORT_H

/** Marks a function that libqrylib.so.1 exports. Everything else in the library is hidden. */
#define QRY_LIB_API __attribute__((visibility("default")))

#endif
