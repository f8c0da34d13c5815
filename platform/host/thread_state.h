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
    std::atomic<std::uint32_t> calls[QRYHOST_CALL_NUM];

    // Of the memory partition: taken less given back, so they may lie below 0 (the first wraps).
    std::atomic<std::uint32_t> blocks;
    std::ptrdiff_t bytes;
    std::ptrdiff_t peak_bytes;

    block_cache freed_blocks;
    list_moment moment;
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

// What all threads have counted, those that have ended included.
std::uint32_t total_calls(qryhost_call call);
std::uint32_t total_blocks();

} // namespace qryhost
