// Databases, tables and columns from the library's catalog, with the records in use.
#include "tools/text/listings.h"

#include <qrylib/types.h>

#include <iterator>

#include "tools/text/engine.h"
#include "tools/text/schema.h"

namespace qrytext {

namespace {

constexpr const char *type_names[] = {"int", "uchar", "ushort", "uint", "ulong", "str"};
static_assert(std::size(type_names) == QRY_LIB_COLUMN_TYPE_STR + 1);

void add_columns(result &list, const std::string &db_name, const std::string &table_name) {
    const std::int64_t capacity = table_capacity(db_name, table_name);
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, table_name)) {
        list.rows.push_back({table_name, column.name, type_names[column.type], std::int64_t{column.size},
                             column.is_key != 0 ? "yes" : "", capacity});
    }
}

} // namespace

const char *column_type_name(std::uint8_t type) {
    return type_names[type];
}

result list_databases() {
    result list{{"DATABASE", "TABLES", "CAPACITY", "IN USE"}, {}};
    for (const std::string &db_name : database_names()) {
        std::int64_t capacity = 0;
        std::int64_t in_use = 0;
        const std::vector<std::string> tables = table_names(db_name);
        for (const std::string &table : tables) {
            capacity += table_capacity(db_name, table);
            in_use += records_in_use(db_name, table);
        }
        list.rows.push_back({db_name, static_cast<std::int64_t>(tables.size()), capacity, in_use});
    }
    return list;
}

result list_tables(const std::string &db_name) {
    result list{{"TABLE", "COLUMNS", "CAPACITY", "IN USE"}, {}};
    for (const std::string &table : table_names(db_name)) {
        list.rows.push_back({table, static_cast<std::int64_t>(table_columns(db_name, table).size()),
                             table_capacity(db_name, table), records_in_use(db_name, table)});
    }
    return list;
}

result list_columns(const std::string &db_name, const std::string &table_name) {
    result list{{"TABLE", "COLUMN", "TYPE", "SIZE", "KEY", "CAPACITY"}, {}};
    if (!table_name.empty()) {
        add_columns(list, db_name, table_name);
        return list;
    }
    for (const std::string &table : table_names(db_name)) {
        add_columns(list, db_name, table);
    }
    return list;
}

} // namespace qrytext
