// Databases, tables and columns from the library's catalog.
#include "tools/qrysh/listings.h"

#include <qrylib/catalog.h>
#include <qrylib/types.h>

#include <iterator>

namespace qrysh {

namespace {

constexpr const char *type_names[] = {"int", "uchar", "ushort", "uint", "ulong", "str"};
static_assert(std::size(type_names) == QRY_LIB_COLUMN_TYPE_STR + 1);

std::int64_t capacity_of(const char *db_name, const char *table_name) {
    std::uint16_t records = 0;
    qry_lib_catalog_capacity(db_name, table_name, &records);
    return records;
}

void add_columns(result &list, const char *db_name, const char *table_name) {
    const std::uint16_t column_num = qry_lib_catalog_column_num(db_name, table_name);
    for (std::uint16_t i = 0; i < column_num; ++i) {
        qry_lib_catalog_column_ column{};
        qry_lib_catalog_column(db_name, table_name, i, &column);
        list.rows.push_back({table_name, column.name, type_names[column.type], std::int64_t{column.size},
                             column.is_key != 0 ? "yes" : "", capacity_of(db_name, table_name)});
    }
}

} // namespace

bool database_exists(const std::string &db_name) {
    return qry_lib_catalog_table_num(db_name.c_str()) != 0;
}

bool table_exists(const std::string &db_name, const std::string &table_name) {
    return qry_lib_catalog_column_num(db_name.c_str(), table_name.c_str()) != 0;
}

result list_databases() {
    result list{{"DATABASE", "TABLES"}, {}};
    for (std::uint16_t i = 0; i < qry_lib_catalog_db_num(); ++i) {
        const char *const db_name = qry_lib_catalog_db(i);
        list.rows.push_back({db_name, std::int64_t{qry_lib_catalog_table_num(db_name)}});
    }
    return list;
}

result list_tables(const std::string &db_name) {
    result list{{"TABLE", "COLUMNS", "CAPACITY"}, {}};
    for (std::uint16_t i = 0; i < qry_lib_catalog_table_num(db_name.c_str()); ++i) {
        const char *const table_name = qry_lib_catalog_table(db_name.c_str(), i);
        list.rows.push_back({table_name,
                             std::int64_t{qry_lib_catalog_column_num(db_name.c_str(), table_name)},
                             capacity_of(db_name.c_str(), table_name)});
    }
    return list;
}

result list_columns(const std::string &db_name, const std::string &table_name) {
    result list{{"TABLE", "COLUMN", "TYPE", "SIZE", "KEY", "CAPACITY"}, {}};
    if (!table_name.empty()) {
        add_columns(list, db_name.c_str(), table_name.c_str());
        return list;
    }
    for (std::uint16_t i = 0; i < qry_lib_catalog_table_num(db_name.c_str()); ++i) {
        add_columns(list, db_name.c_str(), qry_lib_catalog_table(db_name.c_str(), i));
    }
    return list;
}

} // namespace qrysh
