// UTF-8 decoding, escapes and widths.
#include "tools/text/text.h"

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

void append_escaped(std::string &out, std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out += fmt::format("\\x{:02X}", byte_at(bytes, i));
    }
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
    std::string out;
    while (!text.empty()) {
        const decoded_character character = decode_character(text);
        const std::string_view bytes = text.substr(0, character.length);
        if (!character.code_point || is_control(*character.code_point)) {
            append_escaped(out, bytes);
        } else {
            out += bytes;
        }
        text.remove_prefix(character.length);
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
