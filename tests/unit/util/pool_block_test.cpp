// The owner of a block: what it takes, keeps, hands over and gives back.
#include "util/pool_block.h"

#include <algorithm>

#include "unit/support.h"

namespace {

using norvane::pool_block;

class owned_block : public test::platform_test {
  protected:
    // Blocks taken since the test began.
    std::uint32_t taken() const { return qryhost_pool_blocks() - before_; }

  private:
    std::uint32_t before_ = qryhost_pool_blocks();
};

TEST_F(owned_block, lives_as_long_as_its_owner) {
    {
        pool_block block;
        EXPECT_EQ(block.as<char>(), nullptr);
        EXPECT_EQ(taken(), 0u);
        EXPECT_EQ(block.take(3, 4), 0u);
        EXPECT_NE(block.as<char>(), nullptr);
        EXPECT_EQ(taken(), 1u);
        EXPECT_EQ(block.take(5), 0u);
        EXPECT_EQ(taken(), 1u);
    }
    EXPECT_EQ(taken(), 0u);
}

TEST_F(owned_block, moves_to_one_owner_at_a_time) {
    pool_block first;
    ASSERT_EQ(first.take(1), 0u);
    const char *address = first.as<char>();
    pool_block second(std::move(first));
    EXPECT_EQ(second.as<char>(), address);
    pool_block third;
    ASSERT_EQ(third.take(1), 0u);
    EXPECT_EQ(taken(), 2u);
    third = std::move(second);
    EXPECT_EQ(third.as<char>(), address);
    EXPECT_EQ(taken(), 1u);
    pool_block &same = third;
    third = std::move(same);
    EXPECT_EQ(third.as<char>(), address);
    EXPECT_EQ(taken(), 1u);
}

TEST_F(owned_block, released_belongs_to_another) {
    pool_block block;
    ASSERT_EQ(block.take(1), 0u);
    void *released = block.release();
    EXPECT_EQ(block.as<char>(), nullptr);
    EXPECT_EQ(taken(), 1u);
    const pool_block owner(released);
    EXPECT_EQ(owner.as<void>(), released);
}

TEST_F(owned_block, is_zero_where_zeros_are_asked_for) {
    pool_block block;
    ASSERT_EQ(block.take_zeroed(3, 5), 0u);
    EXPECT_EQ(std::count(block.as<char>(), block.as<char>() + 15, '\0'), 15);
    ASSERT_EQ(block.take_zeroed(0, 5), 0u); // one entry at least
    EXPECT_EQ(std::count(block.as<char>(), block.as<char>() + 5, '\0'), 5);
}

TEST_F(owned_block, beyond_32_bits_is_refused_without_a_request) {
    qryhost_fail_clear();
    pool_block block;
    EXPECT_EQ(block.take(std::uint64_t{1} << 32), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(block.take(std::uint64_t{1} << 31, 2), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(block.take(UINT64_MAX, UINT64_MAX), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(qryhost_call_count(QRYHOST_ALLOC), 0u);
    EXPECT_EQ(block.as<char>(), nullptr);
    // What it held is given back all the same, once.
    ASSERT_EQ(block.take(1), 0u);
    EXPECT_EQ(block.take(std::uint64_t{1} << 32), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(block.as<char>(), nullptr);
    EXPECT_EQ(taken(), 0u);
}

TEST_F(owned_block, is_none_when_the_partition_refuses) {
    pool_block block;
    ASSERT_EQ(block.take(1), 0u);
    qryhost_fail(QRYHOST_ALLOC, 0, 2, 77);
    EXPECT_EQ(block.take(1), 77u);
    EXPECT_EQ(block.as<char>(), nullptr);
    EXPECT_EQ(block.take_zeroed(1), 77u);
    EXPECT_EQ(block.as<char>(), nullptr);
    EXPECT_EQ(taken(), 0u);
}

} // namespace
