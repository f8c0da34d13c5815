// The filtered search: keys, their combination, its refusals, and what happens when the platform fails.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::department_id;
using test::department_name;
using test::departments;
using test::edit_counter_count;
using test::edit_counter_id;
using test::edit_counters;
using test::in_default;
using test::injected;
using test::put;
using test::put_text;
using test::traces;

constexpr QRY_LIB_JOIN_TYPE join_and = QRY_LIB_JOIN_TYPE_AND;
constexpr QRY_LIB_JOIN_TYPE join_or = QRY_LIB_JOIN_TYPE_OR;
constexpr std::uint32_t access_error = QRY_LIB_TABLE_ACCESS;
constexpr std::uint32_t argument_error = QRY_LIB_TABLE_ARGUMENT;
constexpr const char *search_name = "qry_lib_tb_create_search_table_id";
constexpr std::uint8_t types_of_numbers[] = {0, 1, 2, 3, 4};

using key = qry_lib_tb_list_filter_key_;

key string_key(std::uint32_t element, QRY_LIB_OPERATION_TYPE operation, const std::string &text,
               QRY_LIB_JOIN_TYPE join = join_and) {
    key made{};
    made.element_id = element;
    made.elem_type = norvane::element_name;
    made.cmp_size = 193;
    std::memcpy(made.value, text.data(), text.size());
    made.operation = operation;
    made.join = join;
    return made;
}

template <typename Number>
key number_key(std::uint32_t element, std::uint8_t type, QRY_LIB_OPERATION_TYPE operation, Number value,
               QRY_LIB_JOIN_TYPE join = join_and) {
    key made{};
    made.element_id = element;
    made.elem_type = type;
    made.cmp_size = sizeof value;
    std::memcpy(made.value, &value, sizeof value);
    made.operation = operation;
    made.join = join;
    return made;
}

class record_search : public test::exec_test {
  protected:
    // The record numbers that satisfy the keys; the search must succeed.
    std::vector<int> find(std::uint32_t category, std::vector<key> keys) {
        qry_lib_tb_search_id id = 0;
        std::uint16_t num = 0xAAAA;
        EXPECT_EQ(search(category, keys, id, num), 0u);
        const auto *numbers = reinterpret_cast<const std::uint16_t *>(id);
        std::vector<int> found(numbers, numbers + num);
        qry_lib_tb_delete_search_table_id(&id);
        EXPECT_EQ(id, 0u);
        return found;
    }

    static std::uint32_t search(std::uint32_t category, std::vector<key> &keys, qry_lib_tb_search_id &id,
                                std::uint16_t &num) {
        return qry_lib_tb_create_search_table_id(category, static_cast<std::uint16_t>(keys.size()),
                                                 keys.data(), &id, &num);
    }

    // A search that is refused before it touches a list or takes a block.
    void expect_refused(std::uint32_t category, std::vector<key> keys) {
        qry_lib_tb_search_id id = 0;
        std::uint16_t num = 0xAAAA;
        qryhost_fail_clear();
        EXPECT_EQ(search(category, keys, id, num), argument_error);
        EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_LIST), 0u);
        EXPECT_EQ(qryhost_call_count(QRYHOST_ALLOC), 0u);
        EXPECT_EQ(id, 0u);
        EXPECT_EQ(num, 0xAAAA);
    }
};

using numbers = std::vector<int>;

numbers up_to(int end) {
    numbers all;
    for (int i = 0; i < end; ++i) {
        all.push_back(i);
    }
    return all;
}

TEST_F(record_search, no_keys_find_every_position) {
    EXPECT_EQ(find(departments, {}), up_to(101));
    EXPECT_EQ(find(0x06170504, {}), up_to(103)); // a category outside the four databases
    EXPECT_EQ(find(edit_counters, {}), up_to(2));
    EXPECT_TRUE(lines.empty());
}

TEST_F(record_search, a_category_without_records_finds_nothing) {
    EXPECT_EQ(find(test::no_records, {}), numbers{});
    EXPECT_EQ(find(test::no_records, {number_key(0x73282000, 4, QRY_LIB_OPERATION_TYPE_NOT_EQUAL, 1u)}),
              numbers{});
}

