// Texts to JSON and back.
#include "tools/text/json_text.h"

#include <charconv>

#include "tools/text/text.h"

namespace qrytext {

namespace {

constexpr int hex_base = 16;

std::string hex_of(std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        hex += digits[value / hex_base];
        hex += digits[value % hex_base];
    }
    return hex;
}

std::optional<std::string> bytes_of(const std::string &hex) {
    if (hex.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        unsigned value = 0;
        const char *const end = hex.data() + i + 2;
        const auto [stop, error] = std::from_chars(hex.data() + i, end, value, hex_base);
        if (stop != end || error != std::errc()) {
            return std::nullopt;
        }
        bytes += static_cast<char>(value);
    }
    return bytes;
}

} // namespace

json_value json_text(std::string_view text) {
    return is_utf8(text) ? json_value(std::string(text)) : json_value{{"hex", hex_of(text)}};
}

std::optional<std::string> text_of(const json_value &value) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    const bool is_hex =
        value.is_object() && value.size() == 1 && value.contains("hex") && value["hex"].is_string();
    return is_hex ? bytes_of(value["hex"].get<std::string>()) : std::nullopt;
}

std::string one_line(const json_value &value) {
    return escaped_json(value.dump(-1, ' ', false, json_value::error_handler_t::replace));
}

} // namespace qrytext
