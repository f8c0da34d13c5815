// Fault injection: every platform call asks here first whether it is to fail, and is counted. Counting is one
// addition in the calling thread's own memory; the lock is taken only where a fault waits.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/host/qryhost.h"

namespace qryhost {

// One thread's calls since it started. Written by that thread alone, read by whoever sums up.
struct thread_calls {
    std::atomic<std::uint32_t> calls[QRYHOST_CALL_NUM];
};

// The calling thread's counters, null before its first call. Every platform call looks here, so it must not
// cost a function call.
extern __thread thread_calls *calls_of_this_thread
    __attribute__((tls_model("initial-exec"), visibility("hidden")));

// One bit for each call that may have to fail.
extern std::atomic<std::uint32_t> armed_calls __attribute__((visibility("hidden")));
static_assert(QRYHOST_CALL_NUM <= 32);

thread_calls *register_thread();
std::uint32_t take_fault(qryhost_call call);

// Counts one call; the code that it is to fail with, or 0 to go on.
inline std::uint32_t injected_fault(qryhost_call call) {
    thread_calls *mine = calls_of_this_thread != nullptr ? calls_of_this_thread : register_thread();
    std::atomic<std::uint32_t> &count = mine->calls[call];
    count.store(count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    const bool armed = (armed_calls.load(std::memory_order_acquire) >> call & 1) != 0;
    return armed ? take_fault(call) : 0;
}

} // namespace qryhost
