/*
 * The built-in schema, for people and tools. Databases, tables and columns are numbered from 0 in the order
 * in which they are stored; names are constants of the library. May be called from any thread. Since 1.0.
 */
#ifndef QRYLIB_CATALOG_H
#define QRYLIB_CATALOG_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
    char name[40];
    uint8_t type;   /* QRY_LIB_COLUMN_TYPE of the column in a rowset */
    uint16_t size;  /* bytes stored, a string's terminator included */
    uint8_t is_key; /* 1: part of the table's primary key */
} qry_lib_catalog_column_;

QRY_LIB_API uint16_t qry_lib_catalog_db_num(void);

/* The database's name; null beyond the end. */
QRY_LIB_API const char *qry_lib_catalog_db(uint16_t index);

/* The number of tables; 0 for an unknown database. */
QRY_LIB_API uint16_t qry_lib_catalog_table_num(const char *db_name);

/* The table's name; null beyond the end or for an unknown database. */
QRY_LIB_API const char *qry_lib_catalog_table(const char *db_name, uint16_t index);

/* The number of columns; 0 for an unknown database or table. */
QRY_LIB_API uint16_t qry_lib_catalog_column_num(const char *db_name, const char *table_name);

/* Describes a column. 0; 0xDB02 beyond the end; 0xDB05 for a null argument, unknown database or table. */
QRY_LIB_API uint32_t qry_lib_catalog_column(const char *db_name, const char *table_name, uint16_t index,
                                            qry_lib_catalog_column_ *out);

/* The number of records that the device holds of a table. 0, or 0xDB05 as above. */
QRY_LIB_API uint32_t qry_lib_catalog_capacity(const char *db_name, const char *table_name,
                                              uint16_t *max_records);

#ifdef __cplusplus
}
#endif

#endif
