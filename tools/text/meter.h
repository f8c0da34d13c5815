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

using call_counts = std::array<std::uint32_t, QRYHOST_CALL_NUM>; // by kind

struct cost {
    double seconds;
    std::uint64_t peak_bytes; // the most bytes of the memory partition held at once
    call_counts calls;        // of the calling thread
};

// Measures the calling thread from its construction on. One at a time in a thread: the peak is the thread's.
class meter {
  public:
    meter();

    cost spent() const;

  private:
    std::chrono::steady_clock::time_point start_;
    call_counts calls_;
};

// Time, rows, blocks taken from the memory partition, the most bytes of them held at once, calls by kind.
std::string describe_cost(const cost &spent, std::size_t row_num);

} // namespace qrytext
