// The types of stored values: which are strings, how wide the numbers are, how they are read and written.
#pragma once

#include <cstdint>
#include <cstring>

namespace norvane {

// The first six equal the type tags of result columns; a name is a string there.
enum element_type : std::uint32_t {
    element_int = 0,
    element_uchar = 1,
    element_ushort = 2,
    element_uint = 3,
    element_ulong = 4,
    element_string = 5,
    element_name = 6
};

constexpr bool is_string_element(std::uint32_t type) {
    return type == element_string || type == element_name;
}

// Bytes of a number of the type; 0 for a string, and for what is no type at all.
constexpr std::uint32_t number_width(std::uint32_t type) {
    constexpr std::uint8_t widths[] = {4, 1, 2, 4, 4};
    return type < element_string ? widths[type] : 0;
}

// Copies a number as it stands, in the machine's byte order; either may lie at any address. One move of a
// known size for each width: a call that copies so few bytes would cost more than they do.
inline void copy_number(void *to, const void *from, std::uint32_t width) {
    switch (width) {
    case 1:
        std::memcpy(to, from, 1);
        break;
    case 2:
        std::memcpy(to, from, 2);
        break;
    default:
        std::memcpy(to, from, 4);
        break;
    }
}

// The number at `from`, with zeros before it.
inline std::uint32_t load_number(const void *from, std::uint32_t width) {
    std::uint8_t one = 0;
    std::uint16_t two = 0;
    std::uint32_t four = 0;
    switch (width) {
    case 1:
        std::memcpy(&one, from, 1);
        return one;
    case 2:
        std::memcpy(&two, from, 2);
        return two;
    default:
        std::memcpy(&four, from, 4);
        return four;
    }
}

// Stores the low bytes of a number.
inline void store_number(void *to, std::uint32_t width, std::uint32_t number) {
    const auto one = static_cast<std::uint8_t>(number);
    const auto two = static_cast<std::uint16_t>(number);
    switch (width) {
    case 1:
        std::memcpy(to, &one, 1);
        break;
    case 2:
        std::memcpy(to, &two, 2);
        break;
    default:
        std::memcpy(to, &number, 4);
        break;
    }
}

} // namespace norvane
