/**
 * @file
 * The records and enumerations that cross the library's boundary, and the names of the return codes.
 *
 * The records are plain: fixed-size character arrays, copied whole, no behaviour of their own. Their layout
 * is the same on every build but for the width of pointers. Numbers are in the machine's own byte order.
 *
 * @since 1.0
 */
#ifndef QRYLIB_TYPES_H
#define QRYLIB_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Return codes. Every code has a sentence in qry_lib_code_text() (version.h). */
#define QRY_LIB_OK 0x0000u                 /**< success */
#define QRY_LIB_NO_MEMORY 0x0001u          /**< the memory partition could not supply a block */
#define QRY_LIB_BAD_PARAMETER 0x0102u      /**< null argument, index or value out of range */
#define QRY_LIB_ROWSET_NOT_CREATED 0x2001u /**< the result rowset could not be created */
#define QRY_LIB_ROWSET_NOT_FILLED 0x2002u  /**< a value could not be stored into the result rowset */
#define QRY_LIB_TABLE_ARGUMENT 0x5241u     /**< element tables: argument refused */
#define QRY_LIB_TABLE_ACCESS 0x5243u       /**< element tables: a search could not be carried out */
#define QRY_LIB_NOT_ACCEPTED 0xDB00u       /**< the SQL text or the statement could not be analysed */
#define QRY_LIB_NO_SUCH_ITEM 0xDB02u       /**< index beyond the end, no such column, UPDATE of no row */
#define QRY_LIB_NO_FREE_ENTRY 0xDB04u      /**< no unused id in the range, no free record for an INSERT */
#define QRY_LIB_INVALID_ARGUMENT 0xDB05u   /**< argument null or too long; unknown database, table, column */
#define QRY_LIB_FAILURE 0xFFFFu            /**< a step that has no code of its own failed */

/* Capacities, in characters without the terminator. */
#define QRY_LIB_COLUMN_NAME_MAX 31 /**< a column's name */
#define QRY_LIB_TABLE_NAME_MAX 127 /**< a table's name */
#define QRY_LIB_DB_NAME_MAX 255    /**< a database's name */
#define QRY_LIB_STRING_MAX 2999    /**< a string value */

/*
 * Enumerations are 32 bits wide in both languages. In C++ the width is fixed, so that a value without an
 * enumerator (a tag above 5 in a caller's record) can be read and refused.
 */
#ifdef __cplusplus
#define QRY_LIB_32_BITS : uint32_t
#else
/** In C an enumeration is that wide by itself. */
#define QRY_LIB_32_BITS
#endif

/** Which member of a column's value is valid. A zero-filled column reads as the integer 0. */
typedef enum QRY_LIB_COLUMN_TYPE QRY_LIB_32_BITS {
    QRY_LIB_COLUMN_TYPE_INT = 0,    /**< int_value: signed, 32 bits */
    QRY_LIB_COLUMN_TYPE_UCHAR = 1,  /**< uchar_value: unsigned, 8 bits */
    QRY_LIB_COLUMN_TYPE_USHORT = 2, /**< ushort_value: unsigned, 16 bits */
    QRY_LIB_COLUMN_TYPE_UINT = 3,   /**< uint_value: unsigned, 32 bits */
    QRY_LIB_COLUMN_TYPE_ULONG = 4,  /**< ulong_value: unsigned, 32 bits (not readable through get_uint) */
    QRY_LIB_COLUMN_TYPE_STR = 5     /**< str_value: terminated string of at most 2999 characters */
} QRY_LIB_COLUMN_TYPE;

/** What a statement does. */
typedef enum QRY_LIB_DB_QUERY_TYPE QRY_LIB_32_BITS {
    QRY_LIB_DB_QUERY_TYPE_NONE = 0,   /**< not set: a freshly initialised statement */
    QRY_LIB_DB_QUERY_TYPE_INSERT = 1, /**< insert one row; an existing key is overwritten */
    QRY_LIB_DB_QUERY_TYPE_UPDATE = 2, /**< update the matching rows */
    QRY_LIB_DB_QUERY_TYPE_DELETE = 3, /**< delete the matching rows; DROP TABLE is a DELETE of all */
    QRY_LIB_DB_QUERY_TYPE_SELECT = 4, /**< select rows into a rowset */
    QRY_LIB_DB_QUERY_TYPE_COUNT = 5,  /**< count the matching rows: one row, one column of type UINT */
    QRY_LIB_DB_QUERY_TYPE_CREATE = 6  /**< accepted, without effect */
} QRY_LIB_DB_QUERY_TYPE;

