// Counts what is taken with operator new. In a file of its own, so that no caller sees through the
// replacement.
#include "allocations.h"

#include <cstdlib>
#include <new>

namespace {

// The benchmark runs in one thread; counting in an atomic would be charged to this library alone.
std::uint64_t taken = 0;

} // namespace

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    ++taken;
    return std::malloc(size);
}

void *operator new(std::size_t size) {
    if (void *block = operator new(size, std::nothrow)) {
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

void operator delete(void *block, const std::nothrow_t &) noexcept {
    std::free(block);
}

std::uint64_t bench::allocations() {
    return taken;
}
