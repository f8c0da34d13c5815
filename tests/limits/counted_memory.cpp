// What the replaced operator new answers, and a partition of the program's own, which the library then uses.
#include "limits/counted_memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "platform/os.h"
#include "replaced_new.h"

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

} // namespace

namespace test {

void *take_memory(std::size_t size, bool) {
    auto *header = static_cast<block_header *>(std::malloc(sizeof(block_header) + size));
    if (header == nullptr) {
        return nullptr;
    }
    header->size = size;
    bytes.in_use += size;
    bytes.peak = std::max(bytes.peak, bytes.in_use);
    return header + 1;
}

void give_memory_back(void *block) {
    block_header *header = static_cast<block_header *>(block) - 1;
    bytes.in_use -= header->size;
    std::free(header);
}

} // namespace test

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t, void **block, std::uint32_t size) {
    *block = test::take_memory(size, false);
    return *block == nullptr ? 1 : 0;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t, void *block) {
    test::give_memory_back(block);
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