TEST_F(record_search, numbers_compare_by_each_operation) {
    put(edit_counters, 0, edit_counter_count, std::uint32_t{5});
    put(edit_counters, 1, edit_counter_count, std::uint32_t{0x80000001});
    struct {
        QRY_LIB_OPERATION_TYPE operation;
        std::uint32_t value;
        numbers found;
    } const rows[] = {
        {QRY_LIB_OPERATION_TYPE_EQUAL, 5, {0}},
        {QRY_LIB_OPERATION_TYPE_EQUAL, 6, {}},
        {QRY_LIB_OPERATION_TYPE_NOT_EQUAL, 5, {1}},
        {QRY_LIB_OPERATION_TYPE_LESS, 6, {0}},
        {QRY_LIB_OPERATION_TYPE_LESS, 5, {}},
        {QRY_LIB_OPERATION_TYPE_LESS, 0xFFFFFFFF, {0, 1}},
        {QRY_LIB_OPERATION_TYPE_LESS, 256, {0}}, // by value, not by the machine's bytes
        {QRY_LIB_OPERATION_TYPE_GREATER, 5, {1}},
        {QRY_LIB_OPERATION_TYPE_GREATER, 4, {0, 1}},
        {QRY_LIB_OPERATION_TYPE_GREATER, 0x80000001, {}},
        {QRY_LIB_OPERATION_TYPE_LESS_EQUAL, 5, {0}},
        {QRY_LIB_OPERATION_TYPE_LESS_EQUAL, 4, {}},
        {QRY_LIB_OPERATION_TYPE_GREATER_EQUAL, 5, {0, 1}},
        {QRY_LIB_OPERATION_TYPE_GREATER_EQUAL, 0x80000001, {1}},
        {QRY_LIB_OPERATION_TYPE_IN, 5, {}},
        {QRY_LIB_OPERATION_TYPE_INLIKE, 5, {}},
        {static_cast<QRY_LIB_OPERATION_TYPE>(7), 5, {}},
    };
    for (const auto &row : rows) {
        for (const std::uint8_t type : {std::uint8_t{0}, std::uint8_t{3}, std::uint8_t{4}}) {
            SCOPED_TRACE(testing::Message() << "type " << int{type} << ", operation " << row.operation
                                            << ", value " << row.value);
            EXPECT_EQ(find(edit_counters, {number_key(edit_counter_count, type, row.operation, row.value)}),
                      row.found);
        }
    }
}

TEST_F(record_search, narrow_numbers_compare_in_their_own_width) {
    put(departments, 3, department_id, std::uint16_t{0x0100});
    put(departments, 4, department_id, std::uint16_t{0x00FF});
    put(departments, 4, test::department_limit, std::uint8_t{200});
    EXPECT_EQ(find(departments,
                   {number_key(department_id, 2, QRY_LIB_OPERATION_TYPE_GREATER, std::uint16_t{0x00FF})}),
              numbers{3});
    EXPECT_EQ(find(departments, {number_key(test::department_limit, 1, QRY_LIB_OPERATION_TYPE_GREATER_EQUAL,
                                            std::uint8_t{128})}),
              numbers{4});
}

TEST_F(record_search, only_cmp_size_bytes_are_compared_most_significant_first) {
    put(edit_counters, 0, edit_counter_count, std::uint32_t{0x01020304});
    put(edit_counters, 1, edit_counter_count, std::uint32_t{0x01020505});
    key cut = number_key(edit_counter_count, 4, QRY_LIB_OPERATION_TYPE_EQUAL, std::uint32_t{0x0102FFFF});
    cut.cmp_size = 2;
    EXPECT_EQ(find(edit_counters, {cut}), up_to(2));
    cut.cmp_size = 3;
    EXPECT_EQ(find(edit_counters, {cut}), numbers{});
    cut.operation = QRY_LIB_OPERATION_TYPE_LESS;
    EXPECT_EQ(find(edit_counters, {cut}), up_to(2));
    cut.operation = QRY_LIB_OPERATION_TYPE_GREATER;
    EXPECT_EQ(find(edit_counters, {cut}), numbers{});
    key below = number_key(edit_counter_count, 4, QRY_LIB_OPERATION_TYPE_GREATER, std::uint32_t{0x0101FFFF});
    below.cmp_size = 2;
    EXPECT_EQ(find(edit_counters, {below}), up_to(2));
    below.operation = QRY_LIB_OPERATION_TYPE_LESS;
    EXPECT_EQ(find(edit_counters, {below}), numbers{});
    cut.operation = QRY_LIB_OPERATION_TYPE_EQUAL;
    cut.cmp_size = 0;
    EXPECT_EQ(find(edit_counters, {cut}), up_to(2));
}

