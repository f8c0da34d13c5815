// Writes a fixture: for every record the values in which it differs from the default record.
#include <algorithm>
#include <cstring>

#include "platform/host/fixture.h"
#include "platform/host/fixture_values.h"
#include "tools/files/whole_file.h"

namespace qryhost {

namespace {

// One element of one record: its bytes, and those that it has when the file says nothing about it.
struct element_state {
    const QRY_LIB_TABLE_DEF &table;
    const element_place &place;
    const std::uint8_t *bytes;
    std::vector<std::uint8_t> base;
};

using column_list = std::vector<const QRY_LIB_ELEMENT_INFO *>;

// In the order in which loading writes them.
column_list parts_of(const element_state &element) {
    column_list columns;
    for (const QRY_LIB_ELEMENT_DEF &row : columns_of(element.table)) {
        if (row.info.element_id == element.place.element) {
            columns.push_back(&row.info);
        }
    }
    std::stable_sort(columns.begin(), columns.end(),
                     [](const QRY_LIB_ELEMENT_INFO *a, const QRY_LIB_ELEMENT_INFO *b) {
                         return a->member_offset < b->member_offset;
                     });
    return columns;
}

// The columns' values are tried: only if loading them gives the element's bytes again are they what is saved.
void save_element(const element_state &element, json &record) {
    json values = json::object();
    std::vector<std::uint8_t> loaded = element.base;
    for (const QRY_LIB_ELEMENT_INFO *column : parts_of(element)) {
        values[column->name] = value_to_json(*column, element.bytes);
        value_from_json(*column, values[column->name], loaded.data(), column->name);
    }
    if (std::equal(loaded.begin(), loaded.end(), element.bytes)) {
        record.update(values);
        return;
    }
    std::vector<std::uint8_t> whole(element.bytes, element.bytes + element.place.size);
    exchange_byte_order(element.table, element.place.element, whole);
    record[raw_key(element.place.element)] = to_hex(whole);
}

class fixture_saver {
  public:
    explicit fixture_saver(const std::vector<std::uint8_t> &region)
        : layout_(store_layout::get()), region_(region) {}

    json settings() const;
    json databases() const;

  private:
    json table(const QRY_LIB_TABLE_DEF &table) const;
    json record(const QRY_LIB_TABLE_DEF &table, std::uint32_t record) const;

    const std::uint8_t *value(const element_place &place, std::uint32_t record) const {
        return region_.data() + place.value_offset(record);
    }

    const store_layout &layout_;
    const std::vector<std::uint8_t> &region_;
};

json fixture_saver::settings() const {
    json values = json::object();
    for (const setting_name &setting : setting_names) {
        const element_place &place = *layout_.find(settings_category, setting.element);
        values[setting.name] = load_number(value(place, 0), place.size);
    }
    return values;
}

json fixture_saver::databases() const {
    json databases = json::object();
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &each : tables_of(*database)) {
            json content = table(each);
            if (!content.empty()) {
                databases[database->name][each.table_name] = std::move(content);
            }
        }
    }
    return databases;
}

json fixture_saver::table(const QRY_LIB_TABLE_DEF &table) const {
    json content = json::object();
    if (json values = record(table, 0); !values.empty()) {
        content["default"] = std::move(values);
    }
    const std::uint32_t record_num = place_of(table.elements[0].info).record_num;
    for (std::uint32_t number = 0; number < record_num; ++number) {
        if (const json values = record(table, number + 1); !values.empty()) {
            json row = {{"record", number}};
            row.update(values);
            content["records"].push_back(std::move(row));
        }
    }
    return content;
}

// Empty when the record is like the default record, or the default record all zeros.
json fixture_saver::record(const QRY_LIB_TABLE_DEF &table, std::uint32_t record) const {
    json values = json::object();
    std::vector<std::uint32_t> done;
    for (const QRY_LIB_ELEMENT_DEF &row : columns_of(table)) {
        const element_place &place = place_of(row.info);
        if (std::find(done.begin(), done.end(), place.element) != done.end()) {
            continue;
        }
        done.push_back(place.element);
        const std::uint8_t *first = value(place, 0);
        std::vector<std::uint8_t> base(first, first + place.size);
        if (record == 0) {
            base.assign(place.size, 0);
        }
        const std::uint8_t *bytes = value(place, record);
        if (!std::equal(base.begin(), base.end(), bytes)) {
            save_element({table, place, bytes, std::move(base)}, values);
        }
    }
    return values;
}

} // namespace

std::string fixture_text(const std::vector<std::uint8_t> &region) {
    const fixture_saver saver(region);
    const json file = {{"format", 1}, {"settings", saver.settings()}, {"databases", saver.databases()}};
    return file.dump(2) + "\n";
}

void save_fixture(const std::string &path, const std::vector<std::uint8_t> &region) {
    qryfiles::write_file(path, fixture_text(region));
}

} // namespace qryhost
