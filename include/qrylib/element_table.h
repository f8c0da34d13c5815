/**
 * @file
 * Element tables: reading, writing, resetting and searching the device's records without the query engine.
 *
 * A category is one table, a record one row of it, an element one column. Records are numbered from 0 here
 * (the platform counts from 1; its record 0 is the category's default record). Codes of the platform come
 * back unchanged; 0x5241 is an argument that is refused here, 0x5243 a search that could not be carried out.
 * A value buffer holds the element's whole value, in the machine's own byte order; a composite element is as
 * large as its farthest member. A buffer must not be null: the platform is given it as it is. Every function
 * may be called from several threads at once.
 *
 * @since 1.0
 */
#ifndef QRYLIB_ELEMENT_TABLE_H
#define QRYLIB_ELEMENT_TABLE_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One search condition (3020 bytes). The caller's; only read. */
typedef struct {
    uint32_t category_id;               /**< the table */
    uint32_t element_id;                /**< the column */
    uint8_t elem_type;                  /**< 0, 3, 4: 32 bits; 1: 8 bits; 2: 16 bits; 5, 6: string */
    uint8_t cmp_size;                   /**< bytes compared of a number */
    uint16_t member_offset;             /**< where the value lies inside a composite element, in bytes */
    char value[QRY_LIB_STRING_MAX + 1]; /**< a number in the element's own width, or a terminated string */
    QRY_LIB_OPERATION_TYPE operation;   /**< EQUAL to LIKE; LIKE for strings, < > <= >= for numbers only */
    QRY_LIB_JOIN_TYPE join; /**< AND or OR with the conditions that follow, strictly left to right */
} qry_lib_tb_list_filter_key_;

/** The records that a search found: a block of 16-bit record numbers, ascending. 0: none. */
typedef uintptr_t qry_lib_tb_search_id;

/**
 * Compares as string values and names are: bytes as signed numbers.
 *
 * @param a  a terminated string
 * @param b  a terminated string
 * @return -1, 0 or 1
 */
QRY_LIB_API int qry_lib_tb_strcmp(const char *a, const char *b);

/**
 * Compares the beginnings of two strings, bytes as signed numbers.
 *
 * @param a  a terminated string
 * @param b  a terminated string
 * @param n  positions compared at most; all of them, when it is above 65535
 * @return -1, 0 or 1; 0 whenever `a` is a prefix of `b`, or n is 0
 */
QRY_LIB_API int qry_lib_tb_strncmp(const char *a, const char *b, uint32_t n);

/**
 * Reads one element of a record.
 *
 * @param category  the table
 * @param record    from 0
 * @param element   the column
 * @param buffer    at least as large as the element
 * @return 0; 0x5241 for record 0xFFFFFFFF; otherwise the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_table(uint32_t category, uint32_t record, uint32_t element,
                                              void *buffer);

/**
 * Reads one string of a record.
 *
 * @param category  the table
 * @param record    from 0
 * @param element   the column
 * @param buffer    at least as large as the element; a terminator is put at size - 1
 * @param size      of the buffer, in bytes
 * @return 0; 0x5241 for record 0xFFFFFFFF; otherwise the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_table_str(uint32_t category, uint32_t record, uint32_t element,
                                                  char *buffer, uint32_t size);

/**
 * Writes one element of a record.
 *
 * @param requester  who writes, for the platform
 * @param category   the table
 * @param record     from 0
 * @param element    the column
 * @param buffer     the whole element, the bytes behind a shorter string zero
 * @return 0; 0x5241 for record 0xFFFFFFFF; otherwise the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_set_stc_table(uint32_t requester, uint32_t category, uint32_t record,
                                              uint32_t element, const void *buffer);

/**
 * Reads one element of the category's default record.
 *
 * @param category  the table
 * @param element   the column
 * @param buffer    at least as large as the element
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_default_table(uint32_t category, uint32_t element, void *buffer);

/**
 * Reads one string of the category's default record.
 *
 * @param category  the table
 * @param element   the column
 * @param buffer    at least as large as the element; a terminator is put at size - 1
 * @param size      of the buffer, in bytes
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_default_table_str(uint32_t category, uint32_t element, char *buffer,
                                                          uint32_t size);

/**
 * Writes one element of the category's default record.
 *
 * @param requester  who writes, for the platform
 * @param category   the table
 * @param element    the column
 * @param buffer     the whole element, the bytes behind a shorter string zero
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_set_stc_default_table(uint32_t requester, uint32_t category, uint32_t element,
                                                      const void *buffer);

/**
 * Puts one record back to the default record.
 *
 * @param category  the table
 * @param record    from 0
 * @return 0; 0x5241 for record 0xFFFFFFFF; otherwise the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_reset_one_stc_table(uint32_t category, uint32_t record);

/**
 * Puts every record of a category back to the default record.
 *
 * @param category  the table
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_reset_all_stc_table(uint32_t category);

/**
 * Reads a setting of the device: an element without a record.
 *
 * @param category  the group of settings
 * @param element   the setting
 * @param buffer    at least as large as the element
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_status(uint32_t category, uint32_t element, void *buffer);

/**
 * Reads a setting that is a string.
 *
 * @param category  the group of settings
 * @param element   the setting
 * @param buffer    at least as large as the element; a terminator is put at size - 1
 * @param size      of the buffer, in bytes
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_status_str(uint32_t category, uint32_t element, char *buffer,
                                                   uint32_t size);

/**
 * Writes a setting of the device.
 *
 * @param requester  who writes, for the platform
 * @param category   the group of settings
 * @param element    the setting
 * @param buffer     the whole element, the bytes behind a shorter string zero
 * @return 0, or the platform's code
 */
QRY_LIB_API uint32_t qry_lib_tb_set_stc_status(uint32_t requester, uint32_t category, uint32_t element,
                                               const void *buffer);

/**
 * Tells the number of records of a category.
 *
 * @param category  the table
 * @param max       the number
 * @return 0; 0x5241: null output or unknown category
 */
QRY_LIB_API uint32_t qry_lib_tb_get_max_stc_table_number(uint32_t category, uint16_t *max);

/**
 * Finds the records that satisfy the conditions. Their numbers are a block that the caller gives back with
 * qry_lib_tb_delete_search_table_id().
 *
 * @param category   the table
 * @param key_num    the number of conditions; with 0 every record is found
 * @param keys       the conditions
 * @param search_id  a handle to the record numbers. Set it to 0 before the call: what it holds is given back
 *                   when a record cannot be tested
 * @param hit_num    how many records were found
 * @return 0; 0x5241: null output, unknown category, a condition that its type does not allow; 0x5243: no
 *         memory, or a record could not be tested
 */
QRY_LIB_API uint32_t qry_lib_tb_create_search_table_id(uint32_t category, uint16_t key_num,
                                                       qry_lib_tb_list_filter_key_ *keys,
                                                       qry_lib_tb_search_id *search_id, uint16_t *hit_num);

/**
 * Gives the record numbers of a search back.
 *
 * @param search_id  the handle; 0 afterwards
 */
QRY_LIB_API void qry_lib_tb_delete_search_table_id(qry_lib_tb_search_id *search_id);

#ifdef __cplusplus
}

static_assert(sizeof(qry_lib_tb_list_filter_key_) == 3020 &&
                  offsetof(qry_lib_tb_list_filter_key_, operation) == 3012,
              "a filter key is 3020 bytes, its operation behind the value");
#endif

#endif
