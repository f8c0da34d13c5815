// The sweep as a whole: where its device comes from, and what it did.
#pragma once

#include <string>

namespace fault {

void set_fixture(const std::string &path);

// Writes one row for each statement, in the form that docs/testing.md shows; false where the file cannot be
// written.
bool write_table(const std::string &path);

} // namespace fault
