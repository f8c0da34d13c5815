// The files that the shell keeps or reads for whoever types.
#pragma once

#include <string>

namespace qrysh {

// What the variable names, or else the file of this name in the home folder. Empty where there is neither, or
// where the variable is empty.
std::string personal_file(const char *variable, const char *name);

} // namespace qrysh
