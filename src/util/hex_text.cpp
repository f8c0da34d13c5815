// Bytes as hexadecimal text and back.
#include <cstddef>
#include <cstdint>

#include <qrylib/device_data.h>

namespace {

constexpr char digits[] = "0123456789abcdef";
constexpr std::uint8_t invalid_pair = 0xFF;

// The value of a hexadecimal digit of either case, or -1.
int digit_value(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

// The byte that two digits spell. The second is not looked at when the first is none, so that a text which
// ends there is not read beyond its terminator.
std::uint8_t pair_value(const char *pair) {
    const int high = digit_value(pair[0]);
    if (high < 0) {
        return invalid_pair;
    }
    const int low = digit_value(pair[1]);
    return low < 0 ? invalid_pair : static_cast<std::uint8_t>(16 * high + low);
}

} // namespace

extern "C" {

void qry_lib_convert_to_Hex(char *out, const std::uint8_t *bytes, std::uint16_t count) {
    if (out == nullptr) {
        return;
    }
    for (std::size_t i = 0; bytes != nullptr && i < count; ++i) {
        *out++ = digits[bytes[i] >> 4];
        *out++ = digits[bytes[i] & 0x0F];
    }
    *out = '\0';
}

void qry_lib_convert_to_Bin(std::uint8_t *out, const char *text, std::uint16_t count) {
    if (out == nullptr || text == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = pair_value(text + 2 * i);
    }
}

} // extern "C"
