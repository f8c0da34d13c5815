// Fault injection: every platform call asks here first whether it is to fail, and is counted. A lock is taken
// only where a fault waits.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/host/qryhost.h"
#include "platform/host/thread_state.h"

namespace qryhost {

// One bit for each call that may have to fail.
extern std::atomic<std::uint32_t> armed_calls __attribute__((visibility("hidden")));
static_assert(QRYHOST_CALL_NUM <= 32);

std::uint32_t take_fault(qryhost_call call);

// Counts one call; the code that it is to fail with, or 0 to go on.
inline std::uint32_t injected_fault(qryhost_call call) {
    add(own_state().calls[call], 1);
    const bool armed = (armed_calls.load(std::memory_order_acquire) >> call & 1) != 0;
    return __builtin_expect(armed, 0) ? take_fault(call) : 0;
}

// For the calls that a search makes for each record: counts one and says true, unless the thread is new or
// any call may have to fail. Then nothing is counted yet, and the call goes the long way.
inline bool counted_without_fault(qryhost_call call) {
    thread_state *mine = state_of_this_thread;
    if (__builtin_expect(mine == nullptr || armed_calls.load(std::memory_order_acquire) != 0, 0)) {
        return false;
    }
    add(mine->calls[call], 1);
    return true;
}

} // namespace qryhost
