// The vector: growth, every operation, every refusal, every block.
#include "util/vector.h"

#include <numeric>
#include <string>

#include <qrylib/types.h>

#include "unit/support.h"

namespace {

using codes = std::vector<std::pair<std::string, std::uint32_t>>;

constexpr std::uint32_t partition_code = 0x77;

class vector : public test::platform_test {
  protected:
    ~vector() override {
        if (ints != nullptr) {
            qry_lib_vector_free(ints);
        }
    }

    // Makes `ints` a vector of the numbers 0 to count - 1.
    void fill(std::uint32_t count, std::uint32_t capacity = 0) {
        ASSERT_EQ(qry_lib_vector_init(sizeof(std::uint32_t), capacity, &ints), 0u);
        for (std::uint32_t i = 0; i < count; ++i) {
            ASSERT_EQ(qry_lib_vector_add_data(ints, &i), 0u);
        }
    }

    std::vector<std::uint32_t> contents() {
        std::uint32_t count = 0;
        EXPECT_EQ(qry_lib_vector_get_data_num(ints, &count), 0u);
        std::vector<std::uint32_t> numbers(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            EXPECT_EQ(qry_lib_vector_get_data(ints, i, &numbers[i]), 0u);
        }
        return numbers;
    }

    static std::vector<std::uint32_t> up_to(std::uint32_t count) {
        std::vector<std::uint32_t> numbers(count);
        std::iota(numbers.begin(), numbers.end(), 0u);
        return numbers;
    }

