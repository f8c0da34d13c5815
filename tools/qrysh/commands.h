// The shell's own commands, which begin with ".".
#pragma once

#include <string_view>

#include "tools/qrysh/session.h"

namespace qrysh {

outcome run_command(session &shell, std::string_view line);

// What .help prints.
std::string command_help();

} // namespace qrysh