TEST_F(record_search, a_type_without_a_width_compares_bytes) {
    put_text(departments, 2, department_name, "abc");
    key bytes = string_key(department_name, QRY_LIB_OPERATION_TYPE_EQUAL, "abX");
    bytes.elem_type = 9;
    bytes.cmp_size = 2;
    EXPECT_EQ(find(departments, {bytes}), numbers{2});
    bytes.cmp_size = 3;
    EXPECT_EQ(find(departments, {bytes}), numbers{});
}

TEST_F(record_search, strings_compare_by_each_operation_they_have) {
    put_text(departments, 0, department_name, "Sato");
    put_text(departments, 1, department_name, "Sat");
    put_text(departments, 2, department_name, "S\tato\n");
    put_text(departments, 3, department_name, "\xE4\xBD\x90\xE8\x97\xA4");
    struct {
        QRY_LIB_OPERATION_TYPE operation;
        std::string text;
        numbers found;
    } const rows[] = {
        {QRY_LIB_OPERATION_TYPE_EQUAL, "Sato", {0}},
        {QRY_LIB_OPERATION_TYPE_EQUAL, "sato", {}},
        {QRY_LIB_OPERATION_TYPE_EQUAL, "S\tato\n", {2}},
        {QRY_LIB_OPERATION_TYPE_EQUAL, "\xE4\xBD\x90\xE8\x97\xA4", {3}},
        {QRY_LIB_OPERATION_TYPE_LIKE, "Sat", {0, 1}},
        {QRY_LIB_OPERATION_TYPE_LIKE, "Sato", {0}},
        {QRY_LIB_OPERATION_TYPE_LIKE, "Satoo", {}},
        {QRY_LIB_OPERATION_TYPE_LIKE, "\xE4\xBD\x90", {3}},
        {QRY_LIB_OPERATION_TYPE_IN, "Sato", {}},
        {QRY_LIB_OPERATION_TYPE_INLIKE, "Sato", {}},
    };
    for (const auto &row : rows) {
        for (const std::uint8_t type : {std::uint8_t{5}, std::uint8_t{6}}) {
            SCOPED_TRACE(testing::Message() << "operation " << row.operation << ", " << row.text);
            key wanted = string_key(department_name, row.operation, row.text);
            wanted.elem_type = type;
            EXPECT_EQ(find(departments, {wanted}), row.found);
        }
    }
    EXPECT_EQ(find(departments, {string_key(department_name, QRY_LIB_OPERATION_TYPE_NOT_EQUAL, "")}),
              up_to(4));
}

TEST_F(record_search, an_empty_like_finds_every_record) {
    put_text(departments, 50, department_name, "Sato");
    EXPECT_EQ(find(departments, {string_key(department_name, QRY_LIB_OPERATION_TYPE_LIKE, "")}), up_to(101));
}

TEST_F(record_search, the_value_lies_at_its_offset) {
    put_text(departments, 7, department_name, std::string("12345678901234567890") + "Sato");
    put_text(departments, 8, department_name, "Sato");
    key member = string_key(department_name, QRY_LIB_OPERATION_TYPE_EQUAL, "Sato");
    member.member_offset = 20;
    EXPECT_EQ(find(departments, {member}), numbers{7});
    key digit = number_key(department_name, 1, QRY_LIB_OPERATION_TYPE_EQUAL, std::uint8_t{'3'});
    digit.member_offset = 2;
    EXPECT_EQ(find(departments, {digit}), numbers{7});
    // A number at an odd offset, with the bytes of a wider one around it.
    key wide = number_key(department_name, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u);
    std::memcpy(wide.value, "4567", 4);
    wide.member_offset = 3;
    EXPECT_EQ(find(departments, {wide}), numbers{7});
}

