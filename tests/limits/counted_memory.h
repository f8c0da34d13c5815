// The memory that the program has in use: operator new's and the memory partition's, together.
#pragma once

#include <cstddef>

namespace limits {

// The peak begins anew with what is in use now.
void start_peak();

// The bytes that were asked for and in use at once since then, at their most, beyond those in use then.
std::size_t peak_bytes();

} // namespace limits
