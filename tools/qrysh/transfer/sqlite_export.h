// Results as a SQLite database file.
#pragma once

#include <string>
#include <vector>

#include "tools/text/result.h"

namespace qrysh {

using namespace qrytext;

// One table of the file. Rows of the same key make the file's table one without a primary key.
struct sqlite_table {
    result rows;                   // `table` names it
    std::vector<bool> text_column; // one for each title
    std::vector<std::string> keys; // titles; may be empty
};

// The bytes of the file, which carries the mark of ours. Throws std::runtime_error when SQLite fails, or when
// the shell was built without it.
std::string sqlite_file(const std::vector<sqlite_table> &tables);

} // namespace qrysh
