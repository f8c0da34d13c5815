// A whole recording, replayed.
#pragma once

#include <string>
#include <vector>

#include "tools/field/replay_report.h"

namespace field {

struct replay_result {
    replay_sums sums;
    std::string first;                   // the first difference, told; empty where there is none
    std::vector<std::string> incomplete; // each with its reason
};

// Runs every call, each recorded thread's on a thread of its own, one call at a time in the order in which
// they began.
replay_result replay(const recording &recorded);

} // namespace field
