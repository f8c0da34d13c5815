// How often the program took memory from the standard library's allocator.
#pragma once

#include <cstdint>

namespace bench {

std::uint64_t allocations();

} // namespace bench
