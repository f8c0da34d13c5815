// Names that were nearly typed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qrytext {

// The candidate that differs least from `name`, letters' case aside; empty when none is near.
std::string nearest(std::string_view name, const std::vector<std::string> &candidates);

// "did you mean X?", or nothing.
std::string near_hint(std::string_view name, const std::vector<std::string> &candidates);

// The same behind a "; ".
std::string did_you_mean(std::string_view name, const std::vector<std::string> &candidates);

// ASCII letters in capitals.
std::string in_capitals(std::string_view text);

} // namespace qrytext
