// The condition of a WHERE clause that the parser refused.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrytext {

// One comparison of the text's WHERE clause: where it stands, blanks around it aside.
struct text_span {
    std::size_t place;
    std::size_t length;
};

// The comparisons as the parser cuts them: at every " AND " or " OR ", those inside quotes included.
std::vector<text_span> conditions_of(std::string_view sql);

// The first comparison that the parser refuses, which traces.
std::optional<text_span> find_condition_fault(const std::string &sql);

} // namespace qrytext
