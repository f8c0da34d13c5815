/**
 * @file
 * libqrylib.so.1: one SQL-like way to read and change the device's record stores.
 *
 * This header includes everything that a caller needs; link with -lqrylib. Conventions:
 *
 *  1. Codes. A function that can fail returns 0 or a code named in types.h; qry_lib_code_text() (version.h)
 *     has a sentence for each. Every failure is also written to the platform trace, innermost function first.
 *     Statement setters and typed rowset reads return no code: they report through the trace only.
 *  2. Ownership. Statement, rowset and parameter records belong to the caller, usually on its stack. The
 *     blocks behind them belong to the functions that made them and go back with the matching _term, _free or
 *     _delete call. No function keeps a pointer that it was given beyond its call.
 *  3. Lifetimes. A statement is bound with qry_lib_db_get_stmt() and ended with qry_lib_db_stmt_term(). A
 *     rowset is zero-filled, initialised, filled by one query, read, and ended with qry_lib_db_rowset_term()
 *     before the next query uses it.
 *  4. Threads. Every function may be called from any thread at any time, as long as no two threads share a
 *     statement, a rowset or a vector. The library keeps nothing between calls but the list of the threads'
 *     database handles, and starts no threads.
 *  5. Capacities, without the terminator: column name 31 characters (in a query over several tables it holds
 *     table, dot and column), table name 127, string value 2999, database name 255. Rows, columns, conditions
 *     and tables are counted in 16 bits. What is longer or more is refused, never cut.
 *  6. Text. Names, keywords and values are compared byte by byte; keywords are upper case; only the blank
 *     separates words. The library knows no character set. docs/dialect.md has the grammar.
 *  7. Numbers are in the machine's own byte order and 32 bits wide at most. Text becomes a number as by a
 *     32-bit strtol; an unsigned value above 2147483647 is written in decimal as a negative one.
 *  8. Failures half-way. There is no undo: what an INSERT, UPDATE or DELETE changed before it failed stays
 *     changed. A failed SELECT leaves the rowset empty.
 *  9. Exceptions. When the standard library cannot allocate, std::bad_alloc passes through the call, with
 *     every block given back.
 *
 * What the library does not do: transactions, connections (their calls answer 0), INSERT and UPDATE as text,
 * grouping, sorting by several columns or of a query over several tables, expressions, NULL, NOT, brackets in
 * conditions, column-to-column comparison within one table, escapes in strings, persistence.
 *
 * @since 1.0, like all that names no later version
 */
#ifndef QRYLIB_QRYLIB_H
#define QRYLIB_QRYLIB_H

#include <qrylib/catalog.h>
#include <qrylib/db_handle.h>
#include <qrylib/device_data.h>
#include <qrylib/element_table.h>
#include <qrylib/query.h>
#include <qrylib/rowset.h>
#include <qrylib/statement.h>
#include <qrylib/types.h>
#include <qrylib/vector.h>
#include <qrylib/version.h>

#endif
