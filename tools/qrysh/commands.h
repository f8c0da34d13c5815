// The shell's own commands, which begin with ".".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/qrysh/session.h"

namespace qrysh {

outcome run_command(session &shell, std::string_view line);

// What .help prints.
std::string command_help();

// Every command's name, with its point.
std::vector<std::string> command_names();

} // namespace qrysh
