// The condition of a WHERE clause that the parser refused.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qrysh/finding.h"

namespace qrysh {

// One comparison of the text's WHERE clause: where it stands, blanks around it aside.
struct text_span {
    std::size_t place;
    std::size_t length;
};

// The comparisons as the parser cuts them: at every " AND " or " OR ", those inside quotes included.
std::vector<text_span> conditions_of(std::string_view sql);

// The first comparison that the parser refuses, or the part of it that the trace point `line` is about.
std::optional<finding> find_condition_fault(const std::string &sql, int line, std::string_view sentence);

} // namespace qrysh
