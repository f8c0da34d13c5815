// The memory partition: blocks, their count and peak, and what happens to those that are given back.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <thread>
#include <vector>

#include "platform/os.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

using memory_partition = host_test;

void *take(std::uint32_t size) {
    void *block = nullptr;
    EXPECT_EQ(pfwOSWOrgAllocMemPart(0, &block, size), 0u) << size;
    return block;
}

void give_back(void *block) {
    EXPECT_EQ(pfwOSWOrgFreeMemPart(0, block), 0u);
}

TEST_F(memory_partition, counts_the_blocks_in_use) {
    const std::uint32_t before = qryhost_pool_blocks();
    void *small = nullptr;
    void *large = nullptr;
    ASSERT_EQ(pfwOSWOrgAllocMemPart(0, &small, 1), 0u);
    ASSERT_EQ(pfwOSWOrgAllocMemPart(0, &large, 63 * 1024), 0u);
    EXPECT_EQ(qryhost_pool_blocks(), before + 2);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(large) % alignof(std::max_align_t), 0u);
    std::memset(large, 0xEE, 63 * 1024);
    EXPECT_EQ(pfwOSWOrgFreeMemPart(0, small), 0u);
    EXPECT_EQ(pfwOSWOrgFreeMemPart(0, large), 0u);
    EXPECT_EQ(qryhost_pool_blocks(), before);
}

TEST_F(memory_partition, a_refusal_gives_no_block) {
    const std::uint32_t before = qryhost_pool_blocks();
    void *block = &block;
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 5);
    EXPECT_EQ(pfwOSWOrgAllocMemPart(0, &block, 8), 5u);
    EXPECT_EQ(block, static_cast<void *>(&block));
    EXPECT_EQ(qryhost_pool_blocks(), before);
}

// A block that is filled with one byte of its own.
struct filled_block {
    std::vector<std::uint8_t> expected;
    void *block;

    filled_block(std::uint32_t size, std::uint8_t byte) : expected(size, byte), block(take(size)) {
        std::memset(block, byte, size);
    }
    bool is_untouched() const { return std::memcmp(block, expected.data(), expected.size()) == 0; }
};

TEST_F(memory_partition, blocks_of_any_size_never_overlap) {
    seeded_random random;
    const std::uint32_t before = qryhost_pool_blocks();
    std::vector<filled_block> held;
    for (std::uint32_t i = 0; i < 3000; ++i) {
        const std::uint32_t bits = 1 + random.below(19);
        held.emplace_back(1 + random.below(1u << bits), static_cast<std::uint8_t>(i));
        const std::size_t index = random.below(static_cast<std::uint32_t>(held.size()));
        ASSERT_TRUE(held[index].is_untouched()) << held[index].expected.size() << ", " << random.rerun();
        if (held.size() > 20 || random.below(2) == 0) {
            give_back(held[index].block);
            std::swap(held[index], held.back());
            held.pop_back();
        }
    }
    for (const filled_block &block : held) {
        EXPECT_TRUE(block.is_untouched()) << random.rerun();
        give_back(block.block);
    }
    EXPECT_EQ(qryhost_pool_blocks(), before);
}

TEST_F(memory_partition, holds_what_sizes_at_the_borders_ask_for) {
    for (std::uint32_t size = 256; size <= 1u << 19; size += size / 4) {
        for (const std::uint32_t asked : {size - 1, size, size + 1}) {
            const filled_block first(asked, 0x11);
            give_back(first.block);
            const filled_block larger(asked + 1, 0x22); // may be the same memory only if that is large enough
            const filled_block second(asked, 0x33);
            EXPECT_TRUE(larger.is_untouched()) << asked;
            EXPECT_TRUE(second.is_untouched()) << asked;
            give_back(larger.block);
            give_back(second.block);
        }
    }
}

TEST_F(memory_partition, takes_back_more_than_it_keeps) {
    const std::uint32_t before = qryhost_pool_blocks();
    for (int round = 0; round < 2; ++round) {
        std::vector<void *> blocks(400);
        std::generate(blocks.begin(), blocks.end(), [] { return take(63 * 1024); });
        EXPECT_EQ(qryhost_pool_blocks(), before + blocks.size());
        std::for_each(blocks.begin(), blocks.end(), give_back);
        EXPECT_EQ(qryhost_pool_blocks(), before);
    }
}

TEST_F(memory_partition, any_thread_may_give_a_block_back) {
    const std::uint32_t before = qryhost_pool_blocks();
    void *mine = take(5000);
    void *its_own = nullptr;
    std::thread([mine, &its_own] {
        give_back(mine);
        its_own = take(5000);
    }).join();
    EXPECT_EQ(qryhost_pool_blocks(), before + 1);
    std::memset(its_own, 0xEE, 5000);
    give_back(its_own);
    EXPECT_EQ(qryhost_pool_blocks(), before);
}

TEST_F(memory_partition, takes_a_null_block_back_and_counts_it) {
    const std::uint32_t before = qryhost_pool_blocks();
    static void *never_given_back = nullptr; // static, so that it is not taken for a leak
    never_given_back = take(100);
    give_back(nullptr);
    EXPECT_EQ(qryhost_pool_blocks(), before);
    std::memset(never_given_back, 0xEE, 100);
}

TEST_F(memory_partition, the_peak_is_that_of_the_calling_thread) {
    qryhost_pool_reset_peak();
    const std::uint64_t start = qryhost_pool_peak_bytes();
    std::thread([] { give_back(take(1 << 20)); }).join();
    EXPECT_EQ(qryhost_pool_peak_bytes(), start);

    void *first = take(10000);
    void *second = take(20000);
    give_back(first);
    give_back(second);
    give_back(take(10000));
    EXPECT_GE(qryhost_pool_peak_bytes(), start + 30000);
    EXPECT_LT(qryhost_pool_peak_bytes(), start + 45000);
    qryhost_pool_reset_peak();
    EXPECT_EQ(qryhost_pool_peak_bytes(), start);
}

} // namespace
