// Copies into fixed character arrays, and the length checks that go before them.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace norvane {

// True when `text` ends within `capacity` characters; reads no further than the byte behind them.
inline bool fits(const char *text, std::size_t capacity) {
    return std::memchr(text, '\0', capacity + 1) != nullptr;
}

// The characters of `text` before its terminator, or `capacity` where that comes first.
inline std::size_t bounded_length(const char *text, std::size_t capacity) {
    const void *end = std::memchr(text, '\0', capacity);
    return end == nullptr ? capacity : static_cast<std::size_t>(static_cast<const char *>(end) - text);
}

// Copies at most `Capacity` characters of `text` and a terminator; the bytes behind stay as they were.
template <std::size_t Capacity>
void copy_bounded(char *out, const char *text) {
    const std::size_t length = bounded_length(text, Capacity);
    std::memmove(out, text, length);
    out[length] = '\0';
}

// As much of `text` as the array holds.
template <std::size_t Size>
void copy_bounded(char (&array)[Size], const char *text) {
    copy_bounded<Size - 1>(static_cast<char *>(array), text);
}

template <std::size_t Size>
void copy_bounded(char (&array)[Size], std::string_view text) {
    const std::size_t length = text.size() < Size ? text.size() : Size - 1;
    std::memmove(array, text.data(), length);
    array[length] = '\0';
}

} // namespace norvane
