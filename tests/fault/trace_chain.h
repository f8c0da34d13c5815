// The return traces of a failed statement as a chain: the step that failed first, then its callers up to the
// entry point, each showing the code that it handed on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/host/qryhost.h"
#include "unit/support.h"

namespace fault {

// Sends the traces to memory of this program's own; taking them does not ask for any.
void watch_traces();
void forget_traces();
std::vector<test::return_trace> seen_traces();

// Reads the fixed points, and the lines of the sources that trace their own number.
bool load_points(const std::string &table_path, const std::string &source_path);

// What is wrong with the chain of a statement that answered `code` after a call of `call` had failed with
// `platform_code`; "" for nothing.
std::string chain_fault(const std::vector<test::return_trace> &chain, qryhost_call call,
                        std::uint32_t platform_code, std::uint32_t code, const std::string &entry);

// Every step is a point that exists, whatever its place.
std::string unknown_point(const std::vector<test::return_trace> &chain);

} // namespace fault
