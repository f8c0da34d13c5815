// Numbers, texts and raw bytes of a fixture, each checked against its column.
#include "platform/host/fixture_values.h"

#include <algorithm>
#include <cstring>

#include "platform/host/refusal.h"

namespace qryhost {

namespace {

constexpr std::int64_t least_signed_number = -2147483648LL;

bool may_be_negative(std::uint32_t elem_type) {
    return elem_type == norvane::element_int || elem_type == norvane::element_uint ||
           elem_type == norvane::element_ulong;
}

void number_value(const QRY_LIB_ELEMENT_INFO &column, const json &value, std::uint8_t *bytes,
                  const std::string &where) {
    const std::int64_t most = (std::int64_t{1} << (8 * column.size)) - 1;
    const std::int64_t least = may_be_negative(column.elem_type) ? least_signed_number : 0;
    store_number(number_from_json(value, least, most, where), bytes, column.size);
}

// The bytes that a string's value puts at the column's place.
std::vector<std::uint8_t> string_bytes(const QRY_LIB_ELEMENT_INFO &column, const json &value,
                                       const std::string &where) {
    if (value.is_object() && value.size() == 1 && value.contains("hex")) {
        return from_hex(value["hex"], column.size, where);
    }
    if (!value.is_string()) {
        refuse(where, R"(is neither a string nor {"hex": "..."})");
    }
    const auto &text = value.get_ref<const std::string &>();
    if (text.find('\0') != std::string::npos) {
        refuse(where, R"(holds a zero character; write the bytes as {"hex": "..."})");
    }
    if (text.size() >= column.size) {
        refuse(where,
               std::to_string(text.size()) + " characters do not fit " + std::to_string(column.size - 1));
    }
    std::vector<std::uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

// What the parser would accept in a string is what counts as text.
bool is_utf8(const std::string &text) {
    try {
        (void)json(text).dump();
        return true;
    } catch (const json::type_error &) {
        return false;
    }
}

// The string's bytes: as far as its terminator in a composite, and otherwise as far as the last one that is
// not zero.
std::string stored_string(const QRY_LIB_ELEMENT_INFO &column, const std::uint8_t *bytes) {
    const std::string whole(bytes, bytes + column.size);
    if (column.is_member != 0) {
        return whole.substr(0, whole.find('\0'));
    }
    return whole.substr(0, whole.find_last_not_of('\0') + 1);
}

json string_to_json(const QRY_LIB_ELEMENT_INFO &column, const std::uint8_t *bytes) {
    const std::string text = stored_string(column, bytes);
    const bool has_terminator = text.size() < column.size;
    if (has_terminator && text.find('\0') == std::string::npos && is_utf8(text)) {
        return text;
    }
    std::vector<std::uint8_t> exact(text.begin(), text.end());
    if (column.is_member != 0 && has_terminator) {
        exact.push_back(0);
    }
    return {{"hex", to_hex(exact)}};
}

int hex_digit(char character) {
    static constexpr char digits[] = "0123456789ABCDEFabcdef";
    const char *found = character == '\0' ? nullptr : std::strchr(digits, character);
    if (found == nullptr) {
        return -1;
    }
    const auto value = static_cast<int>(found - digits);
    return value < 16 ? value : value - 6;
}

bool is_big_endian() {
    const std::uint16_t number = 1;
    std::uint8_t first = 0;
    std::memcpy(&first, &number, 1);
    return first == 0;
}

} // namespace

const element_place &place_of(const QRY_LIB_ELEMENT_INFO &column) {
    return *store_layout::get().find(column.category_id, column.element_id);
}

void refuse(const std::string &where, const std::string &reason) {
    throw refusal(where + ": " + reason);
}

void value_from_json(const QRY_LIB_ELEMENT_INFO &column, const json &value, std::uint8_t *element,
                     const std::string &where) {
    std::uint8_t *bytes = element + column.member_offset;
    if (!norvane::is_string_element(column.elem_type)) {
        number_value(column, value, bytes, where);
        return;
    }
    const std::vector<std::uint8_t> text = string_bytes(column, value, where);
    if (column.is_member == 0) {
        std::memset(bytes, 0, column.size);
    }
    std::copy(text.begin(), text.end(), bytes);
}

json value_to_json(const QRY_LIB_ELEMENT_INFO &column, const std::uint8_t *element) {
    const std::uint8_t *bytes = element + column.member_offset;
    if (norvane::is_string_element(column.elem_type)) {
        return string_to_json(column, bytes);
    }
    const std::uint32_t number = load_number(bytes, column.size);
    if (column.elem_type == norvane::element_int) {
        return static_cast<std::int32_t>(number);
    }
    return number;
}

std::uint32_t load_number(const std::uint8_t *bytes, std::uint16_t size) {
    if (size == 1) {
        return *bytes;
    }
    if (size == 2) {
        std::uint16_t number = 0;
        std::memcpy(&number, bytes, sizeof number);
        return number;
    }
    std::uint32_t number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

void store_number(std::uint32_t number, std::uint8_t *bytes, std::uint16_t size) {
    if (size == 1) {
        *bytes = static_cast<std::uint8_t>(number);
        return;
    }
    if (size == 2) {
        const auto narrow = static_cast<std::uint16_t>(number);
        std::memcpy(bytes, &narrow, sizeof narrow);
        return;
    }
    std::memcpy(bytes, &number, sizeof number);
}

std::uint32_t number_from_json(const json &value, std::int64_t least, std::int64_t most,
                               const std::string &where) {
    if (!value.is_number()) {
        refuse(where, "is not a number");
    }
    // Parsed numbers beyond 63 bits are unsigned or no integers at all; none of them is in any range.
    const bool fits = value.is_number_integer() &&
                      (!value.is_number_unsigned() || value.get<std::uint64_t>() <= 0xFFFFFFFFu) &&
                      value.get<std::int64_t>() >= least && value.get<std::int64_t>() <= most;
    if (!fits) {
        refuse(where, value.dump() + " is not a whole number from " + std::to_string(least) + " to " +
                          std::to_string(most));
    }
    return static_cast<std::uint32_t>(value.get<std::int64_t>());
}

std::string to_hex(const std::vector<std::uint8_t> &bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

std::vector<std::uint8_t> from_hex(const json &value, std::size_t size, const std::string &where) {
    if (!value.is_string()) {
        refuse(where, "is not a string of hexadecimal digits");
    }
    const auto &text = value.get_ref<const std::string &>();
    if (text.size() % 2 != 0 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return hex_digit(c) >= 0; })) {
        refuse(where, "is not an even number of hexadecimal digits");
    }
    if (text.size() / 2 > size) {
        refuse(where, std::to_string(text.size() / 2) + " bytes do not fit " + std::to_string(size));
    }
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(hex_digit(text[i]) * 16 + hex_digit(text[i + 1])));
    }
    return bytes;
}

std::string raw_key(std::uint32_t element) {
    std::vector<std::uint8_t> bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(element >> shift));
    }
    return "@" + to_hex(bytes);
}

void exchange_byte_order(const QRY_LIB_TABLE_DEF &table, std::uint32_t element,
                         std::vector<std::uint8_t> &bytes) {
    if (is_big_endian()) {
        return;
    }
    for (const QRY_LIB_ELEMENT_DEF &row : columns_of(table)) {
        if (row.info.element_id == element && !norvane::is_string_element(row.info.elem_type)) {
            const auto first = bytes.begin() + row.info.member_offset;
            std::reverse(first, first + row.info.size);
        }
    }
}

} // namespace qryhost
