// The replaced operator new and delete, and a partition of the program's own, which the library then uses.
#include "limits/counted_memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "platform/os.h"

namespace {

struct {
    std::size_t in_use = 0;
    std::size_t at_start = 0;
    std::size_t peak = 0;
} bytes;

// Stands in front of each block.
struct alignas(std::max_align_t) block_header {
    std::size_t size;
};

void *take(std::size_t size) {
    auto *header = static_cast<block_header *>(std::malloc(sizeof(block_header) + size));
    if (header == nullptr) {
        return nullptr;
    }
    header->size = size;
    bytes.in_use += size;
    bytes.peak = std::max(bytes.peak, bytes.in_use);
    return header + 1;
}

void *take_or_throw(std::size_t size) {
    void *block = take(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void give_back(void *block) {
    if (block != nullptr) {
        block_header *header = static_cast<block_header *>(block) - 1;
        bytes.in_use -= header->size;
        std::free(header);
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
    return take(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return take(size);
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

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t, void **block, std::uint32_t size) {
    *block = take(size);
    return *block == nullptr ? 1 : 0;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t, void *block) {
    give_back(block);
    return 0;
}

} // extern "C"

namespace limits {

void start_peak() {
    bytes.at_start = bytes.in_use;
    bytes.peak = bytes.in_use;
}

std::size_t peak_bytes() {
    return bytes.peak - bytes.at_start;
}

} // namespace limits
