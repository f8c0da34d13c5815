// The comparisons behind qry_lib_tb_strcmp and qry_lib_tb_strncmp, usable at compile time to prove that the
// schema is sorted. Bytes compare as signed numbers on every machine, whatever plain char is there, so bytes
// from 0x80 sort before ASCII and before the end of a string that is the longer one.
#pragma once

#include <cstdint>

namespace norvane {

constexpr int compare_bytes(char a, char b) {
    const auto signed_a = static_cast<signed char>(a);
    const auto signed_b = static_cast<signed char>(b);
    return signed_a == signed_b ? 0 : signed_b < signed_a ? 1 : -1;
}

constexpr int tb_strcmp(const char *a, const char *b) {
    for (; *a != '\0'; ++a, ++b) {
        if (const int order = compare_bytes(*a, *b); order != 0) {
            return order;
        }
    }
    return *b == '\0' ? 0 : -1;
}

// 0 when `a` is a prefix of `b`: the LIKE comparison lives on it. Positions are counted in 16 bits, so an `n`
// beyond them is no limit.
constexpr int tb_strncmp(const char *a, const char *b, std::uint32_t n) {
    if (n == 0) {
        return 0;
    }
    std::uint16_t compared = 0;
    for (; *a != '\0'; ++a, ++b) {
        if (const int order = compare_bytes(*a, *b); order != 0) {
            return order;
        }
        if (++compared == n) {
            return 0;
        }
    }
    return 0;
}

} // namespace norvane