TEST_F(record_search, no_byte_of_another_record_is_compared) {
    put_text(departments, 0, department_name, "long value");
    put_text(departments, 1, department_name, "");
    key member = string_key(department_name, QRY_LIB_OPERATION_TYPE_LIKE, "value");
    member.member_offset = 5;
    EXPECT_EQ(find(departments, {member}), numbers{0});
}

// One value per record, tested by keys that hold (1) or fail (0) on it.
TEST_F(record_search, keys_combine_strictly_left_to_right) {
    put(edit_counters, 0, edit_counter_count, std::uint32_t{1});
    struct {
        std::vector<std::pair<bool, QRY_LIB_JOIN_TYPE>> keys;
        bool matches;
    } const rows[] = {
        {{{true, join_and}}, true},
        {{{false, join_and}}, false},
        {{{true, join_or}}, true},
        {{{false, join_or}}, false},
        {{{true, join_and}, {true, join_and}}, true},
        {{{true, join_and}, {false, join_and}}, false},
        {{{false, join_and}, {true, join_and}}, false},
        {{{true, join_or}, {false, join_or}}, true},
        {{{false, join_or}, {true, join_or}}, true},
        {{{false, join_or}, {false, join_or}}, false},
        // No precedence: a failing AND ends the test whatever follows, a holding OR too.
        {{{false, join_and}, {true, join_or}}, false},
        {{{true, join_or}, {false, join_and}}, true},
        {{{true, join_and}, {false, join_or}}, false},
        {{{true, join_and}, {false, join_or}, {true, join_or}}, true},
        {{{false, join_or}, {true, join_and}}, true},
        {{{false, join_or}, {true, join_and}, {false, join_and}}, false},
        {{{true, join_and}, {true, join_or}, {false, join_and}}, true},
        // Any other join is an AND.
        {{{false, static_cast<QRY_LIB_JOIN_TYPE>(0)}, {true, join_or}}, false},
        {{{true, static_cast<QRY_LIB_JOIN_TYPE>(3)}}, true},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        std::vector<key> keys;
        for (const auto &[holds, join] : rows[i].keys) {
            keys.push_back(number_key(edit_counter_count, 4, QRY_LIB_OPERATION_TYPE_EQUAL,
                                      std::uint32_t{holds ? 1u : 2u}, join));
        }
        const numbers found = find(edit_counters, keys);
        EXPECT_EQ(!found.empty() && found.front() == 0, rows[i].matches);
    }
}

TEST_F(record_search, each_position_is_visited_once_and_a_decided_test_reads_no_further) {
    qryhost_fail_clear();
    const key never = number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 9u);
    find(edit_counters, {never, never, never});
    EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_LIST), 3u);
    EXPECT_EQ(qryhost_call_count(QRYHOST_LIST_SET_POS), 2u);
    EXPECT_EQ(qryhost_call_count(QRYHOST_LIST_GET_VAL), 2u);
}

TEST_F(record_search, operations_that_a_type_does_not_have_are_refused) {
    using operation = QRY_LIB_OPERATION_TYPE;
    for (std::uint32_t o = QRY_LIB_OPERATION_TYPE_LESS; o <= QRY_LIB_OPERATION_TYPE_GREATER_EQUAL; ++o) {
        for (const std::uint8_t type : {std::uint8_t{5}, std::uint8_t{6}}) {
            key ordered = string_key(department_name, static_cast<operation>(o), "x");
            ordered.elem_type = type;
            expect_refused(departments, {ordered});
        }
    }
    EXPECT_EQ(take_traces(), traces(8, {search_name, 415, argument_error}));
    for (const std::uint8_t type : types_of_numbers) {
        expect_refused(departments, {number_key(department_id, type, QRY_LIB_OPERATION_TYPE_LIKE, 1u)});
    }
    EXPECT_EQ(take_traces(), traces(5, {search_name, 415, argument_error}));
}

