// All forms of operator new and delete but the over-aligned ones, which nobody here uses.
#include "replaced_new.h"

#include <new>

namespace {

void *take_or_throw(std::size_t size) {
    void *block = test::take_memory(size, true);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void give_back(void *block) {
    if (block != nullptr) {
        test::give_memory_back(block);
    }
}

} // namespace

void *operator new(std::size_t size) {
    return take_or_throw(size);
}
void *operator new[](std::size_t size) {
    return take_or_throw(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return test::take_memory(size, false);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return test::take_memory(size, false);
}
void operator delete(void *block) noexcept {
    give_back(block);
}
void operator delete[](void *block) noexcept {
    give_back(block);
}
void operator delete(void *block, std::size_t) noexcept {
    give_back(block);
}
void operator delete[](void *block, std::size_t) noexcept {
    give_back(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept {
    give_back(block);
}
void operator delete[](void *block, const std::nothrow_t &) noexcept {
    give_back(block);
}
