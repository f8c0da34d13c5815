// Fixtures' texts: compared, and put on one line.
#pragma once

#include <string>

namespace qrytext {

// The answer as JSON. A text that is no fixture makes it {"equal": false} with a sentence.
std::string compare_snapshots(const std::string &snapshot_a, const std::string &snapshot_b);

std::string snapshot_on_one_line(const std::string &snapshot);

} // namespace qrytext
