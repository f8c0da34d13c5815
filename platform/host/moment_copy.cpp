// Trying for a moment between two writes, then for the locks.
#include "platform/host/moment_copy.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/host/value_lock.h"
#include "platform/host/write_in_progress.h"

namespace qryhost {

namespace {

// A few more tries than a reader needs beside writers that do anything besides.
constexpr int free_tries = 8;

// Between two looks at the sequence: what is copied after a write came is copied for nothing.
constexpr std::size_t stride = 16384;

bool has_moved(store_memory &memory, const region_part &part) {
    std::atomic_thread_fence(std::memory_order_acquire);
    return memory.guard(part.category).sequence.load(std::memory_order_relaxed) != part.sequence;
}

// While the sequence stays odd, the guard and what it refers to stay as they are.
bool copy_settled(store_memory &memory, region_part &part) {
    part.sequence = memory.guard(part.category).sequence.load(std::memory_order_acquire);
    auto *copy = static_cast<std::uint8_t *>(part.copy);
    for (std::size_t done = 0; done < part.size; done += stride) {
        copy_shared(copy + done, memory.region() + part.offset + done, std::min(stride, part.size - done));
        if (has_moved(memory, part)) {
            return false;
        }
    }
    if (part.sequence % 2 != 0) {
        settle_in_copy(memory, part.category, {copy, part.offset, part.size});
    }
    return !has_moved(memory, part);
}

// All sequences stood still from the last part's first look to the first part's last one.
bool copy_all_settled(store_memory &memory, region_part *parts, std::size_t num) {
    return std::all_of(parts, parts + num,
                       [&memory](region_part &part) { return copy_settled(memory, part); }) &&
           std::none_of(parts, parts + num,
                        [&memory](const region_part &part) { return has_moved(memory, part); });
}

// False: somebody else holds one of the locks.
bool copy_under_locks(store_memory &memory, region_part *parts, std::size_t num) {
    std::vector<value_lock> held;
    for (const region_part *part = parts; part != parts + num; ++part) {
        if (part == parts || part[-1].category != part->category) {
            std::optional<value_lock> lock = value_lock::if_free(memory, part->category);
            if (!lock) {
                return false;
            }
            held.push_back(std::move(*lock));
        }
    }
    return copy_all_settled(memory, parts, num);
}

} // namespace

bool copy_at_one_moment(store_memory &memory, region_part *parts, std::size_t num, wait_limit limit) {
    for (int i = 0; i < free_tries; ++i) {
        if (copy_all_settled(memory, parts, num)) {
            return true;
        }
    }
    do {
        if ((!memory.is_read_only() && copy_under_locks(memory, parts, num)) ||
            copy_all_settled(memory, parts, num)) {
            return true;
        }
    } while (limit.pause());
    return false;
}

} // namespace qryhost
