// What the unit tests share: a record of the traces, and a fixture that leaves the workstation platform
// clean.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/host/qryhost.h"

namespace test {

// The line of an expected trace whose point has no fixed number.
constexpr int any_line = 0;

// One return trace as it was printed.
struct return_trace {
    std::string function;
    int line;
    std::uint32_t code;
};

inline bool operator==(const return_trace &a, const return_trace &b) {
    return a.function == b.function && a.code == b.code &&
           (a.line == b.line || a.line == any_line || b.line == any_line);
}

inline std::ostream &operator<<(std::ostream &out, const return_trace &trace) {
    return out << trace.function << ":" << trace.line << " 0x" << std::hex << trace.code << std::dec;
}

// Collects the trace and checks at its end that the memory partition is as full as at its start.
class platform_test : public ::testing::Test {
  protected:
    platform_test();
    ~platform_test() override;

    // The return traces since the last call, as (function, code): for points without a fixed line.
    std::vector<std::pair<std::string, std::uint32_t>> take_codes();

    // The return traces since the last call, with their lines.
    std::vector<return_trace> take_traces();

    // Every trace text since the start, unparsed.
    std::vector<std::string> lines;

  private:
    std::size_t taken_ = 0;
    std::uint32_t blocks_before_ = 0;
};

} // namespace test
