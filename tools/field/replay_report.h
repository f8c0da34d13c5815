// What a replay tells: the table of calls, the values seen, the differences.
#pragma once

#include <string>
#include <vector>

#include "tools/field/player.h"
#include "tools/field/recording.h"

namespace field {

struct replay_sums {
    std::size_t same = 0;
    std::size_t different = 0;
    std::size_t masked = 0;
    std::size_t incomplete = 0;
};

enum class listing : std::uint8_t { in_order, slowest, failed };

// Where a recording comes from, and what of it is lost.
std::string about(const recording &recorded);

// One line for each call that is not a mere setter.
std::string call_table(const recording &recorded, listing order);

// What the calls before this one read and wrote last of each value. Empty: nothing was.
std::string values_before(const recording &recorded, std::uint32_t number);

// Where a call left its recording: the statement, what was expected and made, and the trace so far.
std::string difference_text(const recorded_call &call, const played_call &played);

std::string sums_text(const replay_sums &sums);

} // namespace field
