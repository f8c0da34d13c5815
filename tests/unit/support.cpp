// The shared test fixture.
#include "unit/support.h"

#include <cstdio>

#include "unit/reach.h"

namespace test {

namespace {

void record_line(void *context, std::uint32_t, std::uint32_t, std::uint32_t, const char *text) {
    static_cast<std::vector<std::string> *>(context)->emplace_back(text);
    record_reached(text);
}

bool parse(const std::string &line, return_trace &out) {
    char function[128] = {};
    unsigned long code = 0;
    if (std::sscanf(line.c_str(), "%127[^(]():[Return]:(%d) (0x%lX)", function, &out.line, &code) != 3) {
        return false;
    }
    out.function = function;
    out.code = static_cast<std::uint32_t>(code);
    return true;
}

} // namespace

platform_test::platform_test() {
    qryhost_fail_clear();
    qryhost_set_trace_sink(record_line, &lines);
    blocks_before_ = qryhost_pool_blocks();
}

platform_test::~platform_test() {
    qryhost_set_trace_sink(nullptr, nullptr);
    qryhost_fail_clear();
    EXPECT_EQ(qryhost_pool_blocks(), blocks_before_);
}

std::vector<return_trace> platform_test::take_traces() {
    std::vector<return_trace> traces;
    for (; taken_ < lines.size(); ++taken_) {
        return_trace trace;
        if (parse(lines[taken_], trace)) {
            traces.push_back(trace);
        }
    }
    return traces;
}

std::vector<std::pair<std::string, std::uint32_t>> platform_test::take_codes() {
    std::vector<std::pair<std::string, std::uint32_t>> codes;
    for (const return_trace &trace : take_traces()) {
        codes.emplace_back(trace.function, trace.code);
    }
    return codes;
}

} // namespace test
