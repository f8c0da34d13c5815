/**
 * @file
 * The sort utility: orders an array of pointers to items by a key inside each item.
 */
#ifndef QRYLIB_PLATFORM_SORT_H
#define QRYLIB_PLATFORM_SORT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** How to sort. */
typedef struct {
    uint32_t key_offset;   /**< bytes before the key in each item; the library passes 2 */
    uint32_t count;        /**< items; 0 is passed too, and is a success */
    uint32_t compare_kind; /**< even: ascending, odd: descending; see cmn_lib_sort */
} CMN_LIB_SORT_PARAM_T;

/**
 * Reorders items in place by the key at `key_offset` of each item. Kinds 0 and 1 compare one-byte numbers,
 * 2 and 3 two-byte numbers, 4 and 5 four-byte numbers, all unsigned and in the machine's own byte order; 6
 * and 7 compare terminated strings, 8 and 9 terminated names. Items lie back to back, so a key may stand at
 * any address. The order of equal keys and the collation of strings and names are the platform's own. Called
 * from several threads at once, each with items of its own.
 *
 * @param items  pointers to the items
 * @param param  the key, the number of items and the kind
 * @return 0; any other result ends the query with 0xDB00
 */
uint32_t cmn_lib_sort(void **items, CMN_LIB_SORT_PARAM_T *param);

#ifdef __cplusplus
}
#endif

#endif
