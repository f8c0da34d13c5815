// Files written whole or not at all.
#pragma once

#include <functional>
#include <string>

namespace qrysh {

// Lets `write` fill a file of another name beside `path`, and then gives it that name. What stood there
// before stays when anything fails, which throws.
void replace_file(const std::string &path, const std::function<void(const std::string &temporary)> &write);

// The same with a text.
void write_file(const std::string &path, const std::string &text);

} // namespace qrysh
