// Decimal text and numbers, the same on every machine: the device's long is 32 bits wide.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>

namespace norvane {

// What strtol gives where long has 32 bits: 0 without digits, saturating at both ends.
inline std::int32_t text_to_int32(const char *text) {
    while (*text == ' ' || (*text >= '\t' && *text <= '\r')) {
        ++text;
    }
    const bool is_negative = *text == '-';
    if (is_negative || *text == '+') {
        ++text;
    }
    const std::uint32_t limit = is_negative ? 0x80000000u : 0x7FFFFFFFu;
    std::uint32_t number = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        const auto digit = static_cast<std::uint32_t>(*text - '0');
        if (number > (limit - digit) / 10) {
            number = limit;
            break;
        }
        number = 10 * number + digit;
    }
    return static_cast<std::int32_t>(is_negative ? 0 - number : number);
}

// Writes a number with a terminator; how many characters it has.
template <std::size_t Size>
std::size_t int32_to_text(std::int32_t number, char (&text)[Size]) {
    static_assert(Size >= sizeof "-2147483648");
    char *const end = std::to_chars(text, text + Size - 1, number).ptr;
    *end = '\0';
    return static_cast<std::size_t>(end - text);
}

} // namespace norvane
