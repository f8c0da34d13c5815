// The built-in schema as results, so that every output mode can print it.
#pragma once

#include <cstdint>
#include <string>

#include "tools/text/result.h"

namespace qrytext {

// "int", "ushort" and so on, of a QRY_LIB_COLUMN_TYPE.
const char *column_type_name(std::uint8_t type);

result list_databases();
result list_tables(const std::string &db_name);

// The columns of one table, or of every table when `table_name` is empty.
result list_columns(const std::string &db_name, const std::string &table_name);

} // namespace qrytext
