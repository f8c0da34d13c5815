// Differences of the platform's counters.
#include "tools/text/meter.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include <fmt/format.h>

namespace qrytext {

namespace {

constexpr const char *call_names[] = {
    "alloc",         "create_mutex",     "request_mutex", "lock_task",    "get_table",    "set_table",
    "init_table",    "get_status",       "create_list",   "list_set_pos", "list_get_val", "sort",
    "create_handle", "register_service", "file_exist",    "file_mkdir",   "file_remove",  "file_open",
    "file_read",     "file_write",       "file_close"};
static_assert(std::size(call_names) == QRYHOST_CALL_NUM);

call_counts count_calls() {
    call_counts counts{};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i] = qryhost_thread_call_count(static_cast<qryhost_call>(i));
    }
    return counts;
}

} // namespace

const char *call_name(qryhost_call call) {
    return call_names[call];
}

meter::meter() : calls_(count_calls()) {
    qryhost_pool_reset_peak();
    start_ = std::chrono::steady_clock::now();
}

cost meter::spent() const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    cost sum{elapsed.count(), qryhost_pool_peak_bytes(), count_calls()};
    std::transform(sum.calls.begin(), sum.calls.end(), calls_.begin(), sum.calls.begin(), std::minus<>());
    return sum;
}

std::string describe_cost(const cost &spent, std::size_t row_num) {
    std::string text =
        fmt::format("time {:.6f} s; {} rows; {} blocks, at most {} bytes at once; calls:", spent.seconds,
                    row_num, spent.calls[QRYHOST_ALLOC], spent.peak_bytes);
    for (std::size_t i = 0; i < spent.calls.size(); ++i) {
        if (spent.calls[i] != 0) {
            text += fmt::format(" {} {}", call_names[i], spent.calls[i]);
        }
    }
    return text + '\n';
}

} // namespace qrytext
