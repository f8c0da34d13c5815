// Changing values under their category's lock, such that a process which is killed at any instruction leaves
// every value old or new. docs/value-lock.md goes through the steps, and a model checks their order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/host/store_memory.h"
#include "platform/host/wait_limit.h"

namespace qryhost {

// Holds a category's lock. When its last holder died, what that one was writing is settled first.
class value_lock {
  public:
    // Waits until the limit is over. Throws `refusal`, with who holds the lock or that it is damaged.
    value_lock(store_memory &memory, std::size_t category, wait_limit &limit);
    value_lock(value_lock &&other) noexcept;

    // Without waiting: nothing when somebody else holds the lock.
    static std::optional<value_lock> if_free(store_memory &memory, std::size_t category);
    value_lock &operator=(value_lock &&) = delete;
    ~value_lock();

    // Replaces the value of `size` bytes at `offset` of the region, which is one of this category.
    void replace(std::uint32_t offset, std::uint32_t size, const void *value);

    // Makes records `first` to `last` of this category like its record 0.
    void restore_default(std::uint32_t first, std::uint32_t last);

  private:
    // Has the lock of no category yet.
    explicit value_lock(store_memory &memory) : memory_(&memory) {}

    bool take(std::size_t category);
    void release();
    void begin(write_kind kind);
    void end();

    static constexpr std::size_t none = SIZE_MAX;

    store_memory *memory_;
    std::size_t category_ = none; // whose lock it holds
};

} // namespace qryhost
