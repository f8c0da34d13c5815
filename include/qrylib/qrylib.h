/* Everything that a caller of libqrylib.so.1 needs. */
#ifndef QRYLIB_QRYLIB_H
#define QRYLIB_QRYLIB_H

#include <qrylib/catalog.h>
#include <qrylib/element_table.h>
#include <qrylib/query.h>
#include <qrylib/rowset.h>
#include <qrylib/statement.h>
#include <qrylib/types.h>

#endif
