// Ranges by column type.
#include "tools/text/number_range.h"

#include <qrylib/types.h>

#include <limits>

namespace qrytext {

namespace {

constexpr std::int64_t largest_uint = std::numeric_limits<std::uint32_t>::max();

constexpr number_range ranges[] = {
    {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()},
    {0, std::numeric_limits<std::uint8_t>::max()},
    {0, std::numeric_limits<std::uint16_t>::max()},
    {0, largest_uint},
    {0, largest_uint}};

} // namespace

number_range range_of(std::uint8_t type) {
    return ranges[type];
}

std::int64_t narrowed(std::int64_t number, std::uint8_t type) {
    switch (type) {
    case QRY_LIB_COLUMN_TYPE_INT:
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return static_cast<std::uint8_t>(number);
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return static_cast<std::uint16_t>(number);
    default:
        return static_cast<std::uint32_t>(number);
    }
}

} // namespace qrytext
