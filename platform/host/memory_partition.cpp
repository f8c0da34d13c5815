// The memory partition, backed by the process's allocator. Counts the blocks in use.
#include <atomic>
#include <cstdlib>

#include "platform/host/faults.h"
#include "platform/os.h"

namespace {

std::atomic<std::uint32_t> blocks_in_use{0};

constexpr std::uint32_t partition_exhausted = 1;

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
    ++blocks_in_use;
    return 0;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t, void *block) {
    std::free(block);
    --blocks_in_use;
    return 0;
}

std::uint32_t qryhost_pool_blocks(void) {
    return blocks_in_use;
}

} // extern "C"
