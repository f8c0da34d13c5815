// Trials on a copy of the records, which nobody else sees.
#pragma once

#include <functional>
#include <string>

namespace qrysh {

// Runs `work` in a child process that has a copy of the records in memory of its own, and returns what it
// answers: nothing that it does, nor its sudden end, touches the records here. `work` may put the copy back
// to what it was at first. Throws std::runtime_error when there is no copy, or with the sentence with which
// `work` failed.
using put_back = std::function<void()>;
std::string on_private_copy(const std::function<std::string(const put_back &records)> &work);

} // namespace qrysh
