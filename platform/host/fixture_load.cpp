// Reads a fixture. The whole file is checked while it is turned into a region of its own.
#include <algorithm>
#include <cstring>
#include <set>

#include "platform/host/fixture.h"
#include "platform/host/fixture_values.h"
#include "platform/host/refusal.h"
#include "tools/files/whole_file.h"

namespace qryhost {

namespace {

// A store written out in full is far smaller; what is larger or deeper is no fixture.
constexpr std::size_t file_size_max = std::size_t{16} * 1024 * 1024;
constexpr int depth_max = 8;

// No object of a fixture has more keys than a record: its columns, its composites as a whole, its number.
std::size_t most_keys() {
    std::size_t most = 0;
    for (const norvane::database_schema *database : norvane::databases) {
        for (std::uint16_t t = 0; t < database->table_num; ++t) {
            most = std::max(most, static_cast<std::size_t>(database->tables[t].element_num));
        }
    }
    return 2 * most + 1;
}

std::size_t most_records() {
    std::size_t most = 0;
    for (const element_place &place : store_layout::get().elements()) {
        most = std::max<std::size_t>(most, place.record_num);
    }
    return most;
}

// Watches the parser: bounds what it collects, and refuses a key that one object has twice. So no file takes
// longer than one that is in order.
class parse_guard {
  public:
    bool operator()(int depth, json::parse_event_t event, const json &parsed) {
        if (depth > depth_max) {
            throw refusal("the file is nested too deeply");
        }
        switch (event) {
        case json::parse_event_t::key:
            add_key(parsed.get_ref<const std::string &>());
            break;
        case json::parse_event_t::object_start:
        case json::parse_event_t::array_start:
            add_item();
            open_.push_back({event == json::parse_event_t::array_start, 0, {}, {}});
            break;
        case json::parse_event_t::object_end:
        case json::parse_event_t::array_end:
            open_.pop_back();
            break;
        default:
            add_item();
        }
        return true;
    }

    // Where the parser is: keys and numbers of items, with a colon; nothing at the start of the file.
    std::string place() const {
        std::string text;
        for (const container &outer : open_) {
            const std::string name = outer.is_array ? std::to_string(outer.num - 1) : outer.last_key;
            if (outer.num != 0) {
                text += (text.empty() ? "" : ", ") + name;
            }
        }
        return text.empty() ? text : text + ": ";
    }

  private:
    // An object or an array that is open.
    struct container {
        bool is_array;
        std::size_t num; // of its keys or items
        std::string last_key;
        std::set<std::string> keys;
    };

    void add_key(const std::string &key) {
        container &object = open_.back();
        if (++object.num > key_max_) {
            throw refusal("one object has more than " + std::to_string(key_max_) + " keys");
        }
        object.last_key = key;
        if (!object.keys.insert(key).second) {
            throw refusal("one object has the key " + json(key).dump() + " twice");
        }
    }

    void add_item() {
        if (!open_.empty() && open_.back().is_array && ++open_.back().num > item_max_) {
            throw refusal("no table has more than " + std::to_string(item_max_) + " records");
        }
    }

