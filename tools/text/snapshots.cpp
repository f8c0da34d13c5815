// Records matched by their keys, and their columns compared.
#include "tools/text/snapshots.h"

#include <qrylib/types.h>

#include <map>
#include <set>
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

// What a snapshot's head says: the tables that it covers and the columns that it masks. Without one, it
// covers all and masks nothing.
class snapshot_head {
  public:
    explicit snapshot_head(const json_value &snapshot)
        : is_there_(snapshot.contains("snapshot")), head_(member(snapshot, "snapshot")) {}

    bool covers(const std::string &db_name, const std::string &table) const {
        return !is_there_ || member(member(head_, "capacities"), db_name).contains(table);
    }
    bool covers_settings() const { return !is_there_ || head_.value("settings", json_value(false)) == true; }
    std::set<std::string> masked() const {
        std::set<std::string> names;
        for (const json_value &name : member(head_, "masked")) {
            names.insert(name.get<std::string>());
        }
        return names;
    }

  private:
    bool is_there_;
    const json_value &head_;
};

class comparison {
  public:
    comparison(const json_value &a, const json_value &b)
        : a_(a), b_(b), a_head_(a), b_head_(b), masked_(a_head_.masked()) {
        masked_.merge(b_head_.masked());
        compare_settings();
        for (const std::string &db_name : database_names()) {
            for (const std::string &table : table_names(db_name)) {
                compare_table(db_name, table);
            }
        }
    }

    json_value answer() const {
        return {
            {"equal", tables_.empty()}, {"tables", tables_}, {"masked", unknown_}, {"uncovered", uncovered_}};
    }

  private:
    void compare_settings();
    void compare_table(const std::string &db_name, const std::string &table);
    void compare_records(const table_records &a, const table_records &b);
    void compare_columns(const keyed_record &a, const keyed_record &b);
    void compare_masked(const keyed_record &a, const std::string &column, const json_value &value,
                        const json_value &other);
    void end_table(const std::string &db_name, const std::string &table);

    const json_value &a_;
    const json_value &b_;
    snapshot_head a_head_;
    snapshot_head b_head_;
    std::set<std::string> masked_;

    json_value changes_ = json_value::array();   // of one table
    std::map<std::string, int> unknown_columns_; // of one table: records whose values cannot be compared
    json_value tables_ = json_value::array();
    json_value unknown_ = json_value::array();
    json_value uncovered_ = json_value::array();
};

// A mask has the length of what it stands for: other lengths tell that the values differ, and nothing else
// does.
void comparison::compare_masked(const keyed_record &a, const std::string &column, const json_value &value,
                                const json_value &other) {
    const std::string left = text_of(value).value_or("");
    const std::string right = text_of(other).value_or("");
    if (left.size() != right.size()) {
        changes_.push_back(change(a.key, column, value, other));
        changes_.back()["masked"] = true;
    } else if (!left.empty()) {
        ++unknown_columns_[column];
    }
}

void comparison::compare_columns(const keyed_record &a, const keyed_record &b) {
    for (const auto &[name, value] : a.columns.items()) {
        const json_value &other = b.columns.contains(name) ? b.columns[name] : json_value(nullptr);
        if (masked_.count(name) != 0) {
            compare_masked(a, name, value, other);
        } else if (value != other) {
            changes_.push_back(change(a.key, name, value, other));
        }
    }
    for (const auto &[name, value] : b.columns.items()) {
        if (!a.columns.contains(name)) {
            changes_.push_back(change(b.key, name, nullptr, value));
        }
    }
}

// A record that only one side has is one change, without a column.
void comparison::compare_records(const table_records &a, const table_records &b) {
    for (const auto &[key, record] : a) {
        const auto other = b.find(key);
        if (other == b.end()) {
            changes_.push_back(change(record.key, nullptr, record.columns, nullptr));
        } else {
            compare_columns(record, other->second);
        }
    }
    for (const auto &[key, record] : b) {
        if (a.count(key) == 0) {
            changes_.push_back(change(record.key, nullptr, nullptr, record.columns));
        }
    }
}

void comparison::compare_settings() {
    if (!a_head_.covers_settings() || !b_head_.covers_settings()) {
        return;
    }
    for (const char *const name : {"doublecount_1", "doublecount_2", "doublecount_3"}) {
        const json_value left = member(a_, "settings").value(name, json_value(0));
        const json_value right = member(b_, "settings").value(name, json_value(0));
        if (left != right) {
            changes_.push_back(change("settings", name, left, right));
        }
    }
    end_table("", "");
}

// What only one side covers is not compared: it would look empty on the other.
void comparison::compare_table(const std::string &db_name, const std::string &table) {
    const bool is_in_a = a_head_.covers(db_name, table);
    const bool is_in_b = b_head_.covers(db_name, table);
    if (is_in_a != is_in_b) {
        uncovered_.push_back({{"database", db_name}, {"table", table}, {"in", is_in_a ? "a" : "b"}});
    }
    if (!is_in_a || !is_in_b) {
        return;
    }
    const std::vector<qry_lib_catalog_column_> columns = table_columns(db_name, table);
    compare_records(read_table(member(member(member(a_, "databases"), db_name), table), columns),
                    read_table(member(member(member(b_, "databases"), db_name), table), columns));
    end_table(db_name, table);
}

void comparison::end_table(const std::string &db_name, const std::string &table) {
    if (!changes_.empty()) {
        tables_.push_back({{"database", db_name}, {"table", table}, {"changes", std::move(changes_)}});
        changes_ = json_value::array();
    }
    for (const auto &[column, records] : unknown_columns_) {
        unknown_.push_back(
            {{"database", db_name}, {"table", table}, {"column", column}, {"records", records}});
    }
    unknown_columns_.clear();
}

json_value no_comparison(const json_value &sentence) {
    return {{"equal", false},
            {"tables", json_value::array()},
            {"masked", json_value::array()},
            {"uncovered", json_value::array()},
            {"text", sentence}};
}

} // namespace

std::string compare_snapshots(const std::string &snapshot_a, const std::string &snapshot_b) {
    try {
        const json_value a = read_snapshot(snapshot_a, "first");
        const json_value b = read_snapshot(snapshot_b, "second");
        return one_line(comparison(a, b).answer());
    } catch (const std::runtime_error &error) {
        return one_line(no_comparison(json_text(error.what())));
    } catch (const json_value::exception &) { // a member of another type than fixtures have
        return one_line(no_comparison("a text is no fixture"));
    }
}

std::string snapshot_on_one_line(const std::string &snapshot) {
    return one_line(json_value::parse(snapshot));
}

} // namespace qrytext
