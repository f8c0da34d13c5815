// Which calls are to fail, and how many there were since the last clearing.
#include "platform/host/faults.h"

#include <array>

#include "platform/host/guard.h"

namespace qryhost {

std::atomic<std::uint32_t> armed_calls{0};

namespace {

struct fault {
    std::uint32_t skip = 0;
    std::uint32_t times = 0;
    std::uint32_t code = 0;
};

// Everything that threads share here, under one lock.
struct shared_state {
    guard_mutex lock{lock_rank::faults};
    std::array<fault, QRYHOST_CALL_NUM> faults QRYLIB_GUARDED_BY(lock);
    std::array<std::uint32_t, QRYHOST_CALL_NUM>
        cleared QRYLIB_GUARDED_BY(lock) = {}; // calls before the last qryhost_fail_clear
};

// Never destroyed: threads may outlive the library's static objects.
shared_state &shared() {
    static shared_state *state = new shared_state;
    return *state;
}

void arm(shared_state &state, std::size_t call, const fault &wanted) QRYLIB_REQUIRES(state.lock) {
    state.faults[call] = wanted;
    const std::uint32_t bit = 1u << call;
    if (wanted.times != 0) {
        armed_calls |= bit;
    } else {
        armed_calls &= ~bit;
    }
}

bool is_call(qryhost_call call) {
    return static_cast<std::uint32_t>(call) < QRYHOST_CALL_NUM;
}

} // namespace

std::uint32_t take_fault(qryhost_call call) {
    shared_state &state = shared();
    const guard hold(state.lock);
    fault &waiting = state.faults[call];
    if (waiting.times == 0) {
        return 0;
    }
    if (waiting.skip != 0) {
        --waiting.skip;
        return 0;
    }
    const std::uint32_t code = waiting.code;
    arm(state, call, {0, waiting.times - 1, code});
    return code;
}

} // namespace qryhost

extern "C" {

void qryhost_fail(qryhost_call call, std::uint32_t skip, std::uint32_t times, std::uint32_t code) {
    if (!qryhost::is_call(call)) {
        return;
    }
    qryhost::shared_state &state = qryhost::shared();
    const qryhost::guard hold(state.lock);
    qryhost::arm(state, call, {skip, times, code});
}

void qryhost_fail_clear(void) {
    qryhost::shared_state &state = qryhost::shared();
    const qryhost::guard hold(state.lock);
    for (std::size_t call = 0; call < QRYHOST_CALL_NUM; ++call) {
        qryhost::arm(state, call, {});
        state.cleared[call] = qryhost::total_calls(static_cast<qryhost_call>(call));
    }
}

std::uint32_t qryhost_call_count(qryhost_call call) {
    if (!qryhost::is_call(call)) {
        return 0;
    }
    qryhost::shared_state &state = qryhost::shared();
    const qryhost::guard hold(state.lock);
    return qryhost::total_calls(static_cast<qryhost_call>(call)) - state.cleared[call];
}

std::uint32_t qryhost_thread_call_count(qryhost_call call) {
    return qryhost::is_call(call) ? qryhost::own_state().calls[call].load(std::memory_order_relaxed) : 0;
}

} // extern "C"
