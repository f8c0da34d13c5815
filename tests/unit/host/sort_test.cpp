// The sort utility: every compare kind, equal keys, unaligned keys, and refusals.
#include "platform/sort.h"

#include <cstring>

#include "unit/host/host_test.h"

namespace {

using namespace test;

class sort : public host_test {
  protected:
    // Items as the library packs them: two bytes of record number, then the key, back to back.
    void pack(const std::vector<std::string> &keys, std::size_t key_size) {
        const std::size_t item_size = 2 + key_size;
        block_.assign(keys.size() * item_size, 0);
        items.clear();
        for (std::size_t i = 0; i < keys.size(); ++i) {
            char *item = &block_[i * item_size];
            const auto number = static_cast<std::uint16_t>(i);
            std::memcpy(item, &number, sizeof number);
            std::memcpy(item + 2, keys[i].data(), keys[i].size());
            items.push_back(item);
        }
    }

    template <typename Number>
    void pack_numbers(const std::vector<Number> &numbers) {
        std::vector<std::string> keys;
        for (const Number number : numbers) {
            std::string bytes(sizeof number, '\0');
            std::memcpy(&bytes[0], &number, sizeof number);
            keys.push_back(bytes);
        }
        pack(keys, sizeof(Number));
    }

    // The items' original positions in their new order.
    std::vector<int> order(std::uint32_t kind) {
        CMN_LIB_SORT_PARAM_T param = {2, static_cast<std::uint32_t>(items.size()), kind};
        std::vector<void *> sorted = items;
        EXPECT_EQ(cmn_lib_sort(sorted.data(), &param), 0u);
        std::vector<int> positions;
        for (const void *item : sorted) {
            std::uint16_t number = 0;
            std::memcpy(&number, item, sizeof number);
            positions.push_back(number);
        }
        return positions;
    }

    std::vector<void *> items;

  private:
    std::vector<char> block_;
};

using positions = std::vector<int>;

TEST_F(sort, one_byte_numbers_are_unsigned) {
    pack_numbers<std::uint8_t>({0x80, 0x7F, 0xFF, 0, 0x80});
    EXPECT_EQ(order(0), (positions{3, 1, 0, 4, 2}));
    EXPECT_EQ(order(1), (positions{2, 0, 4, 1, 3}));
}

TEST_F(sort, two_byte_numbers_compare_by_value) {
    pack_numbers<std::uint16_t>({0x0100, 0x00FF, 0x8000, 0x7FFF, 0x00FF});
    EXPECT_EQ(order(2), (positions{1, 4, 0, 3, 2}));
    EXPECT_EQ(order(3), (positions{2, 3, 0, 1, 4}));
}

TEST_F(sort, four_byte_numbers_are_unsigned_so_negatives_come_last) {
    pack_numbers<std::uint32_t>({0xFFFFFFFF, 1, 0x01000000, 0x80000000, 0, 1});
    EXPECT_EQ(order(4), (positions{4, 1, 5, 2, 3, 0}));
    EXPECT_EQ(order(5), (positions{0, 3, 2, 1, 5, 4}));
}

TEST_F(sort, strings_compare_as_unsigned_bytes) {
    pack({"b", "a", "\x80", "A", "", "ab", "a"}, 4);
    EXPECT_EQ(order(6), (positions{4, 3, 1, 6, 5, 0, 2}));
    EXPECT_EQ(order(7), (positions{2, 0, 5, 1, 6, 3, 4}));
}

TEST_F(sort, names_compare_without_case_and_then_by_bytes) {
    pack({"sato", "SATO", "Abe", "_", "sat", "Sato", "\xC3\xA9", "abe", "SATO"}, 6);
    EXPECT_EQ(order(8), (positions{3, 2, 7, 4, 1, 8, 5, 0, 6}));
    EXPECT_EQ(order(9), (positions{6, 0, 5, 1, 8, 4, 7, 2, 3}));
}

TEST_F(sort, only_ascii_letters_lose_their_case) {
    pack({"[", "{", "@", "`", "Z", "a"}, 4);
    EXPECT_EQ(order(8), (positions{2, 0, 3, 5, 4, 1}));
}

TEST_F(sort, equal_keys_keep_their_order_in_both_directions) {
    seeded_random random;
    SCOPED_TRACE(random.rerun());
    std::vector<std::uint8_t> keys(1000);
    std::generate(keys.begin(), keys.end(), [&random] { return static_cast<std::uint8_t>(random.below(5)); });
    pack_numbers(keys);
    for (const std::uint32_t kind : {0u, 1u}) {
        const positions sorted = order(kind);
        for (std::size_t i = 1; i < sorted.size(); ++i) {
            const auto key = [&](std::size_t at) { return keys[static_cast<std::size_t>(sorted[at])]; };
            ASSERT_TRUE(kind == 0 ? key(i - 1) <= key(i) : key(i - 1) >= key(i));
            ASSERT_TRUE(key(i - 1) != key(i) || sorted[i - 1] < sorted[i]);
        }
    }
}

TEST_F(sort, of_nothing_is_a_success) {
    CMN_LIB_SORT_PARAM_T param = {2, 0, 99};
    EXPECT_EQ(cmn_lib_sort(nullptr, &param), 0u);
}

TEST_F(sort, refuses_unknown_kinds_and_null_pointers) {
    pack_numbers<std::uint16_t>({2, 1});
    const std::vector<void *> before = items;
    CMN_LIB_SORT_PARAM_T param = {2, 2, 10};
    EXPECT_NE(cmn_lib_sort(items.data(), &param), 0u);
    param.compare_kind = 0xFFFFFFFF;
    EXPECT_NE(cmn_lib_sort(items.data(), &param), 0u);
    param.compare_kind = 2;
    EXPECT_NE(cmn_lib_sort(nullptr, &param), 0u);
    EXPECT_NE(cmn_lib_sort(items.data(), nullptr), 0u);
    EXPECT_EQ(items, before);
    items[1] = nullptr;
    EXPECT_NE(cmn_lib_sort(items.data(), &param), 0u);
}

TEST_F(sort, an_injected_failure_leaves_the_order) {
    pack_numbers<std::uint16_t>({2, 1});
    const std::vector<void *> before = items;
    CMN_LIB_SORT_PARAM_T param = {2, 2, 2};
    qryhost_fail(QRYHOST_SORT, 0, 1, 40);
    EXPECT_EQ(cmn_lib_sort(items.data(), &param), 40u);
    EXPECT_EQ(items, before);
}

} // namespace
