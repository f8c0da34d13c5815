// Every element of a record through the catalog, as value and as bytes.
#include "tools/text/record_view.h"

#include <qrylib/element_table.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "exec/element_buffer.h"
#include "exec/qry_lib_table_element.h"

namespace qrytext {

namespace {

// The table's columns in the order in which their values lie.
std::vector<QRY_LIB_ELEMENT_INFO> columns_in_place(norvane::qry_lib_table_element &catalog,
                                                   const std::string &table) {
    short column_num = 0;
    const QRY_LIB_ELEMENT_DEF *rows = catalog.get_table_info_(table.c_str(), column_num);
    std::vector<QRY_LIB_ELEMENT_INFO> columns;
    std::transform(rows, rows + column_num, std::back_inserter(columns),
                   [](const auto &row) { return row.info; });
    std::stable_sort(columns.begin(), columns.end(), [](const auto &a, const auto &b) {
        return std::pair(a.element_id, a.member_offset) < std::pair(b.element_id, b.member_offset);
    });
    return columns;
}

// A number's digits from its highest byte on, whatever the machine's order; a text's bytes up to its last one
// that is not zero.
std::string hex_of(const QRY_LIB_ELEMENT_INFO &info, const char *value, const cell &shown) {
    if (const auto *number = std::get_if<std::int64_t>(&shown)) {
        const auto bits = static_cast<std::uint32_t>(*number);
        return fmt::format("{:0{}X}", bits, 2 * info.size);
    }
    std::size_t length = info.size;
    while (length > 0 && value[length - 1] == 0) {
        --length;
    }
    std::string hex;
    for (std::size_t i = 0; i < length; ++i) {
        hex += fmt::format("{:02X}", static_cast<unsigned char>(value[i]));
    }
    return length == info.size ? hex
                               : fmt::format("{}{}+{} zero", hex, hex.empty() ? "" : " ", info.size - length);
}

cell value_of(const QRY_LIB_COLUMN &column) {
    switch (column.type) {
    case QRY_LIB_COLUMN_TYPE_INT:
        return std::int64_t{column.value.int_value};
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return std::int64_t{column.value.uchar_value};
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return std::int64_t{column.value.ushort_value};
    case QRY_LIB_COLUMN_TYPE_STR:
        return std::string(column.value.str_value);
    default:
        return std::int64_t{column.value.ulong_value};
    }
}

std::uint32_t read_element(const QRY_LIB_ELEMENT_INFO &info, std::uint32_t number, char *buffer) {
    return number == 0 ? qry_lib_tb_get_stc_default_table(info.category_id, info.element_id, buffer)
                       : qry_lib_tb_get_stc_table(info.category_id, number - 1, info.element_id, buffer);
}

} // namespace

record_view view_record(const std::string &db_name, const std::string &table, std::uint32_t number) {
    result list{{"ELEMENT", "OFFSET", "SIZE", "COLUMN", "VALUE", "HEX"}, {}};
    norvane::qry_lib_table_element *catalog = nullptr;
    norvane::qry_lib_table_element_factory::create_elemet(db_name.c_str(), &catalog);
    for (const QRY_LIB_ELEMENT_INFO &info : columns_in_place(*catalog, table)) {
        norvane::element_buffer buffer;
        buffer.clear();
        if (const std::uint32_t code = read_element(info, number, buffer.data()); code != 0) {
            return {code, {}};
        }
        QRY_LIB_COLUMN column{};
        catalog->conv_val_tbdb_to_db2e(info, info.name, buffer.data(), column);
        const cell shown = value_of(column);
        list.rows.push_back({fmt::format("0x{:08X}", info.element_id), std::int64_t{info.member_offset},
                             std::int64_t{info.size}, info.name, shown,
                             hex_of(info, buffer.at(info.member_offset), shown)});
    }
    norvane::qry_lib_table_element_factory::delete_elemet(&catalog);
    return {0, std::move(list)};
}

} // namespace qrytext
