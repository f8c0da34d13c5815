// Decimal text and numbers, the same on every machine: the device's long is 32 bits wide.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace norvane {

// What strtol gives where long has 32 bits: 0 without digits, saturating at both ends.
inline std::int32_t text_to_int32(const char *text) {
    const long long value = std::strtoll(text, nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

} // namespace norvane
