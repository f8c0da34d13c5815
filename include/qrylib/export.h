/* The mark of a function that libqrylib.so.1 exports. Everything else in the library is hidden. */
#ifndef QRYLIB_EXPORT_H
#define QRYLIB_EXPORT_H

#define QRY_LIB_API __attribute__((visibility("default")))

#endif
