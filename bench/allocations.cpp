// Counts what is taken with operator new. In a file of its own, so that no caller sees through the
// replacement.
#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> taken{0};

} // namespace

void *operator new(std::size_t size) {
    taken.fetch_add(1, std::memory_order_relaxed);
    if (void *block = std::malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void *block) noexcept {
    std::free(block);
}

void operator delete(void *block, std::size_t) noexcept {
    std::free(block);
}

std::uint64_t bench::allocations() {
    return taken;
}