    qry_lib_vector_ *ints = nullptr;
};

using numbers = std::vector<std::uint32_t>;

TEST_F(vector, capacity_is_at_least_ten) {
    for (const auto &[asked, given] : {std::pair{0u, 10u}, {3u, 10u}, {10u, 10u}, {11u, 11u}, {25u, 25u}}) {
        ASSERT_EQ(qry_lib_vector_init(4, asked, &ints), 0u);
        EXPECT_EQ(ints->capacity, given);
        EXPECT_EQ(ints->grow_step, given);
        EXPECT_EQ(ints->count, 0u);
        EXPECT_EQ(ints->elem_size, 4u);
        EXPECT_EQ(std::string(static_cast<const char *>(ints->data), std::size_t{given} * 4),
                  std::string(std::size_t{given} * 4, '\0'));
        EXPECT_EQ(qry_lib_vector_free(ints), 0u);
        ints = nullptr;
    }
}

TEST_F(vector, grows_by_its_initial_capacity) {
    fill(10);
    EXPECT_EQ(ints->capacity, 10u);
    for (const std::uint32_t expected : {20u, 30u, 40u}) {
        while (ints->count < ints->capacity) {
            ASSERT_EQ(qry_lib_vector_add_data(ints, &ints->count), 0u);
        }
        ASSERT_EQ(qry_lib_vector_add_data(ints, &ints->count), 0u);
        EXPECT_EQ(ints->capacity, expected);
    }
    EXPECT_EQ(contents(), up_to(31));
}

TEST_F(vector, grows_by_a_larger_step_too) {
    fill(26, 25);
    EXPECT_EQ(ints->capacity, 50u);
    EXPECT_EQ(ints->grow_step, 25u);
    EXPECT_EQ(contents(), up_to(26));
}

TEST_F(vector, expansion_keeps_every_slot_and_clears_the_new_ones) {
    fill(3);
    ASSERT_EQ(qry_lib_vector_expand_data(ints), 0u);
    EXPECT_EQ(ints->capacity, 20u);
    EXPECT_EQ(contents(), up_to(3));
    const auto *slots = static_cast<const std::uint32_t *>(ints->data);
    EXPECT_EQ(std::accumulate(slots + 3, slots + 20, 0u), 0u);
}

TEST_F(vector, set_overwrites_one_element) {
    fill(3);
    const std::uint32_t value = 77;
    EXPECT_EQ(qry_lib_vector_set_data(ints, 1, &value), 0u);
    EXPECT_EQ(contents(), (numbers{0, 77, 2}));
}

TEST_F(vector, pull_moves_the_following_elements_down) {
    fill(3);
    EXPECT_EQ(qry_lib_vector_pull_data(ints, 0), 0u);
    EXPECT_EQ(contents(), (numbers{1, 2}));
    EXPECT_EQ(qry_lib_vector_pull_data(ints, 1), 0u);
    EXPECT_EQ(contents(), (numbers{1}));
    EXPECT_EQ(qry_lib_vector_pull_data(ints, 0), 0u);
    EXPECT_EQ(contents(), numbers{});
    EXPECT_EQ(qry_lib_vector_pull_data(ints, 0), QRY_LIB_BAD_PARAMETER);
}

TEST_F(vector, pull_from_a_full_vector) {
    fill(10);
    EXPECT_EQ(qry_lib_vector_pull_data(ints, 9), 0u);
    EXPECT_EQ(contents(), up_to(9));
    EXPECT_EQ(ints->capacity, 10u);
}

TEST_F(vector, swap_exchanges_two_elements) {
    fill(4);
    EXPECT_EQ(qry_lib_vector_swap_data(ints, 0, 3), 0u);
    EXPECT_EQ(contents(), (numbers{3, 1, 2, 0}));
    EXPECT_EQ(ints->capacity, 10u);
}

TEST_F(vector, swap_expands_a_full_vector) {
    fill(10);
    EXPECT_EQ(qry_lib_vector_swap_data(ints, 9, 0), 0u);
    EXPECT_EQ(ints->capacity, 20u);
    EXPECT_EQ(contents(), (numbers{9, 1, 2, 3, 4, 5, 6, 7, 8, 0}));
}

TEST_F(vector, swap_of_equal_indexes_changes_nothing) {
    fill(10);
    EXPECT_EQ(qry_lib_vector_swap_data(ints, 4, 4), 0u);
    EXPECT_EQ(ints->capacity, 10u);
    EXPECT_EQ(contents(), up_to(10));
    EXPECT_EQ(qry_lib_vector_swap_data(ints, 10, 10), QRY_LIB_BAD_PARAMETER);
}

TEST_F(vector, elements_may_come_from_the_vector_itself) {
    fill(10);
    EXPECT_EQ(qry_lib_vector_add_data(ints, static_cast<std::uint32_t *>(ints->data) + 7), 0u);
    EXPECT_EQ(contents().back(), 7u);
    EXPECT_EQ(ints->capacity, 20u);
    EXPECT_EQ(qry_lib_vector_set_data(ints, 0, static_cast<std::uint32_t *>(ints->data) + 5), 0u);
    EXPECT_EQ(qry_lib_vector_set_data(ints, 1, static_cast<std::uint32_t *>(ints->data) + 1), 0u);
    EXPECT_EQ(qry_lib_vector_get_data(ints, 2, static_cast<std::uint32_t *>(ints->data) + 3), 0u);
    EXPECT_EQ(contents(), (numbers{5, 1, 2, 2, 4, 5, 6, 7, 8, 9, 7}));
}

TEST_F(vector, elements_of_any_size) {
    for (const std::uint32_t size : {1u, 3u, 3164u}) {
        qry_lib_vector_ *texts = nullptr;
        ASSERT_EQ(qry_lib_vector_init(size, 0, &texts), 0u);
        for (char letter = 'a'; letter < 'a' + 11; ++letter) {
            ASSERT_EQ(qry_lib_vector_add_data(texts, std::string(size, letter).c_str()), 0u);
        }
        ASSERT_EQ(qry_lib_vector_swap_data(texts, 0, 10), 0u);
        std::string buffer(size, '-');
        ASSERT_EQ(qry_lib_vector_get_data(texts, 10, &buffer[0]), 0u);
        EXPECT_EQ(buffer, std::string(size, 'a'));
        EXPECT_EQ(qry_lib_vector_free(texts), 0u);
    }
}

TEST_F(vector, elements_without_size_are_only_counted) {
    qry_lib_vector_ *marks = nullptr;
    ASSERT_EQ(qry_lib_vector_init(0, 0, &marks), 0u);
    for (int i = 0; i < 11; ++i) {
        ASSERT_EQ(qry_lib_vector_add_data(marks, ""), 0u);
    }
    EXPECT_EQ(qry_lib_vector_swap_data(marks, 0, 10), 0u);
    EXPECT_EQ(qry_lib_vector_pull_data(marks, 3), 0u);
    EXPECT_EQ(marks->count, 10u);
    EXPECT_EQ(marks->capacity, 20u);
    EXPECT_EQ(qry_lib_vector_free(marks), 0u);
}

TEST_F(vector, null_arguments_are_refused) {
    fill(2);
    std::uint32_t number = 0;
    EXPECT_EQ(qry_lib_vector_init(4, 0, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_free(nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_expand_data(nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_add_data(nullptr, &number), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_add_data(ints, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_set_data(nullptr, 0, &number), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_set_data(ints, 0, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_get_data(nullptr, 0, &number), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_get_data(ints, 0, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_pull_data(nullptr, 0), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_swap_data(nullptr, 0, 0), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_get_data_num(nullptr, &number), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_vector_get_data_num(ints, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_vector_init", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_free", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_expand_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_add_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_add_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_set_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_set_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_get_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_get_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_pull_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_swap_data", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_get_data_num", QRY_LIB_BAD_PARAMETER},
                                   {"qry_lib_vector_get_data_num", QRY_LIB_BAD_PARAMETER}}));
    EXPECT_EQ(contents(), up_to(2));
}

TEST_F(vector, indexes_at_or_beyond_the_count_are_refused) {
    fill(2);
    std::uint32_t number = 55;
    for (const std::uint32_t index : {2u, 10u, UINT32_MAX}) {
        EXPECT_EQ(qry_lib_vector_set_data(ints, index, &number), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(qry_lib_vector_get_data(ints, index, &number), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(qry_lib_vector_pull_data(ints, index), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(qry_lib_vector_swap_data(ints, 0, index), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(qry_lib_vector_swap_data(ints, index, 0), QRY_LIB_BAD_PARAMETER);
    }
    EXPECT_EQ(number, 55u);
    EXPECT_EQ(take_codes().size(), 15u);
    EXPECT_EQ(contents(), up_to(2));
}

TEST_F(vector, init_without_memory_leaves_nothing_behind) {
    for (const std::uint32_t skip : {0u, 1u}) {
        qryhost_fail(QRYHOST_ALLOC, skip, 1, partition_code);
        EXPECT_EQ(qry_lib_vector_init(4, 0, &ints), QRY_LIB_NO_MEMORY);
        EXPECT_EQ(ints, nullptr);
        EXPECT_EQ(take_codes(), (codes{{"qry_lib_vector_init", partition_code}}));
    }
}

TEST_F(vector, a_failed_expansion_leaves_the_vector_unchanged) {
    fill(10);
    const void *data = ints->data;
    const std::uint32_t number = 10;
    qryhost_fail(QRYHOST_ALLOC, 0, 3, partition_code);
    EXPECT_EQ(qry_lib_vector_add_data(ints, &number), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(qry_lib_vector_swap_data(ints, 0, 1), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(qry_lib_vector_expand_data(ints), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_vector_expand_data", partition_code},
                                   {"qry_lib_vector_add_data", QRY_LIB_NO_MEMORY},
                                   {"qry_lib_vector_expand_data", partition_code},
                                   {"qry_lib_vector_swap_data", QRY_LIB_NO_MEMORY},
                                   {"qry_lib_vector_expand_data", partition_code}}));
    EXPECT_EQ(ints->data, data);
    EXPECT_EQ(ints->capacity, 10u);
    EXPECT_EQ(contents(), up_to(10));
    EXPECT_EQ(qry_lib_vector_add_data(ints, &number), 0u);
    EXPECT_EQ(contents(), up_to(11));
}

TEST_F(vector, sizes_beyond_32_bits_are_failed_allocations) {
    EXPECT_EQ(qry_lib_vector_init(0x10000, 0x10000, &ints), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(qry_lib_vector_init(0x80000001u, 2, &ints), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(qry_lib_vector_init(UINT32_MAX, UINT32_MAX, &ints), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(take_codes(), codes(3, {"qry_lib_vector_init", QRY_LIB_NO_MEMORY}));

    qry_lib_vector_ *marks = nullptr;
    ASSERT_EQ(qry_lib_vector_init(0, 0x80000000u, &marks), 0u);
    EXPECT_EQ(qry_lib_vector_expand_data(marks), QRY_LIB_NO_MEMORY);
    EXPECT_EQ(marks->capacity, 0x80000000u);
    EXPECT_EQ(qry_lib_vector_free(marks), 0u);
}

} // namespace
