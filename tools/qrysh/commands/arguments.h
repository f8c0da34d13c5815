// Commands' arguments taken apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrysh {

// A word is what stands between blanks, or between two quotes of a kind, blanks included; "~/" at the start
// of one without quotes is the home folder. Throws std::runtime_error for a quote without another.
std::vector<std::string> split_words(std::string_view text);

// A whole argument that is one name: the blanks in it belong to it, with quotes around it or without.
std::string one_name(std::string_view text);

// The first word, and the rest as it stands, without the blanks between them.
struct word_and_rest {
    std::string word;
    std::string rest;
};
word_and_rest split_first_word(std::string_view text);

// A decimal number, or a hexadecimal one behind 0x, of 32 bits.
std::optional<std::uint32_t> parse_number(std::string_view text);

} // namespace qrysh
