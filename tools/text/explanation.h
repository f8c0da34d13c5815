// A statement explained: how it is understood, and what its search will test.
#pragma once

#include <cstdint>
#include <string>

#include "tools/text/result.h"

namespace qrytext {

struct explanation {
    std::uint32_t code; // 0, or why the statement is refused
    result facts;       // one a row: part, item, value
};

// Reads the default record and nothing else. Traces. Throws syntax_error for an INSERT or UPDATE that cannot
// be read.
explanation explain(const std::string &db_name, const std::string &sql);

} // namespace qrytext
