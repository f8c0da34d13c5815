// The condition of a WHERE clause that the parser refused.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/text/clauses.h"

namespace qrytext {

// The comparisons of a text that need not be accepted: from the first WHERE to the next ORDER.
std::vector<text_span> conditions_of(const std::string &sql);

// The first comparison that the parser refuses, which traces.
std::optional<text_span> find_condition_fault(const std::string &sql);

} // namespace qrytext
