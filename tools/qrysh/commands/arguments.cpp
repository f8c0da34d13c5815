// Words and numbers.
#include "tools/qrysh/commands/arguments.h"

#include <algorithm>
#include <charconv>

#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

word_and_rest split_first_word(std::string_view text) {
    const std::string_view trimmed = trim(text);
    const std::size_t end = std::min(trimmed.find(' '), trimmed.size());
    return {std::string(trimmed.substr(0, end)), std::string(trim(trimmed.substr(end)))};
}

std::vector<std::string> split_words(std::string_view text) {
    std::vector<std::string> words;
    for (word_and_rest next = split_first_word(text); !next.word.empty();
         next = split_first_word(next.rest)) {
        words.push_back(next.word);
    }
    return words;
}

std::optional<std::uint32_t> parse_number(std::string_view text) {
    const bool is_hex = text.substr(0, 2) == "0x";
    const std::string_view digits = is_hex ? text.substr(2) : text;
    std::uint32_t number = 0;
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, is_hex ? 16 : 10);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace qrysh
