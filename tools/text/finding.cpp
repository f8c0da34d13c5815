// Carets under texts, and words found in them.
#include "tools/text/finding.h"

#include <algorithm>

#include <fmt/format.h>

#include "tools/text/text.h"

namespace qrytext {

namespace {

constexpr std::string_view separators = " ,()=<>!';";

bool is_separated(std::string_view text, std::size_t place) {
    return place >= text.size() || separators.find(text[place]) != std::string_view::npos;
}

} // namespace

std::string with_hint(const finding &found, std::string_view between) {
    return found.hint.empty() ? found.sentence : fmt::format("{}{}{}", found.sentence, between, found.hint);
}

std::string point_at(std::string_view text, const finding &found) {
    const std::string said = with_hint(found, ": ");
    const std::size_t place = std::min(found.place, text.size());
    const std::size_t before = text_width(printable(text.substr(0, place)));
    const std::size_t under = text_width(printable(text.substr(place, found.length)));
    return fmt::format("  {}\n  {}{}{}{}\n", printable(text), std::string(before, ' '),
                       std::string(std::max<std::size_t>(under, 1), '^'), said.empty() ? "" : " ", said);
}

std::optional<std::size_t> find_word(std::string_view text, std::string_view word, std::size_t from) {
    for (std::size_t place = text.find(word, from); place != std::string_view::npos && !word.empty();
         place = text.find(word, place + 1)) {
        const bool begins = place == 0 || is_separated(text, place - 1);
        if (begins && is_separated(text, place + word.size())) {
            return place;
        }
    }
    return std::nullopt;
}

} // namespace qrytext