    std::size_t key_max_ = most_keys();
    std::size_t item_max_ = most_records();
    std::vector<container> open_;
};

// The parser's sentence without its number.
std::string without_number(const std::string &message) {
    const std::size_t end = message.find("] ");
    return end == std::string::npos ? message : message.substr(end + 2);
}

json parse(const std::string &text, const std::string &path) {
    if (const std::size_t zero = text.find('\0'); zero != std::string::npos) {
        refuse(path, "byte " + std::to_string(zero) + " is zero"); // the parser takes it for the end
    }
    parse_guard guard;
    try {
        return json::parse(text, [&guard](int depth, json::parse_event_t event, json &parsed) {
            return guard(depth, event, parsed);
        });
    } catch (const json::parse_error &error) {
        refuse(path, without_number(error.what())); // it tells the place
    } catch (const json::exception &error) {
        refuse(path, guard.place() + without_number(error.what()));
    } catch (const refusal &error) {
        refuse(path, guard.place() + error.what());
    }
}

const json &required_object(const json &value, const std::string &where) {
    if (!value.is_object()) {
        refuse(where, "is not an object");
    }
    return value;
}

// A name from a file may hold a zero byte, where the schema's end: found is only what is equal as a whole.
const norvane::database_schema &find_database(const std::string &name) {
    const norvane::database_schema *found = norvane::find_database(name.c_str());
    if (found == nullptr || name != found->name) {
        refuse("databases", "there is no database " + name);
    }
    return *found;
}

const QRY_LIB_TABLE_DEF &find_table(const norvane::database_schema &database, const std::string &name) {
    const QRY_LIB_TABLE_DEF *found = norvane::find_table(database, name.c_str());
    if (found == nullptr || name != found->table_name) {
        refuse(database.name, "there is no table " + name);
    }
    return *found;
}

const QRY_LIB_ELEMENT_INFO &find_column(const QRY_LIB_TABLE_DEF &table, const std::string &name,
                                        const std::string &where) {
    const QRY_LIB_ELEMENT_DEF *found = norvane::find_column(columns_of(table), name.c_str());
    if (found == nullptr || name != found->info.name) {
        refuse(where, "there is no column " + name);
    }
    return found->info;
}

// One record's object while it is applied: every value with its column.
struct given_value {
    const QRY_LIB_ELEMENT_INFO *column;
    const json *value;
    std::string where;
};

class fixture_loader {
  public:
    fixture_loader() : layout_(store_layout::get()), region_(layout_.bytes()) {}

    std::vector<std::uint8_t> load(const json &file);

  private:
    void load_settings(const json &settings);
    void load_databases(const json &databases);
    void load_table(const std::string &where, const QRY_LIB_TABLE_DEF &table, const json &content);
    void copy_default(const QRY_LIB_TABLE_DEF &table);
    void load_records(const std::string &where, const QRY_LIB_TABLE_DEF &table, const json &records);
    void load_record(const std::string &where, const QRY_LIB_TABLE_DEF &table, const json &object,
                     std::uint32_t record);
    void load_raw(const std::string &where, const QRY_LIB_TABLE_DEF &table, const std::string &key,
                  const json &value, std::uint32_t record, std::set<std::uint32_t> &raw);

    std::uint8_t *value(const element_place &place, std::uint32_t record) {
        return region_.data() + place.value_offset(record);
    }

