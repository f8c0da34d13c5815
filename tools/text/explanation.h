// A statement explained: how it is understood, and what its search will test.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/text/query_reader.h"
#include "tools/text/result.h"

namespace qrytext {

// One table's search.
struct search_plan {
    std::uint32_t category = 0;
    std::vector<std::string> keys; // in the order in which each record is tested
};

// One table's part of a join.
struct join_part {
    query asked;
    search_plan search;
};

struct explanation {
    std::uint32_t code = 0; // 0, or why the statement is refused; then the rest is of no use
    query asked{};
    search_plan search;             // of a statement over one table
    std::vector<std::string> links; // of a join, as are its parts
    std::vector<join_part> parts;
};

// Reads the default record and nothing else. Traces. Throws syntax_error for an INSERT or UPDATE that cannot
// be read.
explanation explain(const std::string &db_name, const std::string &sql);

// One fact a row: part, item, value.
result list_facts(const explanation &explained);

// As .explain and the companion write them.
const char *type_name(QRY_LIB_DB_QUERY_TYPE type);
const char *operation_name(QRY_LIB_OPERATION_TYPE operation);
const char *direction_name(QRY_LIB_ODER_TYPE direction);
const char *join_name(std::uint32_t join);

} // namespace qrytext
