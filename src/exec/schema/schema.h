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

// Rows that lie together, for going through them.
template <typename Row>
struct row_range {
    const Row *rows;
    std::size_t num;

    const Row *begin() const { return rows; }
    const Row *end() const { return rows + num; }
};

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

inline row_range<QRY_LIB_TABLE_DEF> tables_of(const database_schema &database) {
    return {database.tables, database.table_num};
}
inline row_range<QRY_LIB_ELEMENT_DEF> columns_of(const QRY_LIB_TABLE_DEF &table) {
    return {table.elements, static_cast<std::size_t>(table.element_num)};
}
inline std::uint32_t category_of(const QRY_LIB_TABLE_DEF &table) {
    return table.elements[0].info.category_id;
}

// Exact, case-sensitive matches; null where there is none. The category of a capacity need not be a table's.
const database_schema *find_database(const char *name);
const QRY_LIB_TABLE_DEF *find_table(const database_schema &database, const char *name);
const QRY_LIB_TABLE_DEF *find_table(std::uint32_t category);
const QRY_LIB_ELEMENT_DEF *find_column(row_range<QRY_LIB_ELEMENT_DEF> columns, const char *name);
const QRY_LIB_TB_MAX_ROW *find_capacity(std::uint32_t category);

// The records of a category; 0 also for one that is not known.
inline std::uint16_t capacity_of(std::uint32_t category) {
    const QRY_LIB_TB_MAX_ROW *row = find_capacity(category);
    return row == nullptr ? std::uint16_t{0} : row->max_number;
}

// No member of a composite element starts beyond this offset.
constexpr std::size_t member_offset_max = 256;

} // namespace norvane
