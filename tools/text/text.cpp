// UTF-8 decoding, escapes and widths.
#include "tools/text/text.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace qrytext {

namespace {

constexpr decoded_character invalid_byte{std::nullopt, 1};

unsigned byte_at(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

struct sequence_form {
    unsigned lead_mask;
    unsigned lead_bits;
    std::size_t length;
    char32_t smallest; // anything below is an overlong form, which is refused
};

constexpr sequence_form sequence_forms[] = {
    {0x80, 0x00, 1, 0x0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

bool is_scalar_value(char32_t code_point) {
    return code_point <= 0x10FFFF && (code_point < 0xD800 || code_point > 0xDFFF);
}

decoded_character decode_as(const sequence_form &form, std::string_view text) {
    if (text.size() < form.length) {
        return invalid_byte;
    }
    char32_t code_point = byte_at(text, 0) & ~form.lead_mask;
    for (std::size_t i = 1; i < form.length; ++i) {
        if ((byte_at(text, i) & 0xC0) != 0x80) {
            return invalid_byte;
        }
        code_point = (code_point << 6) | (byte_at(text, i) & 0x3F);
    }
    if (code_point < form.smallest || !is_scalar_value(code_point)) {
        return invalid_byte;
    }
    return {code_point, form.length};
}

bool is_control(char32_t code_point) {
    return code_point < 0x20 || (code_point >= 0x7F && code_point < 0xA0);
}

struct code_range {
    char32_t first;
    char32_t last;
};

// Characters that show nothing of themselves: soft hyphens, joiners, marks of direction, separators of lines,
// tags. Those that choose a character's form are none: names are written with them.
constexpr code_range invisible_ranges[] = {
    {0xAD, 0xAD},       {0x34F, 0x34F},    {0x61C, 0x61C},   {0x115F, 0x1160},   {0x17B4, 0x17B5},
    {0x180E, 0x180E},   {0x200B, 0x200F},  {0x2028, 0x202E}, {0x2060, 0x206F},   {0x3164, 0x3164},
    {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},  {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
    {0xE0000, 0xE00FF}, {0xE01F0, 0xE0FFF}};

bool is_invisible(char32_t code_point) {
    return std::any_of(
        std::begin(invisible_ranges), std::end(invisible_ranges),
        [=](const code_range &range) { return range.first <= code_point && code_point <= range.last; });
}

void append_bytes(std::string &out, std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out += fmt::format("\\x{:02X}", byte_at(bytes, i));
    }
}

// Characters above 16 bits are two escapes in JSON.
void append_json_escape(std::string &out, char32_t code_point) {
    constexpr char32_t first_above = 0x10000;
    if (code_point < first_above) {
        out += fmt::format("\\u{:04x}", static_cast<unsigned>(code_point));
        return;
    }
    const char32_t rest = code_point - first_above;
    append_json_escape(out, 0xD800 + (rest >> 10));
    append_json_escape(out, 0xDC00 + (rest & 0x3FF));
}

// `keeps` says of a control character whether it stays.
template <typename Keeps>
std::string escaped(std::string_view text, Keeps keeps) {
    std::string out;
    while (!text.empty()) {
        const decoded_character character = decode_character(text);
        const std::string_view bytes = text.substr(0, character.length);
        if (!character.code_point || (is_control(*character.code_point) && !keeps(bytes.front()))) {
            append_bytes(out, bytes);
        } else if (is_invisible(*character.code_point)) {
            out += fmt::format("\\u{{{:04X}}}", static_cast<unsigned>(*character.code_point));
        } else {
            out += bytes;
        }
        text.remove_prefix(character.length);
    }
    return out;
}

} // namespace

decoded_character decode_character(std::string_view text) {
    for (const sequence_form &form : sequence_forms) {
        if ((byte_at(text, 0) & form.lead_mask) == form.lead_bits) {
            return decode_as(form, text);
        }
    }
    return invalid_byte;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const decoded_character character = decode_character(text);
        if (!character.code_point) {
            return false;
        }
        text.remove_prefix(character.length);
    }
    return true;
}

std::string printable(std::string_view text) {
    return escaped(text, [](char) { return false; });
}

std::string printable_lines(std::string_view text) {
    constexpr std::string_view line_end = "\r\n";
    const auto is_kept = [](char c) { return c == '\n' || c == '\t'; };
    std::string out;
    for (std::size_t end = text.find(line_end); end != std::string_view::npos; end = text.find(line_end)) {
        out.append(escaped(text.substr(0, end), is_kept)).append(line_end);
        text.remove_prefix(end + line_end.size());
    }
    return out + escaped(text, is_kept);
}

std::string escaped_json(std::string_view json) {
    std::string out;
    while (!json.empty()) {
        const decoded_character character = decode_character(json);
        const char32_t code_point = character.code_point.value_or(0);
        if (code_point >= 0x7F && (is_control(code_point) || is_invisible(code_point))) {
            append_json_escape(out, code_point);
        } else {
            out += json.substr(0, character.length);
        }
        json.remove_prefix(character.length);
    }
    return out;
}

std::size_t text_width(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        const decoded_character character = decode_character(text);
        width += character.code_point ? character_width(*character.code_point) : 1;
        text.remove_prefix(character.length);
    }
    return width;
}

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace qrytext
