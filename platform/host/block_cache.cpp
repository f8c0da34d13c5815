// Keeping blocks by size class, the one freed last first: its memory is the warmest.
#include "platform/host/block_cache.h"

#include <cstdlib>

#include "platform/host/sanitizers.h"

// Under the address sanitizer no block is kept, so that it sees what is used after it was given back.
#if QRYHOST_UNDER_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(begin, size)
#define ASAN_UNPOISON_MEMORY_REGION(begin, size)
#endif

namespace qryhost {

block_cache::~block_cache() {
    for (header *block : first_) {
        while (block != nullptr) {
            header *next = block->next;
            std::free(block);
            block = next;
        }
    }
}

block_cache::taken_block block_cache::take_fresh(std::uint32_t index, std::uint32_t size) {
    const bool has_class = index < class_num && !QRYHOST_UNDER_ADDRESS_SANITIZER;
    const std::uint32_t bytes = has_class ? (4 + index % 4) << (first_bit - 2 + index / 4) : size;
    const std::size_t whole = sizeof(header) + bytes; // wraps where a size has 32 bits
    void *memory = whole > bytes ? std::malloc(whole) : nullptr;
    if (memory == nullptr) {
        return {nullptr, 0};
    }
    auto *block = static_cast<header *>(memory);
    *block = {index, bytes, nullptr};
    ASAN_POISON_MEMORY_REGION(block, sizeof *block);
    return {block + 1, bytes};
}

std::uint32_t block_cache::give_back(void *block) {
    if (block == nullptr) {
        return 0;
    }
    header *freed = static_cast<header *>(block) - 1;
    ASAN_UNPOISON_MEMORY_REGION(freed, sizeof *freed);
    const std::uint32_t bytes = freed->bytes;
    if (QRYHOST_UNDER_ADDRESS_SANITIZER || freed->index == class_num || kept_bytes_ > kept_bytes_max) {
        std::free(freed);
        return bytes;
    }
    freed->next = first_[freed->index];
    first_[freed->index] = freed;
    kept_bytes_ += bytes;
    return bytes;
}

} // namespace qryhost