/** How a condition compares. The gap is deliberate: the two list forms are expanded by the parser. */
typedef enum QRY_LIB_OPERATION_TYPE QRY_LIB_32_BITS {
    QRY_LIB_OPERATION_TYPE_EQUAL = 0,         /**< =  */
    QRY_LIB_OPERATION_TYPE_NOT_EQUAL = 1,     /**< != */
    QRY_LIB_OPERATION_TYPE_LESS = 2,          /**< <  */
    QRY_LIB_OPERATION_TYPE_GREATER = 3,       /**< >  */
    QRY_LIB_OPERATION_TYPE_LESS_EQUAL = 4,    /**< <= */
    QRY_LIB_OPERATION_TYPE_GREATER_EQUAL = 5, /**< >= */
    QRY_LIB_OPERATION_TYPE_LIKE = 6,          /**< LIKE: the value begins with the text */
    QRY_LIB_OPERATION_TYPE_IN = 98,           /**< IN: becomes EQUAL conditions joined by OR */
    QRY_LIB_OPERATION_TYPE_INLIKE = 99        /**< INLIKE: becomes LIKE conditions joined by OR */
} QRY_LIB_OPERATION_TYPE;

/** How a condition joins the others. A lone condition carries AND. 0 is not used. */
typedef enum QRY_LIB_JOIN_TYPE QRY_LIB_32_BITS {
    QRY_LIB_JOIN_TYPE_AND = 1, /**< a condition that fails ends the test without a hit */
    QRY_LIB_JOIN_TYPE_OR = 2   /**< a condition that holds ends the test with a hit */
} QRY_LIB_JOIN_TYPE;

/** Sort direction. The spelling is part of the interface. */
typedef enum QRY_LIB_ODER_TYPE QRY_LIB_32_BITS {
    QRY_LIB_ODER_TYPE_NOTHING = 0, /**< unsorted */
    QRY_LIB_ODER_TYPE_ASC = 1,     /**< the smallest first */
    QRY_LIB_ODER_TYPE_DESC = 2     /**< the greatest first */
} QRY_LIB_ODER_TYPE;

/** A value. Every member starts at the first byte. */
typedef union {
    int32_t int_value;                      /**< of type INT */
    uint8_t uchar_value;                    /**< of type UCHAR */
    uint16_t ushort_value;                  /**< of type USHORT */
    uint32_t uint_value;                    /**< of type UINT */
    uint32_t ulong_value;                   /**< of type ULONG */
    char str_value[QRY_LIB_STRING_MAX + 1]; /**< of type STR, terminated */
} QRY_LIB_COLUMN_VALUE;

/** One named, typed value: the unit of everything that the library stores and returns (3164 bytes). */
typedef struct {
    char col_name[QRY_LIB_COLUMN_NAME_MAX + 1];  /**< the column's name, terminated */
    QRY_LIB_COLUMN_VALUE value;                  /**< the value, in the member that `type` names */
    QRY_LIB_COLUMN_TYPE type;                    /**< the value's type */
    char table_name[QRY_LIB_TABLE_NAME_MAX + 1]; /**< tells columns of like name apart in a linked result */
} QRY_LIB_COLUMN;

/** One row: a counted array of columns. */
typedef struct {
    int32_t col_num;      /**< columns */
    QRY_LIB_COLUMN *cols; /**< the columns: one block, or null where there are none */
} QRY_LIB_RECORD;

/**
 * The statement that a caller builds with statement.h. The caller owns the record itself; the blocks that it
 * points to belong to the statement functions and go back with qry_lib_db_stmt_term().
 */
typedef struct {
    QRY_LIB_DB_QUERY_TYPE exec_type;       /**< what it does */
    char *table_name;                      /**< null until set; set once */
    QRY_LIB_RECORD record;                 /**< the columns to select, or the columns and values to write */
    char *orderby_phrase;                  /**< the sort phrase without its keywords, or null */
    char *where_phrase;                    /**< the condition without its keyword, or null */
    char db_name[QRY_LIB_DB_NAME_MAX + 1]; /**< the database */
} qry_lib_db_stmt_;

/**
 * The rows of a result. The caller owns the record itself, zero-filled before its first use; the rows belong
 * to the rowset functions and go back with qry_lib_db_rowset_term(). Every row has the same number of
 * columns.
 */
typedef struct {
    int32_t record_num;      /**< rows; callers see the low 16 bits */
    QRY_LIB_RECORD *records; /**< each row's columns are a block of their own */
    int32_t current;         /**< the row under the cursor; -1: before the first */
} qry_lib_db_rowset_;

#ifdef __cplusplus
}

static_assert(sizeof(QRY_LIB_COLUMN_TYPE) == 4 && sizeof(QRY_LIB_DB_QUERY_TYPE) == 4, "32-bit enumerations");
static_assert(sizeof(QRY_LIB_COLUMN_VALUE) == 3000, "the value union is 3000 bytes");
static_assert(sizeof(QRY_LIB_COLUMN) == 3164, "a column is 3164 bytes");
static_assert(offsetof(QRY_LIB_COLUMN, value) == 32 && offsetof(QRY_LIB_COLUMN, type) == 3032 &&
                  offsetof(QRY_LIB_COLUMN, table_name) == 3036,
              "a column's fields stand where every build has them");
#endif

#endif
