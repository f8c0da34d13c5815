// The memory partition, backed by the process's allocator. Counts the blocks and bytes in use.
#include <malloc.h>

#include <atomic>
#include <cstdlib>

#include "platform/host/faults.h"
#include "platform/os.h"

namespace {

std::atomic<std::uint32_t> blocks_in_use{0};
std::atomic<std::size_t> bytes_in_use{0};
std::atomic<std::size_t> peak_bytes{0};

constexpr std::uint32_t partition_exhausted = 1;

// Results come and go in blocks of many kilobytes. Keeping freed memory mapped spares each query the page
// faults of mapping it again. A threshold that the allocator finds too high is left as it was, and
// sanitizers' allocators ignore both.
bool keep_freed_memory_mapped() noexcept {
    constexpr int largest_threshold = sizeof(void *) > 4 ? 32 * 1024 * 1024 : 512 * 1024;
    mallopt(M_MMAP_THRESHOLD, largest_threshold);
    mallopt(M_TRIM_THRESHOLD, 1024 * 1024 * 1024);
    return true;
}

void count_block(void *block) {
    const std::size_t size = malloc_usable_size(block);
    const std::size_t now = bytes_in_use.fetch_add(size, std::memory_order_relaxed) + size;
    std::size_t peak = peak_bytes.load(std::memory_order_relaxed);
    while (now > peak && !peak_bytes.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
    }
    blocks_in_use.fetch_add(1, std::memory_order_relaxed);
}

const bool freed_memory_stays_mapped = keep_freed_memory_mapped();

} // namespace

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t, void **block, std::uint32_t size) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_ALLOC)) {
        return fault;
    }
    void *fresh = std::malloc(size);
    if (fresh == nullptr) {
        return partition_exhausted;
    }
    *block = fresh;
    count_block(fresh);
    return 0;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t, void *block) {
    bytes_in_use.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
    std::free(block);
    blocks_in_use.fetch_sub(1, std::memory_order_relaxed);
    return 0;
}

std::uint32_t qryhost_pool_blocks(void) {
    return blocks_in_use;
}

std::uint64_t qryhost_pool_peak_bytes(void) {
    return peak_bytes;
}

void qryhost_pool_reset_peak(void) {
    peak_bytes = bytes_in_use.load();
}

} // extern "C"
