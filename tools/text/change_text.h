// What a statement changed, in words.
#pragma once

#include <string>

#include "tools/text/statement_report.h"

namespace qrytext {

// "9 records deleted", "1 record replaced (key 5 was in use)"; empty for a statement that changes no records.
std::string describe_changes(const std::string &db_name, const std::string &sql,
                             const statement_report &report);

} // namespace qrytext
