// What a statement cannot cost less than on this platform: the work that is fixed for it, and nothing else.
#pragma once

#include <cstdint>
#include <functional>

namespace bench {

// Repeats the platform calls that one run of `statement` makes, kind by kind: as many blocks (of a few bytes,
// given back at once), list tables, positions, values read and written.
std::function<std::uint64_t()> platform_calls_of(const std::function<std::uint64_t()> &statement);

// A plain nested loop over the departments and the edit counters as their SELECTs return them, which copies
// every candidate row and compares its key as the join does.
std::uint64_t plain_join();

} // namespace bench
