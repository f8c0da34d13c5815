// A place in a statement's text and what is to be said of it: why it is refused, or what became of it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qrytext {

struct finding {
    std::size_t place; // in bytes; the text's length: behind its end
    std::size_t length;
    std::string sentence;
    std::string hint = {};   // what to write instead; may be empty
    bool is_unknown = false; // no word of the dialect is near: the reader may have words of its own
};

// The sentence and, behind `between`, the hint where there is one.
std::string with_hint(const finding &found, std::string_view between);

// The text, and a caret under each column of the place with what is to be said of it, which may be empty.
std::string point_at(std::string_view text, const finding &found);

// The first place at or behind `from` where `word` stands between separators: blanks and the signs of the
// dialect, but not the point within a qualified name.
std::optional<std::size_t> find_word(std::string_view text, std::string_view word, std::size_t from = 0);

} // namespace qrytext
