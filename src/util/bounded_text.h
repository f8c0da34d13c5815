// Copies into the fixed character arrays of the public records, and the length checks that go before them.
#pragma once

#include <cstddef>
#include <cstring>

namespace norvane {

// True when `text` ends within `capacity` characters; reads no further than the byte behind them.
inline bool fits(const char *text, std::size_t capacity) {
    return std::memchr(text, '\0', capacity + 1) != nullptr;
}

// Copies as much of `text` as the array holds and always terminates it; the bytes behind stay as they were.
template <std::size_t Size>
void copy_bounded(char (&array)[Size], const char *text) {
    const void *end = std::memchr(text, '\0', Size - 1);
    const std::size_t length =
        end == nullptr ? Size - 1 : static_cast<std::size_t>(static_cast<const char *>(end) - text);
    std::memmove(array, text, length);
    array[length] = '\0';
}

} // namespace norvane
