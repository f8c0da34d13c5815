// What is no regular file is written to as it is.
#pragma once

#include <string>
#include <string_view>

namespace qryfiles {

// Waits for a pipe's reader, as other programs do; a signal ends that. Throws `file_error`.
void write_through(const std::string &path, std::string_view content);

} // namespace qryfiles
