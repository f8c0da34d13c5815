// Waiting by trying again: a lock that dead and stopped processes may hold has no better way that ends.
#include "platform/host/wait_limit.h"

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/host/qryhost.h"

namespace qryhost {

namespace {

// A write takes less than a microsecond: most waits end while the processor is only lent to others.
constexpr std::uint32_t yields = 100;
constexpr std::chrono::microseconds shortest_pause{20};
constexpr std::chrono::microseconds longest_pause{500};

std::atomic<std::uint32_t> patience_ms{10000};

} // namespace

wait_limit::wait_limit() : most_(patience_ms.load(std::memory_order_relaxed)) {}

bool wait_limit::pause() {
    const auto now = std::chrono::steady_clock::now();
    if (pauses_++ == 0) {
        end_ = now + most_;
    }
    if (now >= end_) {
        return false;
    }
    if (pauses_ <= yields) {
        ::sched_yield();
    } else {
        std::this_thread::sleep_for(std::min(shortest_pause * (pauses_ - yields), longest_pause));
    }
    return true;
}

} // namespace qryhost

extern "C" void qryhost_set_patience(std::uint32_t milliseconds) {
    qryhost::patience_ms.store(milliseconds, std::memory_order_relaxed);
}
