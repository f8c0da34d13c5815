// A device's records through the platform contract, in the form of the workstation's store, so that one
// writer and one reader of fixtures serve both.
#pragma once

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "exec/schema/schema.h"
#include "platform/host/store_layout.h"

namespace field {

// What the user is told: a wrong name, a file that does not fit, a platform that refuses.
struct failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Which tables are meant, and whether the settings are.
struct selection {
    std::set<std::string> tables; // "adbk_db.PSN_TBL"
    bool settings = true;

    bool has(const norvane::database_schema &database, const QRY_LIB_TABLE_DEF &table) const;
};

std::string full_name(const norvane::database_schema &database, const QRY_LIB_TABLE_DEF &table);

// Of whole databases, and of tables named "adbk_db.PSN_TBL"; everything where neither is given. Throws
// `failure` for what is not there.
selection select(const std::vector<std::string> &databases, const std::vector<std::string> &tables);

struct table_place {
    const norvane::database_schema *database;
    const QRY_LIB_TABLE_DEF *table;
};

// The selected tables, in the schema's order.
std::vector<table_place> tables_of(const selection &chosen);

// The elements of a table: a composite once.
std::vector<const qryhost::element_place *> elements_of(const QRY_LIB_TABLE_DEF &table);

// Reads what is selected; all else is zero. Throws `failure`.
std::vector<std::uint8_t> read_device(const selection &chosen);

// Writes one value, a setting too; `bytes` has the element's size. Throws `failure`.
void write_value(const qryhost::element_place &place, std::uint32_t record, const std::uint8_t *bytes);

} // namespace field
