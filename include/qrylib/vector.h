/*
 * A growable array of elements of one size, copied in and out by value.
 *
 * Order of calls: init, then the other calls in any order, free. Indexes count from 0. Every function returns
 * 0 for success, 0x102 for a null argument or an index at or beyond the number of elements, and 1 when the
 * memory partition has no block of the size needed (or the size does not fit 32 bits). A call that fails
 * changes nothing and is written to the platform trace. An element pointer may point into the vector itself.
 * Not thread-safe on one vector; any number of vectors may be used at once. Since 1.0.
 */
#ifndef QRYLIB_VECTOR_H
#define QRYLIB_VECTOR_H

#include <qrylib/export.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The vector's header. It is made by init, owned by the vector functions and given back by free; callers hold
 * a pointer to it and change nothing in it.
 */
typedef struct {
    void *data;         /* capacity * elem_size bytes */
    uint32_t capacity;  /* slots */
    uint32_t count;     /* elements in use: slots 0 to count - 1 */
    uint32_t grow_step; /* slots that one expansion adds: the initial capacity */
    uint32_t elem_size; /* bytes per element */
} qry_lib_vector_;

/*
 * Makes an empty vector of elements of `elem_size` bytes with room for `capacity` of them, but at least 10,
 * and stores it through `vector`; give it back with qry_lib_vector_free(). Room grows by that same number of
 * elements each time it runs out. On failure *vector stays as it was.
 */
QRY_LIB_API uint32_t qry_lib_vector_init(uint32_t elem_size, uint32_t capacity, qry_lib_vector_ **vector);

/* Gives the elements and the vector itself back. The pointer must not be used again. */
QRY_LIB_API uint32_t qry_lib_vector_free(qry_lib_vector_ *vector);

/* Copies elem_size bytes from `element` behind the last element, expanding the vector when it is full. */
QRY_LIB_API uint32_t qry_lib_vector_add_data(qry_lib_vector_ *vector, const void *element);

/* Copies elem_size bytes from `element` over the element at `index`. */
QRY_LIB_API uint32_t qry_lib_vector_set_data(qry_lib_vector_ *vector, uint32_t index, const void *element);

/* Copies the element at `index` into `buffer`, which holds at least elem_size bytes. */
QRY_LIB_API uint32_t qry_lib_vector_get_data(qry_lib_vector_ *vector, uint32_t index, void *buffer);

/* Removes the element at `index`; those behind it move down by one. Room is not given back. */
QRY_LIB_API uint32_t qry_lib_vector_pull_data(qry_lib_vector_ *vector, uint32_t index);

/*
 * Exchanges the elements at `a` and `b`. A full vector is expanded for it, since the slot behind the last
 * element serves as scratch space. Two equal indexes are a success that changes nothing.
 */
QRY_LIB_API uint32_t qry_lib_vector_swap_data(qry_lib_vector_ *vector, uint32_t a, uint32_t b);

/* Stores the number of elements through `count`. */
QRY_LIB_API uint32_t qry_lib_vector_get_data_num(qry_lib_vector_ *vector, uint32_t *count);

#ifdef __cplusplus
}
#endif

#endif
