// Two fixtures side by side.
#pragma once

#include <string>

#include "tools/text/printers.h"

namespace qrysh {

// Prints where the records of two files differ. 0: nowhere, 1: somewhere; or a file cannot be compared, which
// is complained about.
int diff_files(const std::string &path_a, const std::string &path_b, qrytext::output_mode mode);

} // namespace qrysh
