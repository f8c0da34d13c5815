// The lock of a category and the order of the steps of a write.
//
// A killed process stops between two instructions, so the order of its stores is what counts; that other
// processors see them in this order is needed by readers without a lock alone, and costs next to nothing.
#include "platform/host/value_lock.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/host/copy_value.h"

namespace qryhost {

namespace {

const category_place &place_of(std::size_t category) {
    return store_layout::get().categories()[category];
}

// Calls `visit(offset of the value, offset of the default value, size)` for every value of the records.
template <typename Visit>
void for_each_value(std::size_t category, std::uint32_t first, std::uint32_t last, Visit visit) {
    const element_place *element = &store_layout::get().elements()[place_of(category).first_element];
    const element_place *const end = element + place_of(category).element_num;
    for (; element != end; ++element) {
        for (std::uint32_t record = first; record <= last; ++record) {
            visit(element->value_offset(record), element->offset, element->size);
        }
    }
}

void copy_default(store_memory &memory, std::size_t category, std::uint32_t first, std::uint32_t last) {
    std::uint8_t *region = memory.region();
    for_each_value(category, first, last,
                   [region](std::uint32_t value, std::uint32_t from, std::uint16_t size) {
                       copy_shared(region + value, region + from, size);
                   });
}

// A copy of a part of the region, which begins at `offset`.
struct region_copy {
    std::uint8_t *bytes;
    std::uint32_t offset;
    std::size_t size;

    // Puts in what belongs at `place` of the region, as far as the copy reaches there.
    void put(std::uint32_t place, const std::uint8_t *value, std::uint32_t length) const {
        const std::size_t begin = std::max(place, offset);
        const std::size_t end = std::min<std::size_t>(std::size_t{place} + length, offset + size);
        if (begin < end) {
            std::memcpy(bytes + (begin - offset), value + (begin - place), end - begin);
        }
    }
};

// Settles the write in progress in a copy, where the region itself cannot be written.
void settle_in_copy(store_memory &memory, std::size_t category, const region_copy &copy) {
    if (!names_a_write(memory, category)) {
        return;
    }
    const value_guard &guard = memory.guard(category);
    if (guard.kind.load(std::memory_order_relaxed) == write_value) {
        copy.put(guard.offset, memory.old_value(category), guard.size);
        return;
    }
    const std::uint8_t *region = memory.region();
    for_each_value(category, guard.first, guard.last,
                   [&copy, region](std::uint32_t value, std::uint32_t from, std::uint16_t size) {
                       copy.put(value, region + from, size);
                   });
}

} // namespace

// A mutex of this kind answers nothing else: whoever hears of a dead holder makes it consistent again, and
// nobody locks it twice.
value_lock::value_lock(store_memory &memory, std::size_t category) : memory_(&memory), category_(category) {
    if (::pthread_mutex_lock(&memory.guard(category).mutex) == EOWNERDEAD) {
        settle_write(memory, category);
        ::pthread_mutex_consistent(&memory.guard(category).mutex);
    }
}

value_lock::value_lock(value_lock &&other) noexcept
    : memory_(std::exchange(other.memory_, nullptr)), category_(other.category_) {}

value_lock::~value_lock() {
    if (memory_ != nullptr) {
        ::pthread_mutex_unlock(&memory_->guard(category_).mutex);
    }
}

// What the guard says stands before the sequence is odd, and nothing is written before it is.
void value_lock::begin(write_kind kind) {
    value_guard &guard = memory_->guard(category_);
    guard.kind.store(kind, std::memory_order_relaxed);
    guard.sequence.store(guard.sequence.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    std::atomic_thread_fence(std::memory_order_release);
}

// The kind goes last: a file whose sequence was changed to an odd number names no write.
void value_lock::end() {
    value_guard &guard = memory_->guard(category_);
    guard.sequence.store(guard.sequence.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    guard.kind.store(write_none, std::memory_order_release);
}

void value_lock::replace(std::uint32_t offset, std::uint32_t size, const void *value) {
    value_guard &guard = memory_->guard(category_);
    std::uint8_t *place = memory_->region() + offset;
    std::memcpy(memory_->old_value(category_), place, size);
    guard.offset = offset;
    guard.size = size;
    begin(write_value);
    copy_shared(place, value, size);
    end();
}

void value_lock::restore_default(std::uint32_t first, std::uint32_t last) {
    value_guard &guard = memory_->guard(category_);
    guard.first = first;
    guard.last = last;
    begin(write_reset);
    copy_default(*memory_, category_, first, last);
    end();
}

bool is_writing(store_memory &memory, std::size_t category) {
    return is_odd(memory.guard(category).sequence.load(std::memory_order_acquire));
}

bool names_a_write(store_memory &memory, std::size_t category) {
    const value_guard &guard = memory.guard(category);
    switch (guard.kind.load(std::memory_order_relaxed)) {
    case write_value:
        return store_layout::get().has_value(category, guard.offset, guard.size);
    case write_reset:
        return guard.first > 0 && guard.last <= place_of(category).record_num;
    default:
        return false;
    }
}

// May be killed too: the sequence stays odd until all is done, and doing it again does no harm.
void settle_write(store_memory &memory, std::size_t category) {
    value_guard &guard = memory.guard(category);
    const std::uint32_t sequence = guard.sequence.load(std::memory_order_relaxed);
    if (!is_odd(sequence)) {
        return;
    }
    if (names_a_write(memory, category)) {
        if (guard.kind.load(std::memory_order_relaxed) == write_value) {
            copy_shared(memory.region() + guard.offset, memory.old_value(category), guard.size);
        } else {
            copy_default(memory, category, guard.first, guard.last);
        }
    }
    guard.sequence.store(sequence + 1, std::memory_order_release);
    guard.kind.store(write_none, std::memory_order_release);
}

// While the sequence stays odd, the guard and what it refers to stay as they are.
void copy_without_lock(store_memory &memory, std::size_t category, std::uint32_t offset, std::size_t size,
                       void *copy) {
    const value_guard &guard = memory.guard(category);
    for (;;) {
        const std::uint32_t before = guard.sequence.load(std::memory_order_acquire);
        std::memcpy(copy, memory.region() + offset, size);
        if (is_odd(before)) {
            settle_in_copy(memory, category, {static_cast<std::uint8_t *>(copy), offset, size});
        }
        std::atomic_thread_fence(std::memory_order_acquire);
        if (guard.sequence.load(std::memory_order_relaxed) == before) {
            return;
        }
    }
}

} // namespace qryhost
