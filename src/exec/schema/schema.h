// The built-in schema: four databases, and how many records the device holds of each category.
#pragma once

#include <cstddef>
#include <cstdint>

#include "exec/qry_lib_element_info.h"

// How many records a category has.
struct QRY_LIB_TB_MAX_ROW {
    std::uint32_t category;
    std::uint16_t max_number;
    std::uint16_t reserved;
};
static_assert(sizeof(QRY_LIB_TB_MAX_ROW) == 8);

constexpr std::size_t QRY_LIB_TB_MAX_NUM = 39;
extern const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM];

namespace norvane {

// The tables of one database, in stored order.
struct database_schema {
    const char *name;
    const QRY_LIB_TABLE_DEF *tables;
    std::uint16_t table_num;
};

extern const database_schema adbk_schema;
extern const database_schema department_schema;
extern const database_schema usrac_schema;
extern const database_schema log_schema;

// The four databases in the order in which they are looked up.
constexpr std::size_t database_num = 4;
extern const database_schema *const databases[database_num];

// No member of a composite element starts beyond this offset.
constexpr std::size_t member_offset_max = 256;

} // namespace norvane