TEST_F(record_search, every_key_is_looked_at_and_one_trace_is_written) {
    const key good = number_key(department_id, 2, QRY_LIB_OPERATION_TYPE_EQUAL, std::uint16_t{1});
    const key bad = string_key(department_name, QRY_LIB_OPERATION_TYPE_LESS, "x");
    expect_refused(departments, {good, bad, good, bad});
    // The keys come before the category.
    expect_refused(0xDEADBEEF, {good, bad});
    EXPECT_EQ(take_traces(), traces(2, {search_name, 415, argument_error}));
}

TEST_F(record_search, missing_outputs_and_unknown_categories_are_refused) {
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0xAAAA;
    EXPECT_EQ(qry_lib_tb_create_search_table_id(departments, 0, nullptr, &id, nullptr), argument_error);
    EXPECT_EQ(take_traces(), (traces{{search_name, 408, argument_error}}));
    expect_refused(0xDEADBEEF, {});
    EXPECT_EQ(take_traces(), (traces{{search_name, 422, argument_error}}));
    EXPECT_EQ(qry_lib_tb_create_search_table_id(departments, 0, nullptr, nullptr, &num), argument_error);
    EXPECT_EQ(qry_lib_tb_create_search_table_id(departments, 1, nullptr, &id, &num), argument_error);
    EXPECT_EQ(take_codes(),
              (std::vector<std::pair<std::string, std::uint32_t>>(2, {search_name, argument_error})));
    EXPECT_EQ(num, 0xAAAA);
}

TEST_F(record_search, keys_that_reach_beyond_their_buffers_are_refused) {
    key endless = string_key(department_name, QRY_LIB_OPERATION_TYPE_EQUAL, std::string(3000, 'x'));
    expect_refused(departments, {endless});
    endless.value[2999] = '\0';
    EXPECT_EQ(find(departments, {endless}), numbers{});
    key far = string_key(department_name, QRY_LIB_OPERATION_TYPE_EQUAL, "x");
    far.member_offset = 65535;
    expect_refused(departments, {far});
    key far_number = number_key(department_name, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 1u);
    far_number.member_offset = 2997;
    expect_refused(departments, {far_number});
    far_number.member_offset = 2996;
    EXPECT_EQ(find(departments, {far_number}), numbers{});
    EXPECT_EQ(take_codes(),
              (std::vector<std::pair<std::string, std::uint32_t>>(3, {search_name, argument_error})));
}

TEST_F(record_search, without_memory_nothing_is_searched) {
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0xAAAA;
    for (const std::uint32_t category : {departments, test::no_records}) {
        std::vector<key> keys = {
            number_key(department_id, 2, QRY_LIB_OPERATION_TYPE_EQUAL, std::uint16_t{1})};
        qryhost_fail(QRYHOST_ALLOC, 0, 1, injected);
        EXPECT_EQ(search(category, keys, id, num), access_error);
        EXPECT_EQ(take_traces(),
                  (traces{{"qry_lib_tb_alloc_mem", 690, access_error}, {search_name, 429, access_error}}));
    }
    EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_LIST), 0u);
    EXPECT_EQ(num, 0xAAAA);
}

class failing_row_test : public record_search {
  private:
    test::lost_blocks_allowed allowed_;
};

TEST_F(failing_row_test, ends_the_search_and_loses_its_block) {
    std::vector<key> keys = {number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u),
                             number_key(edit_counter_count, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u)};
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0xAAAA;
    for (std::uint32_t skip = 0; skip < 4; ++skip) {
        const std::uint32_t blocks = qryhost_pool_blocks();
        qryhost_fail(QRYHOST_LIST_SET_POS, skip, 1, injected);
        EXPECT_EQ(search(edit_counters, keys, id, num), access_error);
        EXPECT_EQ(take_traces(),
                  (traces{{search_name, 519, access_error}, {search_name, 452, access_error}}));
        EXPECT_EQ(id, 0u);
        EXPECT_EQ(num, 0xAAAA);
        EXPECT_EQ(qryhost_pool_blocks(), blocks + 1);
        test::settle_lost_block();
    }
}

