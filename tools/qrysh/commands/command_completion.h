// What may stand where the cursor is, in a command or in a statement.
#pragma once

#include <string>
#include <string_view>

#include "tools/text/completion.h"

namespace qrysh {

// `line` up to `cursor` is completed by commands at its start and by their words behind them, and otherwise
// as a statement.
qrytext::completion complete_line(const std::string &db_name, std::string_view line, std::size_t cursor);

} // namespace qrysh
