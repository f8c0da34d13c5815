// UTF-8 text on a terminal: what can be shown of it and how wide it is.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qrytext {

struct decoded_character {
    std::optional<char32_t> code_point; // nothing: the byte is no part of a valid character
    std::size_t length;                 // bytes taken, at least 1
};

// The character at the start of `text`, which must not be empty.
decoded_character decode_character(std::string_view text);

bool is_utf8(std::string_view text);

// The text with control characters and bytes that are not UTF-8 written as \x1B, and invisible ones such as
// those that turn the direction of writing as \u{202E}: so that a value can neither break a table's lines nor
// steer the terminal, nor look like another.
std::string printable(std::string_view text);

// The same of a text that has lines, ended either way, and tabs of its own, which stay.
std::string printable_lines(std::string_view text);

// A text of JSON in which the same characters stand as JSON's escapes. They are in strings alone.
std::string escaped_json(std::string_view json);

// Terminal columns that a printable text takes.
std::size_t text_width(std::string_view text);

// Terminal columns of one character: 2 for most Japanese ones.
std::size_t character_width(char32_t code_point);

// Removes blanks from both ends.
std::string_view trim(std::string_view text);

} // namespace qrytext
