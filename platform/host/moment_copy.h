// Copying parts of the region as they are at one moment, without waiting for whoever writes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/host/copy_value.h"
#include "platform/host/store_memory.h"
#include "platform/host/wait_limit.h"

namespace qryhost {

// Bytes of one category's part of the region, where their copy goes, and the category's sequence at the
// moment that the copy shows.
struct region_part {
    std::size_t category;
    std::uint32_t offset;
    std::size_t size;
    void *copy;
    std::uint32_t sequence;
};

// Copies bytes of a category's part of the region where nobody writes meanwhile. False: a write was in
// progress or came between, and the copy is worth nothing. Here, not in the source, because each value that
// is read goes this way.
inline bool copy_while_quiet(store_memory &memory, std::size_t category, std::uint32_t offset,
                             std::size_t size, void *copy) {
    const std::atomic<std::uint32_t> &sequence = memory.guard(category).sequence;
    const std::uint32_t before = sequence.load(std::memory_order_acquire);
    if (before % 2 != 0) {
        return false;
    }
    copy_shared(copy, memory.region() + offset, size);
    std::atomic_thread_fence(std::memory_order_acquire);
    return sequence.load(std::memory_order_relaxed) == before;
}

// The same for several parts, in the order of their categories, whatever the writers do: of a write in
// progress the old value is taken, and where one write follows the other too closely the parts' locks. False:
// for as long as `limit` there was neither such a moment nor the locks.
bool copy_at_one_moment(store_memory &memory, region_part *parts, std::size_t num, wait_limit limit);

} // namespace qryhost
