// Where in a refused statement's text the fault lies, as far as it can be known.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "tools/text/finding.h"

namespace qrytext {

// `traces` are the lines that the refused statement left. Reads the text again with the library's own parser,
// which traces.
std::optional<finding> diagnose(const std::string &db_name, const std::string &sql, std::uint32_t code,
                                const std::deque<std::string> &traces);

// A text that the parser did not accept: the place that its trace points tell.
std::optional<finding> find_refused_place(const std::string &sql, const std::deque<std::string> &traces);

// A text that it did accept: the name or comparison that the schema does not allow.
std::optional<finding> find_unknown_name(const std::string &db_name, const std::string &sql);

} // namespace qrytext
