// What a statement record held when it was run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <qrylib/types.h>

#include "tools/field/recording.h"

namespace field {

struct statement_column {
    std::string name;
    column_value value;
};

struct statement_contents {
    std::uint64_t pointer = 0;
    bool is_null = true;
    bool is_whole = false; // more than the database is known
    std::string db_name;
    std::uint32_t exec_type = 0;
    std::optional<std::string> table_name;
    std::optional<std::string> where_phrase;
    std::optional<std::string> orderby_phrase;
    std::int32_t col_num = 0;
    std::vector<statement_column> columns;
};

statement_contents take_statement(payload_reader &payload);

// Makes a record hold it. What the record held before is given back; texts and columns are the process's own
// memory, as every block of a replay is.
void fill(const statement_contents &contents, qry_lib_db_stmt_ &record);

} // namespace field
