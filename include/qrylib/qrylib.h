/* Everything that a caller of libqrylib.so.1 needs. */
#ifndef QRYLIB_QRYLIB_H
#define QRYLIB_QRYLIB_H

#include <qrylib/statement.h>
#include <qrylib/types.h>

#endif
