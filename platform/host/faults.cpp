// Fault injection and call counts. One record per kind of call, changed under one lock.
#include "platform/host/faults.h"

#include <array>
#include <mutex>

namespace {

struct call_record {
    std::uint32_t calls = 0;
    std::uint32_t skip = 0;
    std::uint32_t times = 0;
    std::uint32_t code = 0;
};

std::mutex records_lock;
std::array<call_record, QRYHOST_CALL_NUM> records;

} // namespace

namespace qryhost {

std::uint32_t injected_fault(qryhost_call call) {
    const std::lock_guard<std::mutex> hold(records_lock);
    call_record &record = records[call];
    ++record.calls;
    if (record.skip != 0) {
        --record.skip;
        return 0;
    }
    if (record.times == 0) {
        return 0;
    }
    --record.times;
    return record.code;
}

} // namespace qryhost

extern "C" {

void qryhost_fail(qryhost_call call, std::uint32_t skip, std::uint32_t times, std::uint32_t code) {
    const std::lock_guard<std::mutex> hold(records_lock);
    call_record &record = records.at(call);
    record.skip = skip;
    record.times = times;
    record.code = code;
}

void qryhost_fail_clear(void) {
    const std::lock_guard<std::mutex> hold(records_lock);
    records.fill(call_record{});
}

std::uint32_t qryhost_call_count(qryhost_call call) {
    const std::lock_guard<std::mutex> hold(records_lock);
    return records.at(call).calls;
}

} // extern "C"
