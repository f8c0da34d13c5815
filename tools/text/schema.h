// The built-in schema as lists of names.
#pragma once

#include <qrylib/catalog.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qrytext {

bool database_exists(const std::string &db_name);
bool table_exists(const std::string &db_name, const std::string &table_name);

// The databases that have a table of this name, in order.
std::vector<std::string> databases_with(const std::string &table_name);

std::vector<std::string> database_names();
std::vector<std::string> table_names(const std::string &db_name);
std::vector<std::string> column_names(const std::string &db_name, const std::string &table_name);

std::vector<qry_lib_catalog_column_> table_columns(const std::string &db_name, const std::string &table_name);

// Nothing for a column that the table does not have.
std::optional<qry_lib_catalog_column_> find_column(const std::string &db_name, const std::string &table_name,
                                                   const std::string &column);

// Records that the device has room for.
std::int64_t table_capacity(const std::string &db_name, const std::string &table_name);

} // namespace qrytext
