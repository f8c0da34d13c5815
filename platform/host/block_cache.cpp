// Taking and keeping blocks by size class, the one freed last first: its memory is the warmest.
#include "platform/host/block_cache.h"

#include <cstdlib>

namespace qryhost {

block_cache::~block_cache() {
    for (freed_block *block : first_) {
        while (block != nullptr) {
            freed_block *next = block->next;
            std::free(block);
            block = next;
        }
    }
}

void *block_cache::take(std::size_t size) {
    if (QRYHOST_UNDER_ADDRESS_SANITIZER || size < smallest || size > largest) {
        return std::malloc(size);
    }
    std::size_t index = class_below(size);
    index += size_of_class(index) < size ? 1 : 0;
    freed_block *block = first_[index];
    if (block == nullptr) {
        return std::malloc(size_of_class(index));
    }
    first_[index] = block->next;
    kept_bytes_ -= size_of_class(index);
    return block;
}

void block_cache::give_back(void *block, std::size_t usable_size) {
    if (QRYHOST_UNDER_ADDRESS_SANITIZER || usable_size < smallest ||
        usable_size >= size_of_class(class_num) || kept_bytes_ > kept_bytes_max) {
        std::free(block);
        return;
    }
    const std::size_t index = class_below(usable_size);
    auto *freed = static_cast<freed_block *>(block);
    freed->next = first_[index];
    first_[index] = freed;
    kept_bytes_ += size_of_class(index);
}

} // namespace qryhost
