// Column values between their stored bytes and JSON.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "exec/schema/schema.h"
#include "platform/host/store_layout.h"

namespace qryhost {

// Objects keep the order in which they were written.
using json = nlohmann::ordered_json;

struct setting_name {
    const char *name;
    std::uint32_t element;
};
constexpr setting_name setting_names[] = {{"doublecount_1", settings_elements[0]},
                                          {"doublecount_2", settings_elements[1]},
                                          {"doublecount_3", settings_elements[2]}};
static_assert(sizeof setting_names / sizeof *setting_names ==
              sizeof settings_elements / sizeof *settings_elements);

using norvane::columns_of;
using norvane::tables_of;

// The place of a column's element, which always exists.
const element_place &place_of(const QRY_LIB_ELEMENT_INFO &column);

// Fails a load: "WHERE: REASON".
[[noreturn]] void refuse(const std::string &where, const std::string &reason);

// Writes a column's value into its element, whose bytes `element` points to. Throws `refusal`.
void value_from_json(const QRY_LIB_ELEMENT_INFO &column, const json &value, std::uint8_t *element,
                     const std::string &where);

// The value of a column in its element. It need not describe every byte of the element.
json value_to_json(const QRY_LIB_ELEMENT_INFO &column, const std::uint8_t *element);

// An unsigned number of `size` bytes, 1, 2 or 4, in the machine's order.
std::uint32_t load_number(const std::uint8_t *bytes, std::uint16_t size);
void store_number(std::uint32_t number, std::uint8_t *bytes, std::uint16_t size);

// A whole number in a range.
std::uint32_t number_from_json(const json &value, std::int64_t least, std::int64_t most,
                               const std::string &where);

// Bytes as hexadecimal digits, and back; at most `size` bytes are accepted.
std::string to_hex(const std::vector<std::uint8_t> &bytes);
std::vector<std::uint8_t> from_hex(const json &value, std::size_t size, const std::string &where);

// The key under which a composite stands as a whole.
std::string raw_key(std::uint32_t element);

// Turns the numeric members of a composite's bytes from the machine's order into big-endian order, or back.
void exchange_byte_order(const QRY_LIB_TABLE_DEF &table, std::uint32_t element,
                         std::vector<std::uint8_t> &bytes);

} // namespace qryhost
