// The search's filter keys in the schema's words.
#pragma once

#include <qrylib/element_table.h>

#include <string>
#include <vector>

#include "tools/text/result.h"

namespace qrytext {

// The column that the key tests.
std::string key_column(const std::string &db_name, const std::string &table,
                       const qry_lib_tb_list_filter_key_ &key);

cell key_value(const qry_lib_tb_list_filter_key_ &key);

// The key columns of a table's free records and their values, from the default record. Empty for the one kind
// of table whose records are never free. May trace.
struct free_key {
    std::string column;
    cell value;
};
std::vector<free_key> free_keys(const std::string &db_name, const std::string &table);

} // namespace qrytext
