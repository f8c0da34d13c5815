// How the schema is described: one record for each column, one list for each table.
#pragma once

#include <cstdint>

#include "util/element_type.h"

// One column: where its value lives in the element tables and how it is stored.
struct QRY_LIB_ELEMENT_INFO {
    char name[40];
    std::uint32_t category_id; // the same for every column of a table
    std::uint32_t element_id;  // of the composite element, for a member
    std::uint32_t elem_type;   // an element_type
    std::uint16_t size;        // bytes stored, a string's terminator included
    std::uint8_t is_member;    // 1: lies at member_offset inside a composite element
    std::uint16_t member_offset;
};
static_assert(sizeof(QRY_LIB_ELEMENT_INFO) == 60);

// One row of a table's column list, sorted by name in the order of qry_lib_tb_strcmp.
struct QRY_LIB_ELEMENT_DEF {
    std::uint8_t is_primary; // 1: part of the primary key
    QRY_LIB_ELEMENT_INFO info;
};

// One row of a database's table list, sorted by name in the same order.
struct QRY_LIB_TABLE_DEF {
    char table_name[128];
    const QRY_LIB_ELEMENT_DEF *elements;
    std::int16_t element_num;
};
