/**
 * @file
 * The built-in schema, for people and tools. Databases, tables and columns are numbered from 0 in the order
 * in which they are stored; names are constants of the library, valid as long as it is loaded and not to be
 * freed. May be called from any thread.
 *
 * @since 1.0
 */
#ifndef QRYLIB_CATALOG_H
#define QRYLIB_CATALOG_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One column of a table. */
typedef struct {
    char name[40];  /**< the column's name, terminated */
    uint8_t type;   /**< #QRY_LIB_COLUMN_TYPE of the column in a rowset */
    uint16_t size;  /**< bytes stored, a string's terminator included */
    uint8_t is_key; /**< 1: part of the table's primary key; 0: not */
} qry_lib_catalog_column_;

/**
 * Counts the databases.
 *
 * @return their number
 */
QRY_LIB_API uint16_t qry_lib_catalog_db_num(void);

/**
 * Names a database.
 *
 * @param index  of the database, from 0
 * @return the name; null beyond the end
 */
QRY_LIB_API const char *qry_lib_catalog_db(uint16_t index);

/**
 * Counts the tables of a database.
 *
 * @param db_name  the database
 * @return the number of tables; 0 for null or an unknown database
 */
QRY_LIB_API uint16_t qry_lib_catalog_table_num(const char *db_name);

/**
 * Names a table.
 *
 * @param db_name  the database
 * @param index    of the table, from 0
 * @return the name; null beyond the end, for null or for an unknown database
 */
QRY_LIB_API const char *qry_lib_catalog_table(const char *db_name, uint16_t index);

/**
 * Counts the columns of a table.
 *
 * @param db_name     the database
 * @param table_name  the table
 * @return the number of columns; 0 for null or an unknown database or table
 */
QRY_LIB_API uint16_t qry_lib_catalog_column_num(const char *db_name, const char *table_name);

/**
 * Describes a column.
 *
 * @param db_name     the database
 * @param table_name  the table
 * @param index       of the column, from 0
 * @param out         the description; written on success only
 * @return 0; 0xDB02 beyond the end; 0xDB05 for a null argument, an unknown database or table
 */
QRY_LIB_API uint32_t qry_lib_catalog_column(const char *db_name, const char *table_name, uint16_t index,
                                            qry_lib_catalog_column_ *out);

/**
 * Tells how many records the device holds of a table, in use or free.
 *
 * @param db_name      the database
 * @param table_name   the table
 * @param max_records  the number; written on success only
 * @return 0; 0xDB05 for a null argument, an unknown database or table
 */
QRY_LIB_API uint32_t qry_lib_catalog_capacity(const char *db_name, const char *table_name,
                                              uint16_t *max_records);

#ifdef __cplusplus
}
#endif

#endif
