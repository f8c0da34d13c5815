// The shell's own commands, which begin with ".": what each is called, takes and touches. What they do stands
// above, in shell.cpp.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qrysh {

enum class argument { none, optional, required };

// What --safe and --readonly refuse of a command.
enum class touches { nothing, files, files_and_records };

struct command {
    std::string_view name; // with its point
    argument takes;
    touches effect;
    std::string_view usage;
    std::string_view help;
    std::string_view details; // what .help NAME adds
};

// Null for a name that no command has.
const command *find_command(std::string_view name);

// What .help prints.
std::string command_help();

std::vector<std::string> command_names();

} // namespace qrysh
