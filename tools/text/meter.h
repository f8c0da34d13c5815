// What a statement cost the platform.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/host/qryhost.h"

namespace qrytext {

// The name of a kind of platform call, as .fault and .timer write it.
const char *call_name(qryhost_call call);

std::array<std::uint32_t, QRYHOST_CALL_NUM> count_calls();

// Measures from its construction on. One at a time in a thread: the peak is the thread's.
class meter {
  public:
    meter();

    // Time, rows, blocks taken from the memory partition, the most bytes of them held at once, calls by kind.
    std::string describe(std::size_t row_num) const;

  private:
    std::chrono::steady_clock::time_point start_;
    std::array<std::uint32_t, QRYHOST_CALL_NUM> calls_;
};

} // namespace qrytext
