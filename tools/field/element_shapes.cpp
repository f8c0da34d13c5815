// A sorted table, made on first use: the recorder looks something up for every value.
#include "tools/field/element_shapes.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <tuple>
#include <vector>

#include "exec/schema/secret_columns.h"
#include "util/settings.h"

namespace field {

namespace {

constexpr std::uint16_t setting_size = 4;

bool in_order(const element_shape &a, const element_shape &b) {
    return std::tie(a.category, a.element) < std::tie(b.category, b.element);
}

std::vector<element_shape> all_shapes() {
    std::vector<element_shape> all;
    for (const std::uint32_t element : norvane::settings_elements) {
        all.push_back({norvane::settings_category, element, setting_size, false});
    }
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                const QRY_LIB_ELEMENT_INFO &info = column.info;
                all.push_back({info.category_id, info.element_id,
                               static_cast<std::uint16_t>(info.member_offset + info.size),
                               norvane::is_secret_column(info.name)});
            }
        }
    }
    return all;
}

// A composite element is as large as its farthest member.
std::vector<element_shape> merged_shapes() {
    std::vector<element_shape> all = all_shapes();
    std::sort(all.begin(), all.end(), in_order);
    std::vector<element_shape> merged;
    for (const element_shape &shape : all) {
        if (merged.empty() || in_order(merged.back(), shape)) {
            merged.push_back(shape);
        } else {
            merged.back().size = std::max(merged.back().size, shape.size);
            merged.back().is_secret = merged.back().is_secret || shape.is_secret;
        }
    }
    return merged;
}

std::uint32_t mixed(std::uint32_t sum, std::uint32_t value) {
    return (sum ^ value) * 0x01000193u;
}

std::uint32_t mixed(std::uint32_t sum, std::string_view text) {
    for (const char character : text) {
        sum = mixed(sum, static_cast<unsigned char>(character));
    }
    return mixed(sum, 0u);
}

} // namespace

const element_shape *find_shape(std::uint32_t category, std::uint32_t element) {
    static const std::vector<element_shape> shapes = merged_shapes();
    const element_shape wanted{category, element, 0, false};
    const auto found = std::lower_bound(shapes.begin(), shapes.end(), wanted, in_order);
    return found != shapes.end() && !in_order(wanted, *found) ? &*found : nullptr;
}

const QRY_LIB_ELEMENT_INFO *column_of(std::uint32_t category, std::uint32_t element, std::size_t index) {
    const QRY_LIB_TABLE_DEF *table = norvane::find_table(category);
    if (table == nullptr) {
        return nullptr;
    }
    for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(*table)) {
        if (column.info.element_id == element && index-- == 0) {
            return &column.info;
        }
    }
    return nullptr;
}

std::uint32_t schema_number() {
    std::uint32_t sum = 0x811C9DC5u;
    for (const norvane::database_schema *database : norvane::databases) {
        sum = mixed(sum, database->name);
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            sum = mixed(sum, table.table_name);
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                const QRY_LIB_ELEMENT_INFO &info = column.info;
                sum = mixed(mixed(mixed(sum, info.name), info.category_id), info.element_id);
                sum = mixed(mixed(mixed(sum, info.elem_type), info.size), info.member_offset);
            }
        }
    }
    for (const QRY_LIB_TB_MAX_ROW &row : QRY_LIB_TB_MAX_TABLE) {
        sum = mixed(mixed(sum, row.category), row.max_number);
    }
    return sum;
}

} // namespace field
