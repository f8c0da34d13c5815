// Builds the rows of the schema at compile time and proves that they are sorted.
#pragma once

#include <array>
#include <cstddef>

#include "exec/schema/schema.h"
#include "util/tb_string.h"

namespace norvane {

template <std::size_t Size>
constexpr void fill_name(char (&name)[Size], const char *text) {
    std::size_t i = 0;
    for (; text[i] != '\0'; ++i) {
        name[i] = text[i]; // past the array's end this is no constant expression, and does not compile
    }
    name[i] = '\0';
}

constexpr QRY_LIB_ELEMENT_DEF column(const char *name, element_type type, std::uint16_t size,
                                     std::uint32_t id) {
    QRY_LIB_ELEMENT_DEF row{};
    fill_name(row.info.name, name);
    row.info.element_id = id;
    row.info.elem_type = type;
    row.info.size = size;
    return row;
}

constexpr QRY_LIB_ELEMENT_DEF key(const char *name, element_type type, std::uint16_t size, std::uint32_t id) {
    QRY_LIB_ELEMENT_DEF row = column(name, type, size, id);
    row.is_primary = 1;
    return row;
}

constexpr QRY_LIB_ELEMENT_DEF member(const char *name, element_type type, std::uint16_t size,
                                     std::uint32_t id, std::uint16_t offset) {
    QRY_LIB_ELEMENT_DEF row = column(name, type, size, id);
    row.info.is_member = 1;
    row.info.member_offset = offset;
    return row;
}

template <std::size_t Num>
using table_rows = std::array<QRY_LIB_ELEMENT_DEF, Num>;

// The category that is a table: puts its id into the table's rows.
struct category {
    std::uint32_t id;

    template <std::size_t Num>
    constexpr table_rows<Num> rows(const QRY_LIB_ELEMENT_DEF (&listed)[Num]) const {
        table_rows<Num> result{};
        for (std::size_t i = 0; i < Num; ++i) {
            result[i] = listed[i];
            result[i].info.category_id = id;
        }
        return result;
    }
};

template <std::size_t Num>
constexpr QRY_LIB_TABLE_DEF table(const char *name, const table_rows<Num> &rows) {
    QRY_LIB_TABLE_DEF result{};
    fill_name(result.table_name, name);
    result.elements = rows.data();
    result.element_num = static_cast<std::int16_t>(Num);
    return result;
}

// Lookups are binary searches: names ascend, in the tables of a database and in the columns of each.
template <std::size_t Num>
constexpr bool is_sorted(const QRY_LIB_TABLE_DEF (&tables)[Num]) {
    for (std::size_t t = 0; t < Num; ++t) {
        if (t > 0 && tb_strcmp(tables[t - 1].table_name, tables[t].table_name) >= 0) {
            return false;
        }
        for (std::int16_t c = 0; c < tables[t].element_num; ++c) {
            const QRY_LIB_ELEMENT_DEF *rows = tables[t].elements;
            if (c > 0 && tb_strcmp(rows[c - 1].info.name, rows[c].info.name) >= 0) {
                return false;
            }
            if (rows[c].info.member_offset > member_offset_max) {
                return false;
            }
        }
    }
    return true;
}

} // namespace norvane
