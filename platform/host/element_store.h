// The element store: the values of every record, default record and setting in one flat region, with one lock
// per category. A value is written whole under its category's lock; readers wait for no writer. What finds
// the lock held for too long throws `refusal`.
//
// The order of locks, outermost first: the process's opening lock, the image's opening byte, the categories'
// locks in the order of their positions. Only what concerns the store as a whole holds more than one of the
// last; none outlives a call, and no call waits for anything else while it holds one. So nobody can wait in a
// circle.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/host/moment_copy.h"
#include "platform/host/store_layout.h"
#include "platform/host/store_memory.h"
#include "platform/host/thread_state.h"
#include "platform/host/value_lock.h"

namespace qryhost {

class element_store {
  public:
    explicit element_store(store_memory memory);

    const store_layout &layout() const { return layout_; }

    // Then nothing that changes a value may be called.
    bool is_read_only() const { return memory_.is_read_only(); }
    const std::string &read_only_reason() const { return memory_.read_only_reason(); }

    // The record must exist; `buffer` is as large as the element, at any address. Reads are many and writes
    // few: the first way is the usual one, and the second the one that is left when it answers false.
    bool read_while_quiet(const element_place &place, std::uint32_t record, void *buffer) {
        return copy_while_quiet(memory_, place.lock, place.value_offset(record), place.size, buffer);
    }
    void read(const element_place &place, std::uint32_t record, void *buffer);

    // The first way for a number alone; false for anything else.
    bool read_number_while_quiet(const element_place &place, std::uint32_t record, void *buffer) {
        switch (place.size) {
        case 1:
            return copy_while_quiet(memory_, place.lock, place.value_offset(record), 1, buffer);
        case 2:
            return copy_while_quiet(memory_, place.lock, place.value_offset(record), 2, buffer);
        case 4:
            return copy_while_quiet(memory_, place.lock, place.value_offset(record), 4, buffer);
        default:
            return false;
        }
    }

    void write(const element_place &place, std::uint32_t record, const void *buffer);

    // Copies parts as they are at one moment.
    void copy_at_one_moment(region_part *parts, std::size_t num);

    // Puts records `first` to `last` back to the default record.
    void restore_default(const category_place &table, std::uint32_t first, std::uint32_t last);

    // The whole region as it is at one moment, or, where writers leave none, each category as it is at one.
    std::vector<std::uint8_t> snapshot();

    // Whether other processes have it too.
    bool is_shared() const { return memory_.file().is_open(); }

    // Every lock at once.
    std::vector<value_lock> hold_all();

    // Replaces every value by that of another region, at one moment for whoever is not killed meanwhile.
    void replace(const std::vector<std::uint8_t> &region);

  private:
    const store_layout &layout_;
    store_memory memory_;
};

extern std::atomic<element_store *> open_now __attribute__((visibility("hidden")));
element_store *open_on_first_use() noexcept;

// Null when none is open, or just being replaced. Before this the call has been counted: who replaces the
// store looks for calls after it has taken the store away, and makes this processor show what it has counted.
// So only the compiler has to keep the order here.
inline element_store *store_if_open() noexcept {
    std::atomic_signal_fence(std::memory_order_seq_cst);
    return open_now.load(std::memory_order_acquire);
}

// The store that the process uses, opened on first use; null, with a sentence for qryhost_error(), when it
// cannot be opened.
inline element_store *current_store() noexcept {
    element_store *store = store_if_open();
    return store != nullptr ? store : open_on_first_use();
}

// The same for a control call: throws `refusal` when there is no store.
element_store &required_store();
element_store &required_writable_store();

// A control call's use of the store, from before it is found to the end of the work on it.
class store_use {
  public:
    store_use() { add(own_state().controls, 1); }
    store_use(const store_use &) = delete;
    store_use &operator=(const store_use &) = delete;
    ~store_use() { end_use(own_state()); }
};

// Opens a store in place of the current one; null is private memory. Throws `refusal` when it cannot, and
// when another thread uses the current one.
void open_store(const char *image_path);

// Drops the current store; throws `refusal` when another thread uses it.
void close_store();

// Keeps the open store's private values whole across a fork. An image's are kept whole by its processes'
// locks.
void hold_store_for_fork() noexcept;
void release_store_after_fork() noexcept;

} // namespace qryhost
