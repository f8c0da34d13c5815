// Copies one value of the element tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/host/sanitizers.h"

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

// Copies to or from a part of the region that another thread may be writing. A reader throws away what it
// read while the sequence moved, so a torn copy does no harm; the thread sanitizer, which cannot know that,
// is given single bytes that may be read and written at once.
inline void copy_shared(void *to, const void *from, std::size_t size) {
#if QRYHOST_UNDER_THREAD_SANITIZER
    for (std::size_t i = 0; i < size; ++i) {
        __atomic_store_n(static_cast<std::uint8_t *>(to) + i,
                         __atomic_load_n(static_cast<const std::uint8_t *>(from) + i, __ATOMIC_RELAXED),
                         __ATOMIC_RELAXED);
    }
#else
    copy_value(to, from, size);
#endif
}

} // namespace qryhost
