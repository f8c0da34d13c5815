// Finds the tables in the schema, and reads and writes their elements with care.
#include "tools/platform_check/elements.h"

#include <algorithm>
#include <cstring>

#include "exec/schema/schema.h"
#include "platform/element_table.h"

namespace platform_check {

namespace {

constexpr std::uint8_t guard = 0xA5;

// The members of a composite element share its id: it reaches to its farthest member's end.
void add_element(std::vector<element> &elements, const QRY_LIB_ELEMENT_INFO &info) {
    const auto end = static_cast<std::uint16_t>(info.member_offset + info.size);
    for (element &known : elements) {
        if (known.id == info.element_id) {
            known.size = std::max(known.size, end);
            return;
        }
    }
    elements.push_back({info.element_id, end});
}

table describe(const norvane::database_schema &database, const QRY_LIB_TABLE_DEF &definition) {
    const std::uint32_t category = norvane::category_of(definition);
    table result{std::string(database.name) + " " + definition.table_name,
                 category,
                 norvane::capacity_of(category),
                 {}};
    for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(definition)) {
        add_element(result.elements, column.info);
    }
    return result;
}

std::vector<table> find_tables() {
    std::vector<table> found;
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &definition : norvane::tables_of(*database)) {
            table one = describe(*database, definition);
            if (one.record_num != 0) {
                found.push_back(std::move(one));
            }
        }
    }
    return found;
}

} // namespace

std::string table::place(std::uint32_t record, const element &at) const {
    return "record " + std::to_string(record) + ", element " + hex(at.id) + " of " + name + " (category " +
           hex(category) + ")";
}

const std::vector<table> &tables() {
    static const std::vector<table> found = find_tables();
    return found;
}

bytes sample(const table &of, const element &at, std::uint32_t record, std::uint32_t round) {
    std::uint32_t state = of.category ^ (at.id * 31u) ^ (record * 2654435761u) ^ (round << 20);
    bytes value(at.size);
    for (std::uint8_t &byte : value) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>('A' + (state >> 24) % 26);
    }
    if (at.size > 4) {
        value.back() = 0;
    }
    return value;
}

guarded_buffer::guarded_buffer(std::uint16_t size)
    : size_(size), words_(2 * buffer_size / sizeof(std::uint64_t)) {
    std::memset(words_.data(), guard, words_.size() * sizeof words_[0]);
}

bytes guarded_buffer::value() const {
    const auto *start = reinterpret_cast<const std::uint8_t *>(words_.data());
    return bytes(start, start + size_);
}

bool guarded_buffer::is_overrun() const {
    const auto *start = reinterpret_cast<const std::uint8_t *>(words_.data());
    const auto *end = start + words_.size() * sizeof words_[0];
    return std::any_of(start + size_, end, [](std::uint8_t byte) { return byte != guard; });
}

bytes read(report &out, const table &of, const element &at, std::uint32_t record) {
    guarded_buffer buffer(at.size);
    const std::uint32_t code = tbctSTCGetTable(of.category, record, at.id, buffer.data());
    if (!out.succeeds(code, "tbctSTCGetTable", "reading " + of.place(record, at))) {
        return {};
    }
    if (!out.expect(!buffer.is_overrun(), "tbctSTCGetTable",
                    "writes more than the " + std::to_string(at.size) + " bytes that the library knows for " +
                        of.place(record, at) + ".")) {
        return {};
    }
    return buffer.value();
}

bool write(report &out, const table &of, const element &at, std::uint32_t record, const bytes &value) {
    return out.succeeds(tbctSTCSetTable(requester, of.category, record, at.id, value.data()),
                        "tbctSTCSetTable", "writing " + of.place(record, at));
}

saved_table::saved_table(report &out, const table &of) : out_(out), table_(of) {
    for (std::uint32_t record = 0; record <= of.record_num; ++record) {
        for (const element &at : of.elements) {
            values_.push_back(read(out, of, at, record));
        }
    }
}

saved_table::~saved_table() {
    std::size_t i = 0;
    for (std::uint32_t record = 0; record <= table_.record_num; ++record) {
        for (const element &at : table_.elements) {
            const bytes &value = values_[i++];
            if (!value.empty()) {
                write(out_, table_, at, record, value);
            }
        }
    }
}

} // namespace platform_check
