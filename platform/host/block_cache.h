// Freed blocks of the memory partition, kept for the thread's next queries: a result is a block for each row,
// and each step of a query takes one for its own; the process's allocator would join, split and sort them
// anew.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qryhost {

// One thread's. Any thread may give a block back: it is kept where it was given back.
class block_cache {
  public:
    struct taken_block {
        void *memory; // aligned for everything; null when there is none
        std::uint32_t bytes;
    };

    block_cache() = default;
    block_cache(const block_cache &) = delete;
    block_cache &operator=(const block_cache &) = delete;
    ~block_cache();

    // A block of at least `size` bytes.
    taken_block take(std::uint32_t size) {
        const std::uint32_t index = class_for(size);
        header *block = first_[index];
        if (block == nullptr) {
            return take_fresh(index, size);
        }
        first_[index] = block->next;
        kept_bytes_ -= block->bytes;
        return {block + 1, block->bytes};
    }

    // The bytes that the block had; null has none.
    std::uint32_t give_back(void *block);

  private:
    // Sizes are rounded up to four steps for each power of two. What is larger than the last is not kept.
    static constexpr std::uint32_t first_bit = 6;
    static constexpr std::uint32_t last_bit = 18;
    static constexpr std::uint32_t smallest = std::uint32_t{1} << first_bit;
    static constexpr std::uint32_t largest = std::uint32_t{1} << last_bit;
    static constexpr std::uint32_t class_num = 4 * (last_bit - first_bit) + 1;
    static constexpr std::size_t kept_bytes_max = std::size_t{16} * 1024 * 1024;

    // Stands in front of each block.
    struct alignas(std::max_align_t) header {
        std::uint32_t index; // of its class; class_num: it has none
        std::uint32_t bytes; // behind this
        header *next;        // of its class, while it is kept
    };

    // The class whose blocks are the smallest that hold `size` bytes.
    static std::uint32_t class_for(std::uint32_t size) {
        if (size <= smallest) {
            return 0;
        }
        if (size > largest) {
            return class_num;
        }
        const std::uint32_t below = size - 1;
        const std::uint32_t bit = 31 - static_cast<std::uint32_t>(__builtin_clz(below));
        return 4 * (bit - first_bit) + (below >> (bit - 2) & 3) + 1;
    }

    static taken_block take_fresh(std::uint32_t index, std::uint32_t size);

    header *first_[class_num + 1] = {}; // none of the last
    std::size_t kept_bytes_ = 0;
};

} // namespace qryhost
