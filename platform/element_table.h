/**
 * @file
 * The element tables: the device's record stores, as the library uses them.
 *
 * A category is one table. Its record 0 is the default record (the template of an empty slot), records 1 to n
 * follow; n is the category's number of records, which the library knows from a table of its own. An element
 * is one column, addressed by an id; its value has a fixed size, in the machine's own byte order, a string
 * with its terminator. Several columns of the library's schema may be members at fixed offsets of one
 * composite element, whose value is as large as its farthest member.
 *
 * 0 is success. Every other code is opaque to the library: it is traced and, unless said otherwise, handed to
 * the caller unchanged. 0x5241 (21057) means an argument that the element tables refuse. Every function may
 * be called from several threads and processes at once; a value is read and written whole.
 */
#ifndef QRYLIB_PLATFORM_ELEMENT_TABLE_H
#define QRYLIB_PLATFORM_ELEMENT_TABLE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads an element of a record: writes the element's whole value and no byte more, or, failing, nothing.
 *
 * @param category  the table
 * @param record    0 to n
 * @param element   the column
 * @param buffer    at least 3001 bytes, aligned for the widest element; what it holds before means nothing
 * @return 0, or a code
 */
uint32_t tbctSTCGetTable(uint32_t category, uint32_t record, uint32_t element, void *buffer);

/**
 * Writes an element of a record. Writes that an earlier call of the same statement made stay made when a
 * later one fails.
 *
 * @param requester  0x2301 for the library's own writes
 * @param category   the table
 * @param record     0 to n
 * @param element    the column
 * @param buffer     the platform reads the element's size from it; the bytes behind a shorter string are zero
 * @return 0, or a code
 */
uint32_t tbctSTCSetTable(uint32_t requester, uint32_t category, uint32_t record, uint32_t element,
                         const void *buffer);

/**
 * Puts a record back to the default record.
 *
 * @param category  the table
 * @param record    1 to n
 * @return 0, or a code
 */
uint32_t tbSTCInitTable(uint32_t category, uint32_t record);

/**
 * Puts every record of a category back to the default record.
 *
 * @param category  the table
 * @return 0, or a code
 */
uint32_t tbctResetTable(uint32_t category);

/**
 * Reads a setting of the device: an element without a record.
 *
 * @param category  the group of settings
 * @param element   the setting
 * @param buffer    at least as large as the element
 * @return 0, or a code
 */
uint32_t tbctSTCGetStatus(uint32_t category, uint32_t element, void *buffer);

/**
 * Writes a setting of the device.
 *
 * @param requester  who writes
 * @param category   the group of settings
 * @param element    the setting
 * @param buffer     the whole element
 * @return 0, or a code
 */
uint32_t tbctSTCSetStatus(uint32_t requester, uint32_t category, uint32_t element, const void *buffer);

/** A list table: 16 bytes that only the platform understands. Zero-filled before the list is created. */
typedef struct {
    uint32_t word[4]; /**< the platform's own */
} tbctListTable;

/**
 * Opens a list table over one element: the values of the records in order, as they were at one moment. The
 * library opens one for each condition of a search and closes all of them at its end. A failure is traced,
 * every list table of the search is deleted, those that were never created included, and the search goes on;
 * it then ends at the first value that it cannot reach. What the lists of one search show may be of different
 * moments. A platform may also show one: it may copy the lists that a thread has opened in a category again, as
 * long as the thread has not moved in a list or read from one since.
 *
 * @param category    the table
 * @param element     the column
 * @param record_num  the list holds records 1 to this one
 * @param list        zero-filled; the library keeps it until it is deleted
 * @return 0, or a code
 */
uint32_t tbctSTCCreateListTable(uint32_t category, uint32_t element, uint16_t record_num,
                                tbctListTable *list);

/**
 * Moves a list to a position.
 *
 * @param list      the list
 * @param position  0 is record 1
 * @return 0, or a code, which ends the search with 0x5243; never 0 for a list that is not open
 */
uint32_t tbctSTCListTableSetPos(tbctListTable *list, uint16_t position);

/**
 * Reads the value at a list's position. A value that cannot be read counts as zeros.
 *
 * @param list    the list
 * @param buffer  as for tbctSTCGetTable
 * @return a code that the library does not look at
 */
uint32_t tbctSTCListTableGetVal(tbctListTable *list, void *buffer);

/**
 * Closes a list. Harmless on a zero-filled list and on one that is closed already.
 *
 * @param list    the list
 * @param option  0
 * @return a code that the library does not look at
 */
uint32_t tbctSTCDeleteListTable(tbctListTable *list, uint32_t option);

#ifdef __cplusplus
}

static_assert(sizeof(tbctListTable) == 16, "the platform keeps 16 bytes of its own in a list");
#endif

#endif
