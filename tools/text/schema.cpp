// The library's catalog, read into lists.
#include "tools/text/schema.h"

#include <algorithm>

namespace qrytext {

bool database_exists(const std::string &db_name) {
    return qry_lib_catalog_table_num(db_name.c_str()) != 0;
}

bool table_exists(const std::string &db_name, const std::string &table_name) {
    return qry_lib_catalog_column_num(db_name.c_str(), table_name.c_str()) != 0;
}

std::vector<std::string> databases_with(const std::string &table_name) {
    std::vector<std::string> names = database_names();
    const auto lacks = [&](const std::string &db_name) { return !table_exists(db_name, table_name); };
    names.erase(std::remove_if(names.begin(), names.end(), lacks), names.end());
    return names;
}

std::vector<std::string> database_names() {
    std::vector<std::string> names;
    for (std::uint16_t i = 0; i < qry_lib_catalog_db_num(); ++i) {
        names.emplace_back(qry_lib_catalog_db(i));
    }
    return names;
}

std::vector<std::string> table_names(const std::string &db_name) {
    std::vector<std::string> names;
    for (std::uint16_t i = 0; i < qry_lib_catalog_table_num(db_name.c_str()); ++i) {
        names.emplace_back(qry_lib_catalog_table(db_name.c_str(), i));
    }
    return names;
}

std::vector<qry_lib_catalog_column_> table_columns(const std::string &db_name,
                                                   const std::string &table_name) {
    const std::uint16_t column_num = qry_lib_catalog_column_num(db_name.c_str(), table_name.c_str());
    std::vector<qry_lib_catalog_column_> columns(column_num);
    for (std::uint16_t i = 0; i < column_num; ++i) {
        qry_lib_catalog_column(db_name.c_str(), table_name.c_str(), i, &columns[i]);
    }
    return columns;
}

std::vector<std::string> column_names(const std::string &db_name, const std::string &table_name) {
    std::vector<std::string> names;
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, table_name)) {
        names.emplace_back(column.name);
    }
    return names;
}

std::optional<qry_lib_catalog_column_> find_column(const std::string &db_name, const std::string &table_name,
                                                   const std::string &column) {
    const std::vector<qry_lib_catalog_column_> columns = table_columns(db_name, table_name);
    const auto found =
        std::find_if(columns.begin(), columns.end(), [&](const auto &c) { return column == c.name; });
    return found == columns.end() ? std::nullopt : std::optional(*found);
}

std::int64_t table_capacity(const std::string &db_name, const std::string &table_name) {
    std::uint16_t records = 0;
    qry_lib_catalog_capacity(db_name.c_str(), table_name.c_str(), &records);
    return records;
}

} // namespace qrytext
