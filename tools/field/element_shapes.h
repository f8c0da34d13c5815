// What a recording needs to know of elements: how large a value is, and which of its bytes are a secret.
#pragma once

#include <cstddef>
#include <cstdint>

#include "exec/schema/schema.h"

namespace field {

struct element_shape {
    std::uint32_t category;
    std::uint32_t element;
    std::uint16_t size;
    bool is_secret;
};

// Null for an element that the schema does not know: nobody can tell how large its value is.
const element_shape *find_shape(std::uint32_t category, std::uint32_t element);

// A column of an element, by its position from 0; null behind the last one.
const QRY_LIB_ELEMENT_INFO *column_of(std::uint32_t category, std::uint32_t element, std::size_t index);

// A number that differs for another schema, other capacities included.
std::uint32_t schema_number();

} // namespace field
