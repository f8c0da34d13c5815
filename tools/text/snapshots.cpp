// Records matched by their keys, and their columns compared.
#include "tools/text/snapshots.h"

#include <qrylib/types.h>

#include <map>
#include <stdexcept>
#include <utility>

#include "tools/text/json_text.h"
#include "tools/text/schema.h"

namespace qrytext {

namespace {

// A record's key as text, and which of the records with that key it is.
using record_key = std::pair<std::string, int>;

struct keyed_record {
    json_value key;
    json_value columns;
};

using table_records = std::map<record_key, keyed_record>;

json_value read_snapshot(const std::string &text, const char *which) {
    json_value parsed = json_value::parse(text, nullptr, false);
    if (!parsed.is_object() || !parsed.contains("format")) {
        throw std::runtime_error(std::string("the ") + which + " text is no fixture");
    }
    return parsed;
}

const json_value &member(const json_value &object, const std::string &name) {
    static const json_value nothing = json_value::object();
    return object.is_object() && object.contains(name) ? object[name] : nothing;
}

// A value that is left out is the default record's, and there 0 or the empty text.
json_value value_of(const json_value &record, const json_value &base, const qry_lib_catalog_column_ &column) {
    if (record.contains(column.name)) {
        return record[column.name];
    }
    if (base.contains(column.name)) {
        return base[column.name];
    }
    return column.type == QRY_LIB_COLUMN_TYPE_STR ? json_value("") : json_value(0);
}

keyed_record read_record(const json_value &record, const json_value &base,
                         const std::vector<qry_lib_catalog_column_> &columns) {
    keyed_record read{json_value::object(), json_value::object()};
    for (const qry_lib_catalog_column_ &column : columns) {
        json_value value = value_of(record, base, column);
        if (column.is_key != 0) {
            read.key[column.name] = value;
        }
        read.columns[column.name] = std::move(value);
    }
    for (const auto &[name, value] : record.items()) { // composite elements that are given as a whole
        if (!name.empty() && name.front() == '@') {
            read.columns[name] = value;
        }
    }
    return read;
}

table_records read_table(const json_value &table, const std::vector<qry_lib_catalog_column_> &columns) {
    const json_value &base = member(table, "default");
    table_records records;
    const auto add = [&](const std::string &name, keyed_record record) {
        int number = 0;
        while (records.count({name, number}) != 0) {
            ++number;
        }
        records.emplace(record_key{name, number}, std::move(record));
    };
    keyed_record standard = read_record(base, json_value::object(), columns);
    standard.key = "default";
    add("", std::move(standard));
    for (const json_value &record : member(table, "records")) {
        if (!record.is_object()) {
            throw std::runtime_error("a record is no object");
        }
        keyed_record read = read_record(record, base, columns);
        const std::string name = read.key.dump();
        add(name, std::move(read));
    }
    return records;
}

json_value change(const json_value &key, const json_value &column, const json_value &a, const json_value &b) {
    return {{"key", key}, {"column", column}, {"a", a}, {"b", b}};
}

void compare_records(const keyed_record &a, const keyed_record &b, json_value &changes) {
    for (const auto &[name, value] : a.columns.items()) {
        const json_value &other = b.columns.contains(name) ? b.columns[name] : json_value(nullptr);
        if (value != other) {
            changes.push_back(change(a.key, name, value, other));
        }
    }
    for (const auto &[name, value] : b.columns.items()) {
        if (!a.columns.contains(name)) {
            changes.push_back(change(b.key, name, nullptr, value));
        }
    }
}

// A record that only one side has is one change, without a column.
json_value compare_tables(const table_records &a, const table_records &b) {
    json_value changes = json_value::array();
    for (const auto &[key, record] : a) {
        const auto other = b.find(key);
        if (other == b.end()) {
            changes.push_back(change(record.key, nullptr, record.columns, nullptr));
        } else {
            compare_records(record, other->second, changes);
        }
    }
    for (const auto &[key, record] : b) {
        if (a.count(key) == 0) {
            changes.push_back(change(record.key, nullptr, nullptr, record.columns));
        }
    }
    return changes;
}

json_value compare_settings(const json_value &a, const json_value &b) {
    json_value changes = json_value::array();
    for (const char *const name : {"doublecount_1", "doublecount_2", "doublecount_3"}) {
        const json_value left = member(a, "settings").value(name, json_value(0));
        const json_value right = member(b, "settings").value(name, json_value(0));
        if (left != right) {
            changes.push_back(change("settings", name, left, right));
        }
    }
    return changes;
}

void add_changes(const std::string &db_name, const std::string &table, json_value changes,
                 json_value &tables) {
    if (!changes.empty()) {
        tables.push_back({{"database", db_name}, {"table", table}, {"changes", std::move(changes)}});
    }
}

json_value compare(const json_value &a, const json_value &b) {
    json_value tables = json_value::array();
    add_changes("", "", compare_settings(a, b), tables);
    for (const std::string &db_name : database_names()) {
        const json_value &left = member(member(a, "databases"), db_name);
        const json_value &right = member(member(b, "databases"), db_name);
        for (const std::string &table : table_names(db_name)) {
            const std::vector<qry_lib_catalog_column_> columns = table_columns(db_name, table);
            add_changes(db_name, table,
                        compare_tables(read_table(member(left, table), columns),
                                       read_table(member(right, table), columns)),
                        tables);
        }
    }
    return tables;
}

} // namespace

std::string compare_snapshots(const std::string &snapshot_a, const std::string &snapshot_b) {
    try {
        json_value tables = compare(read_snapshot(snapshot_a, "first"), read_snapshot(snapshot_b, "second"));
        return one_line({{"equal", tables.empty()}, {"tables", std::move(tables)}});
    } catch (const std::runtime_error &error) {
        return one_line(
            {{"equal", false}, {"tables", json_value::array()}, {"text", json_text(error.what())}});
    } catch (const json_value::exception &) { // a member of another type than fixtures have
        return one_line(
            {{"equal", false}, {"tables", json_value::array()}, {"text", "a text is no fixture"}});
    }
}

std::string snapshot_on_one_line(const std::string &snapshot) {
    return one_line(json_value::parse(snapshot));
}

} // namespace qrytext