    const store_layout &layout_;
    std::vector<std::uint8_t> region_;
};

std::vector<std::uint8_t> fixture_loader::load(const json &file) {
    required_object(file, "the file");
    if (!file.contains("format") || file["format"] != 1) {
        refuse("format", "is not 1");
    }
    for (const auto &[key, content] : file.items()) {
        if (key == "settings") {
            load_settings(required_object(content, key));
        } else if (key == "databases") {
            load_databases(required_object(content, key));
        } else if (key != "format" && key != "snapshot") {
            refuse("the file", "there is no key " + key);
        }
    }
    return std::move(region_);
}

void fixture_loader::load_settings(const json &settings) {
    for (const auto &[key, content] : settings.items()) {
        const auto *found =
            std::find_if(std::begin(setting_names), std::end(setting_names),
                         [name = std::string(key)](const setting_name &row) { return name == row.name; });
        if (found == std::end(setting_names)) {
            refuse("settings", "there is no setting " + key);
        }
        const element_place &place = *layout_.find(settings_category, found->element);
        store_number(number_from_json(content, 0, 0xFFFFFFFFLL, "settings, " + key), value(place, 0),
                     place.size);
    }
}

void fixture_loader::load_databases(const json &databases) {
    for (const auto &[name, tables] : databases.items()) {
        const norvane::database_schema &database = find_database(name);
        for (const auto &[table_name, content] : required_object(tables, name).items()) {
            load_table(name + "." + table_name, find_table(database, table_name), content);
        }
    }
}

void fixture_loader::load_table(const std::string &where, const QRY_LIB_TABLE_DEF &table,
                                const json &content) {
    required_object(content, where);
    for (const auto &[key, part] : content.items()) {
        if (key != "default" && key != "records") {
            refuse(where, "there is no key " + key);
        }
    }
    if (content.contains("default")) {
        const std::string place = where + " default";
        load_record(place, table, required_object(content["default"], place), 0);
        copy_default(table);
    }
    if (content.contains("records")) {
        load_records(where, table, content["records"]);
    }
}

void fixture_loader::copy_default(const QRY_LIB_TABLE_DEF &table) {
    for (const QRY_LIB_ELEMENT_DEF &row : columns_of(table)) {
        const element_place &place = place_of(row.info);
        for (std::uint32_t record = 1; record <= place.record_num; ++record) {
            std::memcpy(value(place, record), value(place, 0), place.size);
        }
    }
}

void fixture_loader::load_records(const std::string &where, const QRY_LIB_TABLE_DEF &table,
                                  const json &records) {
    if (!records.is_array()) {
        refuse(where, "\"records\" is not an array");
    }
    const std::uint32_t record_num = place_of(table.elements[0].info).record_num;
    std::set<std::uint32_t> seen;
    std::uint32_t next = 0;
    for (const json &object : records) {
        required_object(object, where + ", a record");
        const std::uint32_t record =
            object.contains("record") ? number_from_json(object["record"], 0, 0xFFFF, where + ", \"record\"")
                                      : next;
        const std::string place = where + " record " + std::to_string(record);
        if (record >= record_num) {
            refuse(place, "the table has " + std::to_string(record_num) + " records");
        }
        if (!seen.insert(record).second) {
            refuse(place, "is there twice");
        }
        load_record(place, table, object, record + 1);
        next = record + 1;
    }
}

void fixture_loader::load_record(const std::string &where, const QRY_LIB_TABLE_DEF &table, const json &object,
                                 std::uint32_t record) {
    std::vector<given_value> given;
    std::set<std::uint32_t> raw;
    for (const auto &[key, content] : object.items()) {
        const std::string place = where + ", " + key;
        if (key == "record" && record != 0) {
            continue;
        }
        if (!key.empty() && key.front() == '@') {
            load_raw(place, table, key, content, record, raw);
            continue;
        }
        given.push_back({&find_column(table, key, where), &content, place});
    }
    std::stable_sort(given.begin(), given.end(), [](const given_value &a, const given_value &b) {
        return a.column->member_offset < b.column->member_offset;
    });
    for (const given_value &one : given) {
        if (raw.count(one.column->element_id) != 0) {
            refuse(one.where, "its composite element is given as a whole too");
        }
        value_from_json(*one.column, *one.value, value(place_of(*one.column), record), one.where);
    }
}

// A composite as a whole: "@" and its element id in hexadecimal.
void fixture_loader::load_raw(const std::string &where, const QRY_LIB_TABLE_DEF &table,
                              const std::string &key, const json &content, std::uint32_t record,
                              std::set<std::uint32_t> &raw) {
    for (const QRY_LIB_ELEMENT_DEF &row : columns_of(table)) {
        if (row.info.is_member != 0 && key == raw_key(row.info.element_id)) {
            const element_place &place = place_of(row.info);
            std::vector<std::uint8_t> bytes = from_hex(content, place.size, where);
            bytes.resize(place.size);
            exchange_byte_order(table, place.element, bytes);
            std::copy(bytes.begin(), bytes.end(), value(place, record));
            raw.insert(place.element);
            return;
        }
    }
    refuse(where, "there is no such composite element");
}

std::vector<std::uint8_t> load_text(const std::string &text, const std::string &name) {
    const json file = parse(text, name);
    try {
        return fixture_loader().load(file);
    } catch (const refusal &error) {
        refuse(name, error.what());
    }
}

} // namespace

std::vector<std::uint8_t> load_fixture(const std::string &path) {
    return load_text(qryfiles::read_file(path, file_size_max), path);
}

std::vector<std::uint8_t> parse_fixture(const std::string &text) {
    return load_text(text, "the text");
}

} // namespace qryhost
