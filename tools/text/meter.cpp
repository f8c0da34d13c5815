// Differences of the platform's counters.
#include "tools/text/meter.h"

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

} // namespace

const char *call_name(qryhost_call call) {
    return call_names[call];
}

std::array<std::uint32_t, QRYHOST_CALL_NUM> count_calls() {
    std::array<std::uint32_t, QRYHOST_CALL_NUM> counts{};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i] = qryhost_call_count(static_cast<qryhost_call>(i));
    }
    return counts;
}

meter::meter() : calls_(count_calls()) {
    qryhost_pool_reset_peak();
    start_ = std::chrono::steady_clock::now();
}

std::string meter::describe(std::size_t row_num) const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    const auto calls = count_calls();
    std::string text =
        fmt::format("time {:.6f} s; {} rows; {} blocks, at most {} bytes at once; calls:", elapsed.count(),
                    row_num, calls[QRYHOST_ALLOC] - calls_[QRYHOST_ALLOC], qryhost_pool_peak_bytes());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (const std::uint32_t made = calls[i] - calls_[i]; made != 0) {
            text += fmt::format(" {} {}", call_names[i], made);
        }
    }
    return text + '\n';
}

} // namespace qrytext
