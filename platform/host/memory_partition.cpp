// The memory partition, backed by the process's allocator. Counts the blocks and bytes in use.
#include <malloc.h>

#include <algorithm>
#include <cstddef>

#include "platform/host/faults.h"
#include "platform/os.h"

namespace {

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

const bool freed_memory_stays_mapped = keep_freed_memory_mapped();

} // namespace

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t, void **block, std::uint32_t size) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_ALLOC)) {
        return fault;
    }
    qryhost::thread_state &mine = qryhost::own_state();
    const qryhost::block_cache::taken_block taken = mine.freed_blocks.take(size);
    if (taken.memory == nullptr) {
        return partition_exhausted;
    }
    *block = taken.memory;
    qryhost::add(mine.blocks, 1);
    mine.bytes += static_cast<std::ptrdiff_t>(taken.bytes);
    mine.peak_bytes = std::max(mine.peak_bytes, mine.bytes);
    return 0;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t, void *block) {
    qryhost::thread_state &mine = qryhost::own_state();
    qryhost::add(mine.blocks, static_cast<std::uint32_t>(-1));
    mine.bytes -= static_cast<std::ptrdiff_t>(mine.freed_blocks.give_back(block));
    return 0;
}

std::uint32_t qryhost_pool_blocks(void) {
    return qryhost::total_blocks();
}

std::uint64_t qryhost_pool_peak_bytes(void) {
    return static_cast<std::uint64_t>(std::max(qryhost::own_state().peak_bytes, std::ptrdiff_t{0}));
}

void qryhost_pool_reset_peak(void) {
    qryhost::thread_state &mine = qryhost::own_state();
    mine.peak_bytes = mine.bytes;
}

} // extern "C"
