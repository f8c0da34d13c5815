// Freed blocks of the memory partition, kept for the thread's next queries: a result is a block for each row,
// and the process's allocator would join, split and sort such blocks anew for every query.
#pragma once

#include <cstddef>

// Under the address sanitizer every block is the allocator's own, so that it sees what is used after it was
// freed or beyond its end.
#if defined(__SANITIZE_ADDRESS__)
#define QRYHOST_UNDER_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#define QRYHOST_UNDER_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#else
#define QRYHOST_UNDER_ADDRESS_SANITIZER 0
#endif

namespace qryhost {

// One thread's. A block comes from malloc() and may be freed there at any time, by any thread.
class block_cache {
  public:
    block_cache() = default;
    block_cache(const block_cache &) = delete;
    block_cache &operator=(const block_cache &) = delete;
    ~block_cache();

    // A block of at least `size` bytes; null when there is no memory.
    void *take(std::size_t size);

    // `usable_size` is what malloc_usable_size() says of the block.
    void give_back(void *block, std::size_t usable_size);

  private:
    // Sizes are rounded up to four steps for each power of two. What is smaller than the first or larger than
    // the last is left to the allocator, which is quick with the small ones.
    static constexpr std::size_t first_bit = 9;
    static constexpr std::size_t last_bit = 18;
    static constexpr std::size_t smallest = std::size_t{1} << first_bit;
    static constexpr std::size_t largest = std::size_t{1} << last_bit;
    static constexpr std::size_t class_num = 4 * (last_bit - first_bit) + 1;
    static constexpr std::size_t kept_bytes_max = std::size_t{16} * 1024 * 1024;

    struct freed_block {
        freed_block *next;
    };

    // The class whose blocks are the largest that are not larger than `size`, which is at least the smallest.
    static std::size_t class_below(std::size_t size) {
        const std::size_t bit = 31 - static_cast<std::size_t>(__builtin_clz(static_cast<unsigned int>(size)));
        return 4 * (bit - first_bit) + (size >> (bit - 2) & 3);
    }
    static std::size_t size_of_class(std::size_t index) {
        return (4 + index % 4) << (first_bit - 2 + index / 4);
    }

    freed_block *first_[class_num] = {};
    std::size_t kept_bytes_ = 0;
};

} // namespace qryhost
