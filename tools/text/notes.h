// What of a statement was ignored, narrowed, or is read otherwise than it looks.
#pragma once

#include <string>
#include <vector>

#include "tools/text/finding.h"

namespace qrytext {

// Compares the text with what the library's analysis keeps of it, in the order of the text. Nothing is noted
// of a statement that the library does not accept: its refusal says more. Traces.
std::vector<finding> find_notes(const std::string &db_name, const std::string &sql);

} // namespace qrytext
