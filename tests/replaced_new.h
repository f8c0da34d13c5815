// operator new and delete of a whole program, which says itself where memory comes from and goes to.
#pragma once

#include <cstddef>

namespace test {

// Defined by the program. Null for none, which becomes std::bad_alloc where the request may throw.
void *take_memory(std::size_t size, bool may_throw);

// Never called with null.
void give_memory_back(void *block);

} // namespace test