TEST_F(failing_row_test, gives_back_the_block_that_the_callers_id_names) {
    std::vector<key> keys = {number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u)};
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0;
    ASSERT_EQ(search(edit_counters, keys, id, num), 0u);
    ASSERT_NE(id, 0u);
    const std::uint32_t blocks = qryhost_pool_blocks();
    qryhost_fail(QRYHOST_LIST_SET_POS, 0, 1, injected);
    EXPECT_EQ(search(edit_counters, keys, id, num), access_error);
    EXPECT_EQ(id, 0u);
    EXPECT_EQ(qryhost_pool_blocks(), blocks); // one given back, one lost
    test::settle_lost_block();
}

TEST_F(failing_row_test, follows_a_list_table_that_could_not_be_created) {
    const key holds = number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u);
    std::vector<key> keys = {holds, holds, holds};
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0;
    const traces row_test = {{search_name, 519, access_error}, {search_name, 452, access_error}};
    for (std::uint32_t skip = 0; skip < 3; ++skip) {
        SCOPED_TRACE(skip);
        qryhost_fail_clear();
        qryhost_fail(QRYHOST_CREATE_LIST, skip, 1, injected);
        EXPECT_EQ(search(edit_counters, keys, id, num), access_error);
        EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_LIST), 3u); // the search goes on
        traces expected = row_test;
        expected.insert(expected.begin(), {"qry_lib_tb_create_list_table", 805, injected});
        EXPECT_EQ(take_traces(), expected);
        test::settle_lost_block();
    }
    qryhost_fail(QRYHOST_CREATE_LIST, 0, UINT32_MAX, injected);
    EXPECT_EQ(search(edit_counters, keys, id, num), access_error);
    traces expected(3, {"qry_lib_tb_create_list_table", 805, injected});
    expected.insert(expected.end(), row_test.begin(), row_test.end());
    EXPECT_EQ(take_traces(), expected);
    test::settle_lost_block();
}

TEST_F(failing_row_test, follows_even_where_the_first_key_would_decide) {
    // One list that cannot be made takes those before it along.
    const key never = number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 9u);
    std::vector<key> keys = {never, never};
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0;
    qryhost_fail(QRYHOST_CREATE_LIST, 1, 1, injected);
    EXPECT_EQ(search(edit_counters, keys, id, num), access_error);
    test::settle_lost_block();
    EXPECT_EQ(take_traces(), (traces{{"qry_lib_tb_create_list_table", 805, injected},
                                     {search_name, 519, access_error},
                                     {search_name, 452, access_error}}));
}

TEST_F(record_search, a_missing_list_that_no_row_test_reaches_does_no_harm) {
    std::vector<key> keys = {number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u)};
    qryhost_fail(QRYHOST_CREATE_LIST, 0, 1, injected);
    qry_lib_tb_search_id id = 0;
    std::uint16_t num = 0xAAAA;
    EXPECT_EQ(search(test::no_records, keys, id, num), 0u);
    EXPECT_EQ(num, 0);
    qry_lib_tb_delete_search_table_id(&id);
    EXPECT_EQ(take_traces(), (traces{{"qry_lib_tb_create_list_table", 805, injected}}));
}

TEST_F(record_search, a_value_that_cannot_be_read_counts_as_zeros) {
    put(edit_counters, 0, edit_counter_id, std::uint32_t{7});
    put(edit_counters, 1, edit_counter_id, std::uint32_t{7});
    const key is_zero = number_key(edit_counter_id, 4, QRY_LIB_OPERATION_TYPE_EQUAL, 0u);
    EXPECT_EQ(find(edit_counters, {is_zero}), numbers{});
    qryhost_fail(QRYHOST_LIST_GET_VAL, 1, 1, injected);
    EXPECT_EQ(find(edit_counters, {is_zero}), numbers{1});
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(record_search, deleting_no_result_does_nothing) {
    qry_lib_tb_search_id none = 0;
    qry_lib_tb_delete_search_table_id(&none);
    EXPECT_EQ(none, 0u);
    qry_lib_tb_delete_search_table_id(nullptr);
}

TEST_F(record_search, keys_do_not_change) {
    std::vector<key> keys = {string_key(department_name, QRY_LIB_OPERATION_TYPE_LIKE, "Sa")};
    const key before = keys.front();
    find(departments, keys);
    EXPECT_EQ(std::memcmp(&before, &keys.front(), sizeof before), 0);
}

} // namespace
