// The write that a category's guard names: read from the guard once and checked, since whoever shares the
// image may change what stands there at any moment; then settled in the region or in a copy of it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/host/store_memory.h"

namespace qryhost {

// A write that a process can have been making; `write_none` when the guard names no such write.
struct write_in_progress {
    std::uint32_t kind;
    std::uint32_t offset;
    std::uint32_t size;
    std::uint32_t first;
    std::uint32_t last;
};

write_in_progress named_write(store_memory &memory, std::size_t category);

// Whether a write is in progress, or was when its process died.
bool is_writing(store_memory &memory, std::size_t category);

// Settles the write that a process was making when it died, as far as the guard names one; whoever calls has
// the category for itself.
void settle_write(store_memory &memory, std::size_t category);

// Makes records `first` to `last` of the category like its record 0.
void copy_default(store_memory &memory, std::size_t category, std::uint32_t first, std::uint32_t last);

// A copy of `size` bytes of the region, from `offset` on.
struct region_copy {
    std::uint8_t *bytes;
    std::uint32_t offset;
    std::size_t size;
};

// Settles the write in progress in the copy alone.
void settle_in_copy(store_memory &memory, std::size_t category, const region_copy &copy);

} // namespace qryhost
