// The lock of a category and the order of the steps of a write.
//
// A killed process stops between two instructions, so the order of its stores is what counts; that other
// processors see them in this order is needed by readers without a lock alone, and costs next to nothing.
#include "platform/host/value_lock.h"

#include <cerrno>
#include <string>
#include <utility>

#include "platform/host/copy_value.h"
#include "platform/host/process_number.h"
#include "platform/host/write_in_progress.h"

namespace qryhost {

namespace {

std::string records_of(std::size_t category) {
    return "the records of category " + std::to_string(store_layout::get().categories()[category].category);
}

[[noreturn]] void refuse_busy(const value_guard &guard, std::size_t category, const wait_limit &limit) {
    const std::uint32_t holder = guard.holder.load(std::memory_order_relaxed);
    const std::uint32_t space = guard.holder_space.load(std::memory_order_relaxed);
    throw refusal(records_of(category) + " are held by " +
                  (holder != 0 ? describe_process(holder, space) : "a process that did not say its number") +
                  "; waited " + std::to_string(limit.most().count()) + " ms");
}

[[noreturn]] void refuse_damaged(std::size_t category) {
    throw refusal("the lock of " + records_of(category) +
                  " is damaged; it is made anew when all who use the image close it");
}

} // namespace

value_lock::value_lock(store_memory &memory, std::size_t category, wait_limit &limit) : value_lock(memory) {
    while (!take(category)) {
        if (!limit.pause()) {
            refuse_busy(memory.guard(category), category, limit);
        }
    }
}

value_lock::value_lock(value_lock &&other) noexcept
    : memory_(other.memory_), category_(std::exchange(other.category_, none)) {}

std::optional<value_lock> value_lock::if_free(store_memory &memory, std::size_t category) {
    value_lock lock(memory);
    return lock.take(category) ? std::optional<value_lock>(std::move(lock)) : std::nullopt;
}

value_lock::~value_lock() {
    if (category_ != none) {
        memory_->guard(category_).holder.store(0, std::memory_order_relaxed);
        release();
    }
}

void value_lock::release() {
    ::pthread_mutex_unlock(&memory_->guard(std::exchange(category_, none)).mutex);
}

// Tries once. The C library does as the mutex says, so one of another kind is not touched: it could wait
// for ever, end the process, or answer that it is locked when it is not. False: somebody else holds it.
bool value_lock::take(std::size_t category) {
    value_guard &guard = memory_->guard(category);
    if (mutex_kind(guard.mutex) != memory_->lock_kind()) {
        refuse_damaged(category);
    }
    const int answer = ::pthread_mutex_trylock(&guard.mutex);
    if (answer == EBUSY) {
        return false;
    }
    if (answer != 0 && answer != EOWNERDEAD) {
        refuse_damaged(category);
    }
    category_ = category;
    // A living holder names nobody before it lets go: the mutex was overwritten while that one holds it.
    if (answer == 0 && guard.holder.load(std::memory_order_relaxed) != 0) {
        release();
        refuse_damaged(category);
    }
    guard.holder.store(own_process.number.load(std::memory_order_relaxed), std::memory_order_relaxed);
    guard.holder_space.store(own_process.space.load(std::memory_order_relaxed), std::memory_order_relaxed);
    settle_write(*memory_, category);
    if (answer == EOWNERDEAD && ::pthread_mutex_consistent(&guard.mutex) != 0) {
        refuse_damaged(category);
    }
    return true;
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

// Readers may still be settling a copy by the write before this one: they must see its end before they see
// what it kept overwritten.
void value_lock::replace(std::uint32_t offset, std::uint32_t size, const void *value) {
    value_guard &guard = memory_->guard(category_);
    std::uint8_t *place = memory_->region() + offset;
    std::atomic_thread_fence(std::memory_order_release);
    copy_shared(memory_->old_value(category_), place, size);
    guard.offset.store(offset, std::memory_order_relaxed);
    guard.size.store(size, std::memory_order_relaxed);
    begin(write_value);
    copy_shared(place, value, size);
    end();
}

void value_lock::restore_default(std::uint32_t first, std::uint32_t last) {
    value_guard &guard = memory_->guard(category_);
    std::atomic_thread_fence(std::memory_order_release);
    guard.first.store(first, std::memory_order_relaxed);
    guard.last.store(last, std::memory_order_relaxed);
    begin(write_reset);
    copy_default(*memory_, category_, first, last);
    end();
}

} // namespace qryhost
