/**
 * @file
 * A growable array of elements of one size, copied in and out by value.
 *
 * Order of calls: init, then the other calls in any order, free. Indexes count from 0. Every function returns
 * 0 for success, 0x102 for a null argument or an index at or beyond the number of elements, and 1 when the
 * memory partition has no block of the size needed (or the size does not fit 32 bits). A call that fails
 * changes nothing and is written to the platform trace. An element pointer may point into the vector itself.
 * Not thread-safe on one vector; any number of vectors may be used at once.
 *
 * @since 1.0
 */
#ifndef QRYLIB_VECTOR_H
#define QRYLIB_VECTOR_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The vector's header. It is made by init, owned by the vector functions and given back by free; callers hold
 * a pointer to it and change nothing in it.
 */
typedef struct {
    void *data;         /**< capacity * elem_size bytes */
    uint32_t capacity;  /**< slots */
    uint32_t count;     /**< elements in use: slots 0 to count - 1 */
    uint32_t grow_step; /**< slots that one expansion adds: the initial capacity */
    uint32_t elem_size; /**< bytes per element */
} qry_lib_vector_;

/**
 * Makes an empty vector, to be given back with qry_lib_vector_free().
 *
 * @param elem_size  bytes of an element
 * @param capacity   elements that it has room for, but at least 10; room that runs out grows by that number
 * @param vector     the vector; on failure it stays as it was
 * @return 0, 1 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_init(uint32_t elem_size, uint32_t capacity, qry_lib_vector_ **vector);

/**
 * Gives the elements and the vector itself back.
 *
 * @param vector  the vector; the pointer must not be used again
 * @return 0; 0x102 for null
 */
QRY_LIB_API uint32_t qry_lib_vector_free(qry_lib_vector_ *vector);

/**
 * Copies an element behind the last one, expanding the vector when it is full.
 *
 * @param vector   the vector
 * @param element  the element's bytes
 * @return 0, 1 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_add_data(qry_lib_vector_ *vector, const void *element);

/**
 * Copies an element over another.
 *
 * @param vector   the vector
 * @param index    of the element that is overwritten
 * @param element  the new element's bytes
 * @return 0 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_set_data(qry_lib_vector_ *vector, uint32_t index, const void *element);

/**
 * Copies an element out.
 *
 * @param vector  the vector
 * @param index   of the element
 * @param buffer  at least as large as an element
 * @return 0 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_get_data(qry_lib_vector_ *vector, uint32_t index, void *buffer);

/**
 * Removes an element; those behind it move down by one. Room is not given back.
 *
 * @param vector  the vector
 * @param index   of the element
 * @return 0 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_pull_data(qry_lib_vector_ *vector, uint32_t index);

/**
 * Exchanges two elements. A full vector is expanded for it, since the slot behind the last element serves as
 * scratch space. Two equal indexes are a success that changes nothing.
 *
 * @param vector  the vector
 * @param a       index of one element
 * @param b       index of the other
 * @return 0, 1 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_swap_data(qry_lib_vector_ *vector, uint32_t a, uint32_t b);

/**
 * Counts the elements.
 *
 * @param vector  the vector
 * @param count   the number of elements
 * @return 0 or 0x102 as above
 */
QRY_LIB_API uint32_t qry_lib_vector_get_data_num(qry_lib_vector_ *vector, uint32_t *count);

#ifdef __cplusplus
}
#endif

#endif
