// What a number column holds, and what becomes of a number that is written into it or compared with it.
#pragma once

#include <qrylib/catalog.h>

#include <cstdint>

namespace qrytext {

struct number_range {
    std::int64_t smallest;
    std::int64_t largest;
};

// Of a QRY_LIB_COLUMN_TYPE other than text.
number_range range_of(std::uint8_t type);

// The number as the library narrows it to the column's bits.
std::int64_t narrowed(std::int64_t number, std::uint8_t type);

} // namespace qrytext
