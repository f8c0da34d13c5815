// Fault injection and call counts. Counting is one atomic addition; the lock is taken only where a fault
// waits.
#include "platform/host/faults.h"

#include <array>
#include <atomic>
#include <mutex>

namespace {

// On a cache line of its own: threads that make calls of different kinds do not slow each other.
struct alignas(64) call_record {
    std::atomic<std::uint32_t> calls{0};
    std::atomic<bool> armed{false}; // times is not 0
    std::uint32_t skip = 0;         // these three change under faults_lock
    std::uint32_t times = 0;
    std::uint32_t code = 0;
};

std::mutex faults_lock;
std::array<call_record, QRYHOST_CALL_NUM> records;

void arm(call_record &record, std::uint32_t skip, std::uint32_t times, std::uint32_t code) {
    record.skip = skip;
    record.times = times;
    record.code = code;
    record.armed = times != 0;
}

std::uint32_t take_fault(call_record &record) {
    const std::lock_guard<std::mutex> hold(faults_lock);
    if (record.times == 0) {
        return 0;
    }
    if (record.skip != 0) {
        --record.skip;
        return 0;
    }
    --record.times;
    record.armed = record.times != 0;
    return record.code;
}

bool is_call(qryhost_call call) {
    return static_cast<std::uint32_t>(call) < QRYHOST_CALL_NUM;
}

} // namespace

namespace qryhost {

std::uint32_t injected_fault(qryhost_call call) {
    call_record &record = records[call];
    record.calls.fetch_add(1, std::memory_order_relaxed);
    return record.armed.load(std::memory_order_acquire) ? take_fault(record) : 0;
}

} // namespace qryhost

extern "C" {

void qryhost_fail(qryhost_call call, std::uint32_t skip, std::uint32_t times, std::uint32_t code) {
    if (!is_call(call)) {
        return;
    }
    const std::lock_guard<std::mutex> hold(faults_lock);
    arm(records[call], skip, times, code);
}

void qryhost_fail_clear(void) {
    const std::lock_guard<std::mutex> hold(faults_lock);
    for (call_record &record : records) {
        arm(record, 0, 0, 0);
        record.calls = 0;
    }
}

std::uint32_t qryhost_call_count(qryhost_call call) {
    return is_call(call) ? records[call].calls.load() : 0;
}

} // extern "C"
