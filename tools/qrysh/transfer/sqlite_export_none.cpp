// A shell built without SQLite.
#include <stdexcept>

#include "tools/qrysh/transfer/sqlite_export.h"

namespace qrysh {

std::string sqlite_file(const std::vector<sqlite_table> & /*tables*/) {
    throw std::runtime_error("this shell was built without SQLite; .csv, .json and .sql are there");
}

} // namespace qrysh
