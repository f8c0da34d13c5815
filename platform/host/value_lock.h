// Changing values under their category's lock, such that a process which is killed at any instruction leaves
// every value old or new, and reading them without the lock.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/host/copy_value.h"
#include "platform/host/store_memory.h"

namespace qryhost {

// Holds a category's lock. When its last holder died, what that one was writing is settled first.
class value_lock {
  public:
    value_lock(store_memory &memory, std::size_t category);
    value_lock(value_lock &&other) noexcept;
    value_lock &operator=(value_lock &&) = delete;
    ~value_lock();

    // Replaces the value of `size` bytes at `offset` of the region, which is one of this category.
    void replace(std::uint32_t offset, std::uint32_t size, const void *value);

    // Makes records `first` to `last` of this category like its record 0.
    void restore_default(std::uint32_t first, std::uint32_t last);

  private:
    void begin(write_kind kind);
    void end();

    store_memory *memory_;
    std::size_t category_;
};

// Whether a write is in progress, or was when its process died.
bool is_writing(store_memory &memory, std::size_t category);

// Whether the category's guard names a write that a process can have been making.
bool names_a_write(store_memory &memory, std::size_t category);

// Settles the write that a process was making when it died, as far as the guard names one; whoever calls has
// the category for itself.
void settle_write(store_memory &memory, std::size_t category);

inline bool is_odd(std::uint32_t sequence) {
    return sequence % 2 != 0;
}

// Copies bytes of the category's part of the region without its lock, where nobody writes meanwhile. False: a
// write was in progress or came between, and the copy is worth nothing.
inline bool copy_while_quiet(store_memory &memory, std::size_t category, std::uint32_t offset,
                             std::size_t size, void *copy) {
    const std::atomic<std::uint32_t> &sequence = memory.guard(category).sequence;
    const std::uint32_t before = sequence.load(std::memory_order_acquire);
    if (is_odd(before)) {
        return false;
    }
    copy_shared(copy, memory.region() + offset, size);
    std::atomic_thread_fence(std::memory_order_acquire);
    return sequence.load(std::memory_order_relaxed) == before;
}

// The same whatever the writers do, for a mapping that cannot be written, and so not be locked either.
void copy_without_lock(store_memory &memory, std::size_t category, std::uint32_t offset, std::size_t size,
                       void *copy);

} // namespace qryhost
