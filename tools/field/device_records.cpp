// Reads and writes element by element; a platform never touches more than a value's own bytes.
#include "tools/field/device_records.h"

#include <algorithm>
#include <cstdio>

#include "platform/element_table.h"

namespace field {

namespace {

using qryhost::element_place;
using qryhost::store_layout;

constexpr std::uint32_t requester = 0x2301;

// Aligned for the widest element and as large as the contract promises.
struct value_buffer {
    alignas(std::uint64_t) std::uint8_t bytes[3008]{};
};

[[noreturn]] void fail(const char *step, const element_place &place, std::uint32_t record,
                       std::uint32_t code) {
    char sentence[160];
    static_cast<void>(std::snprintf(sentence, sizeof sentence,
                                    "category 0x%08X, record %u, element 0x%08X cannot be %s: code 0x%X",
                                    place.category, record, place.element, step, code));
    throw failure(sentence);
}

void read_value(const element_place &place, std::uint32_t record, std::vector<std::uint8_t> &region) {
    value_buffer value;
    const std::uint32_t code = place.is_setting
                                   ? tbctSTCGetStatus(place.category, place.element, value.bytes)
                                   : tbctSTCGetTable(place.category, record, place.element, value.bytes);
    if (code != 0) {
        fail("read", place, record, code);
    }
    std::copy_n(value.bytes, place.size, region.begin() + place.value_offset(record));
}

void add_database(const norvane::database_schema &database, selection &chosen) {
    for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(database)) {
        chosen.tables.insert(full_name(database, table));
    }
}

selection everything() {
    selection all;
    for (const norvane::database_schema *database : norvane::databases) {
        add_database(*database, all);
    }
    return all;
}

void add_table(const std::string &name, selection &chosen) {
    const std::size_t dot = name.find('.');
    const norvane::database_schema *database = norvane::find_database(name.substr(0, dot).c_str());
    if (dot == std::string::npos || database == nullptr ||
        norvane::find_table(*database, name.substr(dot + 1).c_str()) == nullptr) {
        throw failure("there is no table " + name + "; a table is named with its database, adbk_db.PSN_TBL");
    }
    chosen.tables.insert(name);
}

} // namespace

std::string full_name(const norvane::database_schema &database, const QRY_LIB_TABLE_DEF &table) {
    return std::string(database.name) + "." + table.table_name;
}

bool selection::has(const norvane::database_schema &database, const QRY_LIB_TABLE_DEF &table) const {
    return tables.count(full_name(database, table)) != 0;
}

selection select(const std::vector<std::string> &databases, const std::vector<std::string> &tables) {
    if (databases.empty() && tables.empty()) {
        return everything();
    }
    selection chosen;
    chosen.settings = false;
    for (const std::string &name : databases) {
        const norvane::database_schema *database = norvane::find_database(name.c_str());
        if (database == nullptr) {
            throw failure("there is no database " + name);
        }
        add_database(*database, chosen);
    }
    for (const std::string &name : tables) {
        add_table(name, chosen);
    }
    return chosen;
}

std::vector<table_place> tables_of(const selection &chosen) {
    std::vector<table_place> places;
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            if (chosen.has(*database, table)) {
                places.push_back({database, &table});
            }
        }
    }
    return places;
}

std::vector<const element_place *> elements_of(const QRY_LIB_TABLE_DEF &table) {
    std::vector<const element_place *> places;
    for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
        const element_place *place =
            store_layout::get().find(column.info.category_id, column.info.element_id);
        if (std::find(places.begin(), places.end(), place) == places.end()) {
            places.push_back(place);
        }
    }
    return places;
}

std::vector<std::uint8_t> read_device(const selection &chosen) {
    const store_layout &layout = store_layout::get();
    std::vector<std::uint8_t> region(layout.bytes());
    for (const table_place &each : tables_of(chosen)) {
        for (const element_place *place : elements_of(*each.table)) {
            for (std::uint32_t record = 0; record <= place->record_num; ++record) {
                read_value(*place, record, region);
            }
        }
    }
    for (const element_place &place : layout.elements()) {
        if (chosen.settings && place.is_setting) {
            read_value(place, 0, region);
        }
    }
    return region;
}

void write_value(const element_place &place, std::uint32_t record, const std::uint8_t *bytes) {
    value_buffer value;
    std::copy_n(bytes, place.size, value.bytes);
    const std::uint32_t code =
        place.is_setting ? tbctSTCSetStatus(requester, place.category, place.element, value.bytes)
                         : tbctSTCSetTable(requester, place.category, record, place.element, value.bytes);
    if (code != 0) {
        fail("written", place, record, code);
    }
}

} // namespace field
