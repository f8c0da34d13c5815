// What the workstation platform keeps for each thread: counts of its calls and blocks, and freed blocks that
// its next calls take. Keeping them is an addition in the thread's own memory; what threads share would cost
// a query more than the rest of the call.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/host/block_cache.h"
#include "platform/host/list_moment.h"
#include "platform/host/qryhost.h"

namespace qryhost {

// Written by its thread alone; what is atomic is read by whoever sums up.
struct thread_state {
    explicit thread_state(std::uint32_t own_number) : number(own_number) {}

    const std::uint32_t number; // no other thread has it, or had it

    std::atomic<std::uint32_t> calls[QRYHOST_CALL_NUM] = {};

    // Who opens and closes stores asks whether others use theirs: the platform calls that work on the store
    // and the control calls, less those that have ended. A list is in use from the call that opens it to the
    // one that closes it, of whichever thread.
    std::atomic<std::uint32_t> controls{0};
    std::atomic<std::uint32_t> ended_uses{0};
    std::atomic<std::uint32_t> uses_ended_elsewhere{0};

    // Of the memory partition: taken less given back, so they may lie below 0 (the first wraps).
    std::atomic<std::uint32_t> blocks{0};
    std::ptrdiff_t bytes = 0;
    std::ptrdiff_t peak_bytes = 0;

    block_cache freed_blocks;
    list_moment moment{number};
};

// The calling thread's state, null before its first call. Every platform call looks here, so it must not cost
// a function call.
extern __thread thread_state *state_of_this_thread
    __attribute__((tls_model("initial-exec"), visibility("hidden")));

thread_state *register_thread();

inline thread_state &own_state() {
    thread_state *mine = state_of_this_thread;
    return __builtin_expect(mine != nullptr, 1) ? *mine : *register_thread();
}

// Only for the thread's own counters: nobody else writes them.
inline void add(std::atomic<std::uint32_t> &own, std::uint32_t number) {
    own.store(own.load(std::memory_order_relaxed) + number, std::memory_order_relaxed);
}

// What a thread did to the store is done when others see this. One store is all that a call pays for it.
inline void end_use(thread_state &mine) {
    const std::uint32_t ended = mine.ended_uses.load(std::memory_order_relaxed) + 1;
    mine.ended_uses.store(ended, std::memory_order_release);
}

// The same for a list of the thread with this number, which another one closes. It may have ended since.
void end_use_of(std::uint32_t thread);

// Whether another thread is inside a call that works on the store, or some other one's list is open. The
// calling thread has a state.
bool is_store_used_elsewhere();

// For a child of fork.
void forget_other_threads() noexcept;

// What all threads have counted, those that have ended included.
std::uint32_t total_calls(qryhost_call call);
std::uint32_t total_blocks();

} // namespace qryhost
