// Titles over a result's columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qrytext {

struct column_name {
    std::string table; // may be empty where no title needs it
    std::string name;
};

// One title a column, all different: the column's name, TABLE.COLUMN where several columns have the name, and
// a number behind it where the same column was selected more than once. The nameless column of a count is
// COUNT(*).
std::vector<std::string> make_titles(const std::vector<column_name> &columns);

// The columns that a SELECT names, for a result without rows, which carries no names of its own.
std::vector<column_name> select_list(std::string_view sql);

} // namespace qrytext
