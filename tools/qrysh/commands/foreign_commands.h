// Commands of other shells, and what is here instead.
#pragma once

#include <string>
#include <string_view>

namespace qrysh {

// "there is no command X", and what is there instead or may have been meant.
std::string no_such_command(std::string_view name);

} // namespace qrysh
