// Writes and reads the head around what the workstation's fixtures are.
#include "tools/field/snapshot.h"

#include <qrylib/version.h>

#include <ctime>

#include "exec/schema/secret_columns.h"
#include "platform/host/fixture.h"
#include "platform/host/fixture_values.h"
#include "tools/field/masking.h"

namespace field {

namespace {

using qryhost::json;

std::string now_text() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

json head(const selection &chosen, bool is_masked) {
    json capacities = json::object();
    for (const table_place &each : tables_of(chosen)) {
        capacities[each.database->name][each.table->table_name] =
            norvane::capacity_of(norvane::category_of(*each.table));
    }
    json head = {{"made", now_text()},
                 {"library", qry_lib_version()},
                 {"settings", chosen.settings},
                 {"capacities", std::move(capacities)}};
    if (is_masked) {
        for (const std::string_view name : norvane::secret_columns) {
            head["masked"].push_back(std::string(name));
        }
    }
    return head;
}

[[noreturn]] void refuse(const std::string &place, const std::string &reason) {
    throw failure("the snapshot's head, " + place + ": " + reason);
}

void read_capacities(const json &capacities, selection &covered) {
    if (!capacities.is_object()) {
        refuse("capacities", "is not an object");
    }
    for (const auto &[name, tables] : capacities.items()) {
        const norvane::database_schema *database = norvane::find_database(name.c_str());
        if (database == nullptr || !tables.is_object()) {
            refuse("capacities", "there is no database " + name);
        }
        for (const auto &[table, number] : tables.items()) {
            if (norvane::find_table(*database, table.c_str()) == nullptr || !number.is_number_unsigned()) {
                refuse("capacities", "there is no table " + name + "." + table);
            }
            covered.tables.insert(name + "." + table);
        }
    }
}

void read_head(const json &head, read_snapshot &snapshot) {
    if (!head.is_object() || !head.contains("capacities")) {
        refuse("snapshot", "does not say what it covers");
    }
    read_capacities(head["capacities"], snapshot.covered);
    snapshot.covered.settings = head.contains("settings") && head["settings"] == true;
    if (!head.contains("masked")) {
        return;
    }
    if (!head["masked"].is_array()) {
        refuse("masked", "is not an array");
    }
    for (const json &column : head["masked"]) {
        if (!column.is_string()) {
            refuse("masked", "a column's name is not a string");
        }
        snapshot.masked.insert(column.get<std::string>());
    }
}

// What a plain fixture names. Its names are known: it has been loaded.
void read_coverage(const json &file, selection &covered) {
    covered.settings = file.contains("settings");
    if (!file.contains("databases")) {
        return;
    }
    for (const auto &[database, tables] : file["databases"].items()) {
        for (const auto &[table, content] : tables.items()) {
            covered.tables.insert(database + "." + table);
        }
    }
}

} // namespace

void mask_secrets(std::vector<std::uint8_t> &region) {
    const masking masks;
    if (!masks.has_key()) {
        throw failure("the system draws no key for the masks");
    }
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                if (!norvane::is_secret_column(column.info.name)) {
                    continue;
                }
                const qryhost::element_place &place = qryhost::place_of(column.info);
                for (std::uint32_t record = 0; record <= place.record_num; ++record) {
                    masks.mask(region.data() + place.value_offset(record) + column.info.member_offset,
                               column.info.size);
                }
            }
        }
    }
}

std::string snapshot_text(const std::vector<std::uint8_t> &region, const selection &chosen, bool is_masked) {
    const json fixture = json::parse(qryhost::fixture_text(region));
    json snapshot = {{"format", fixture["format"]}, {"snapshot", head(chosen, is_masked)}};
    if (chosen.settings) {
        snapshot["settings"] = fixture["settings"];
    }
    snapshot["databases"] = fixture["databases"];
    return snapshot.dump(2) + "\n";
}

read_snapshot parse_snapshot(const std::string &text) {
    read_snapshot snapshot;
    snapshot.region = qryhost::parse_fixture(text);
    const json file = json::parse(text);
    if (file.contains("snapshot")) {
        read_head(file["snapshot"], snapshot);
    } else {
        read_coverage(file, snapshot.covered);
    }
    return snapshot;
}

} // namespace field
