/**
 * @file
 * Rowsets: walking the rows of a result and reading their columns.
 *
 * Order of calls: init once on a zero-filled record, a query, next until it answers 0 with the typed reads in
 * between, term. Columns are numbered from 0 in select-list order. A read that cannot be answered (cursor not
 * on a row, no such column, a type or sign that the read cannot return) is traced and gives the caller's
 * default. A rowset must not be used by two threads at once.
 *
 * @since 1.0
 */
#ifndef QRYLIB_ROWSET_H
#define QRYLIB_ROWSET_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Releases whatever the record holds and leaves it empty.
 *
 * @param rowset  the caller's record, zero-filled or valid
 */
QRY_LIB_API void qry_lib_db_rowset_init(qry_lib_db_rowset_ *rowset);

/**
 * Releases the rows and leaves the rowset empty. The record itself stays the caller's.
 *
 * @param rowset  the rowset
 */
QRY_LIB_API void qry_lib_db_rowset_term(qry_lib_db_rowset_ *rowset);

/**
 * Moves the cursor onto the next row.
 *
 * @param rowset  the rowset
 * @return 1; 0 at the end, where the cursor stays on the last row, and for null
 */
QRY_LIB_API uint32_t qry_lib_db_rowset_next(qry_lib_db_rowset_ *rowset);

/**
 * Puts the cursor back before the first row.
 *
 * @param rowset  the rowset
 */
QRY_LIB_API void qry_lib_db_rowset_init_value(qry_lib_db_rowset_ *rowset);

/**
 * Counts the rows.
 *
 * @param rowset  the rowset
 * @return the low 16 bits of the number of rows; 0 for null
 */
QRY_LIB_API uint16_t qry_lib_db_rowset_get_row_num(qry_lib_db_rowset_ *rowset);

/**
 * Reads a number of any type that is not negative.
 *
 * @param rowset         the rowset, its cursor on a row
 * @param col_index      the column, from 0
 * @param default_value  the answer where there is none: for a string or a negative number too
 * @return the number, or the default
 */
QRY_LIB_API uint32_t qry_lib_db_rowset_get_ulong(qry_lib_db_rowset_ *rowset, uint16_t col_index,
                                                 uint32_t default_value);

/**
 * Reads a number of any type but ULONG that is not negative.
 *
 * @param rowset         the rowset, its cursor on a row
 * @param col_index      the column, from 0
 * @param default_value  the answer where there is none: for a string, a ULONG or a negative number too
 * @return the number, or the default
 */
QRY_LIB_API uint32_t qry_lib_db_rowset_get_uint(qry_lib_db_rowset_ *rowset, uint16_t col_index,
                                                uint32_t default_value);

/**
 * Reads a number of any type below 2147483648.
 *
 * @param rowset         the rowset, its cursor on a row
 * @param col_index      the column, from 0
 * @param default_value  the answer where there is none: for a string or a greater number too
 * @return the number, or the default
 */
QRY_LIB_API int32_t qry_lib_db_rowset_get_int(qry_lib_db_rowset_ *rowset, uint16_t col_index,
                                              int32_t default_value);

/**
 * Reads a string. A numeric column is traced with 0xDB05 and read as its raw bytes, most significant first,
 * up to the first zero byte: an empty string for most small numbers.
 *
 * @param buffer       takes at most buffer_len - 1 characters and always a terminator
 * @param buffer_len   of the buffer, in bytes; a buffer of length 0 is never written
 * @param rowset       the rowset, its cursor on a row
 * @param col_index    the column, from 0
 * @param default_str  where there is no column to read: copied when it is no longer than the buffer (cut by
 * one character where it is as long), else the buffer stays. Null is the empty string
 */
QRY_LIB_API void qry_lib_db_rowset_get_str(char *buffer, uint32_t buffer_len, qry_lib_db_rowset_ *rowset,
                                           uint16_t col_index, const char *default_str);

#ifdef __cplusplus
}
#endif

#endif
