// Words and numbers.
#include "tools/qrysh/commands/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

std::string with_home(std::string_view word) {
    const char *const home = std::getenv("HOME");
    const bool is_at_home = word == "~" || word.substr(0, 2) == "~/";
    return is_at_home && home != nullptr ? home + std::string(word.substr(1)) : std::string(word);
}

// Where the quoted word that `text` begins with ends, its second quote included.
std::size_t quoted_end(std::string_view text) {
    const std::size_t quote = text.find(text.front(), 1);
    if (quote == std::string_view::npos) {
        throw std::runtime_error(fmt::format("a quote without another: {}", printable(text)));
    }
    return quote + 1;
}

bool begins_quoted(std::string_view text) {
    return !text.empty() && (text.front() == '"' || text.front() == '\'');
}

} // namespace

word_and_rest split_first_word(std::string_view text) {
    const std::string_view trimmed = trim(text);
    if (begins_quoted(trimmed)) {
        const std::size_t end = quoted_end(trimmed);
        return {std::string(trimmed.substr(1, end - 2)), std::string(trim(trimmed.substr(end)))};
    }
    const std::size_t end = std::min(trimmed.find(' '), trimmed.size());
    return {with_home(trimmed.substr(0, end)), std::string(trim(trimmed.substr(end)))};
}

std::string one_name(std::string_view text) {
    if (!begins_quoted(text)) {
        return with_home(text);
    }
    const word_and_rest parts = split_first_word(text);
    if (!parts.rest.empty()) {
        throw std::runtime_error(
            fmt::format("one name is expected, and nothing behind it: {}", printable(text)));
    }
    return parts.word;
}

std::vector<std::string> split_words(std::string_view text) {
    std::vector<std::string> words;
    for (word_and_rest next{"", std::string(trim(text))}; !next.rest.empty();) {
        next = split_first_word(next.rest);
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
