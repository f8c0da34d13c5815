/*
 * Element tables: reading, writing, resetting and searching the device's records without the query engine.
 *
 * A category is one table, a record one row of it, an element one column. Records are numbered from 0 here
 * (the platform counts from 1; its record 0 is the category's default record). Codes of the platform come
 * back unchanged; 0x5241 is an argument that is refused here, 0x5243 a search that could not be carried out.
 * A value buffer holds the element's whole value, in the machine's own byte order; a composite element is as
 * large as its farthest member. Every function may be called from several threads at once. Since 1.0.
 */
#ifndef QRYLIB_ELEMENT_TABLE_H
#define QRYLIB_ELEMENT_TABLE_H

#include <qrylib/export.h>
#include <qrylib/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One search condition (3020 bytes). */
typedef struct {
    uint32_t category_id;
    uint32_t element_id;
    uint8_t elem_type;                  /* 0, 3, 4: 32 bits; 1: 8 bits; 2: 16 bits; 5, 6: string */
    uint8_t cmp_size;                   /* bytes compared of a number */
    uint16_t member_offset;             /* where the value lies inside a composite element */
    char value[QRY_LIB_STRING_MAX + 1]; /* a number in the element's own width, or a terminated string */
    QRY_LIB_OPERATION_TYPE operation;   /* EQUAL to LIKE; LIKE for strings only, < > <= >= for numbers only */
    QRY_LIB_JOIN_TYPE join; /* AND or OR with the conditions that follow, strictly left to right */
} qry_lib_tb_list_filter_key_;

/* The records that a search found: a block of 16-bit record numbers, ascending. 0: none. */
typedef uintptr_t qry_lib_tb_search_id;

/*
 * The order of names and of string values: bytes as signed numbers, -1, 0 or 1. strncmp compares at most n
 * positions (all, when n is above 65535) and answers 0 whenever `a` is a prefix of `b`, or n is 0.
 */
QRY_LIB_API int qry_lib_tb_strcmp(const char *a, const char *b);
QRY_LIB_API int qry_lib_tb_strncmp(const char *a, const char *b, uint32_t n);

/* Read and write one element of a record. Record 0xFFFFFFFF: 0x5241. `_str` terminates the buffer at size
 * - 1. */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_table(uint32_t category, uint32_t record, uint32_t element,
                                              void *buffer);
QRY_LIB_API uint32_t qry_lib_tb_get_stc_table_str(uint32_t category, uint32_t record, uint32_t element,
                                                  char *buffer, uint32_t size);
QRY_LIB_API uint32_t qry_lib_tb_set_stc_table(uint32_t requester, uint32_t category, uint32_t record,
                                              uint32_t element, const void *buffer);

/* The same for the category's default record. */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_default_table(uint32_t category, uint32_t element, void *buffer);
QRY_LIB_API uint32_t qry_lib_tb_get_stc_default_table_str(uint32_t category, uint32_t element, char *buffer,
                                                          uint32_t size);
QRY_LIB_API uint32_t qry_lib_tb_set_stc_default_table(uint32_t requester, uint32_t category, uint32_t element,
                                                      const void *buffer);

/* Put one record, or all of a category, back to the default. */
QRY_LIB_API uint32_t qry_lib_tb_reset_one_stc_table(uint32_t category, uint32_t record);
QRY_LIB_API uint32_t qry_lib_tb_reset_all_stc_table(uint32_t category);

/* Read and write a setting of the device. */
QRY_LIB_API uint32_t qry_lib_tb_get_stc_status(uint32_t category, uint32_t element, void *buffer);
QRY_LIB_API uint32_t qry_lib_tb_get_stc_status_str(uint32_t category, uint32_t element, char *buffer,
                                                   uint32_t size);
QRY_LIB_API uint32_t qry_lib_tb_set_stc_status(uint32_t requester, uint32_t category, uint32_t element,
                                               const void *buffer);

/* The number of records of a category. 0x5241: null output or unknown category. */
QRY_LIB_API uint32_t qry_lib_tb_get_max_stc_table_number(uint32_t category, uint16_t *max);

/*
 * Finds the records that satisfy `keys` (all records when key_num is 0) and stores their number and a handle
 * to their numbers; free the handle with delete_search_table_id. Set *search_id to 0 before the call: what it
 * holds is given back when a record cannot be tested. 0x5241: null output, unknown category, a key that its
 * type does not allow; 0x5243: no memory, or a record could not be tested.
 */
QRY_LIB_API uint32_t qry_lib_tb_create_search_table_id(uint32_t category, uint16_t key_num,
                                                       qry_lib_tb_list_filter_key_ *keys,
                                                       qry_lib_tb_search_id *search_id, uint16_t *hit_num);

/* Gives the record numbers back and sets the handle to 0. */
QRY_LIB_API void qry_lib_tb_delete_search_table_id(qry_lib_tb_search_id *search_id);

#ifdef __cplusplus
}

static_assert(sizeof(qry_lib_tb_list_filter_key_) == 3020 &&
                  offsetof(qry_lib_tb_list_filter_key_, operation) == 3012,
              "a filter key is 3020 bytes, its operation behind the value");
#endif

#endif
