// The sweep as a whole: where its device comes from, and what it did.
#pragma once

#include <string>

namespace fault {

void set_fixture(const std::string &path);

// One row for each statement, in the form that docs/testing.md shows.
void print_table();

} // namespace fault
