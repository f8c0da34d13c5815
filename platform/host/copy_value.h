// Copies one value of the element tables.
#pragma once

#include <cstddef>
#include <cstring>

namespace qryhost {

// Most values are numbers, read once for each row and key of a search; those are copied without a call.
inline void copy_value(void *to, const void *from, std::size_t size) {
    switch (size) {
    case 1:
        std::memcpy(to, from, 1);
        break;
    case 2:
        std::memcpy(to, from, 2);
        break;
    case 4:
        std::memcpy(to, from, 4);
        break;
    default:
        std::memcpy(to, from, size);
    }
}

} // namespace qryhost
