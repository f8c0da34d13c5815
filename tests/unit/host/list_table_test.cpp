// List tables: a private copy of one column.
#include <cstring>

#include "unit/host/host_test.h"

namespace {

using namespace test;

class list_table : public host_test {
  protected:
    list_table() {
        for (std::uint16_t record = 0; record <= 101; ++record) {
            set_id(record, static_cast<std::uint16_t>(record * 7));
        }
    }
    ~list_table() override { EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u); }

    static void set_id(std::uint32_t record, std::uint16_t id) {
        EXPECT_EQ(tbctSTCSetTable(requester, departments, record, department_id, &id), 0u);
    }

    std::uint32_t create(std::uint16_t record_num) {
        return tbctSTCCreateListTable(departments, department_id, record_num, &list);
    }

    // The value under the list's position, with two bytes behind it that must stay.
    std::uint16_t value() {
        std::uint16_t buffer[2] = {0, 0xEEEE};
        EXPECT_EQ(tbctSTCListTableGetVal(&list, buffer), 0u);
        EXPECT_EQ(buffer[1], 0xEEEE);
        return buffer[0];
    }

    tbctListTable list{};
};

bool is_zero(const tbctListTable &list) {
    const tbctListTable zero{};
    return std::memcmp(&list, &zero, sizeof list) == 0;
}

TEST_F(list_table, position_p_is_record_p_plus_1) {
    ASSERT_EQ(create(101), 0u);
    for (std::uint16_t position = 0; position < 101; ++position) {
        ASSERT_EQ(tbctSTCListTableSetPos(&list, position), 0u);
        EXPECT_EQ(value(), (position + 1) * 7);
    }
}

TEST_F(list_table, positions_may_be_taken_in_any_order) {
    ASSERT_EQ(create(101), 0u);
    for (const std::uint16_t position : std::vector<std::uint16_t>{100, 0, 57, 57, 1}) {
        ASSERT_EQ(tbctSTCListTableSetPos(&list, position), 0u);
        EXPECT_EQ(value(), (position + 1) * 7);
    }
}

TEST_F(list_table, shows_the_moment_of_its_creation) {
    ASSERT_EQ(create(2), 0u);
    set_id(1, 999);
    EXPECT_EQ(tbctResetTable(departments), 0u);
    ASSERT_EQ(tbctSTCListTableSetPos(&list, 0), 0u);
    EXPECT_EQ(value(), 7);
    ASSERT_EQ(tbctSTCListTableSetPos(&list, 1), 0u);
    EXPECT_EQ(value(), 14);
}

TEST_F(list_table, ends_at_the_number_of_records_asked_for) {
    ASSERT_EQ(create(3), 0u);
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 2), 0u);
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 3), table_refused);
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 0xFFFF), table_refused);
    EXPECT_EQ(value(), 21) << "a refused move leaves the position";
}

TEST_F(list_table, of_no_records_is_open_and_empty) {
    ASSERT_EQ(create(0), 0u);
    std::uint16_t buffer = 0xEEEE;
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 0), table_refused);
    EXPECT_EQ(tbctSTCListTableGetVal(&list, &buffer), table_refused);
    EXPECT_EQ(buffer, 0xEEEE);
}

TEST_F(list_table, refuses_what_does_not_exist) {
    EXPECT_EQ(create(102), table_refused);
    EXPECT_EQ(tbctSTCCreateListTable(departments, person_name, 1, &list), table_refused);
    EXPECT_EQ(tbctSTCCreateListTable(0x99, department_id, 1, &list), table_refused);
    EXPECT_EQ(tbctSTCCreateListTable(departments, department_id, 1, nullptr), table_refused);
    EXPECT_TRUE(is_zero(list));
    EXPECT_EQ(tbctSTCCreateListTable(no_records, 0x73282000, 0, &list), 0u);
}

TEST_F(list_table, that_is_not_open_answers_codes) {
    std::uint16_t buffer = 0;
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 0), table_refused);
    EXPECT_EQ(tbctSTCListTableGetVal(&list, &buffer), table_refused);
    EXPECT_EQ(tbctSTCListTableSetPos(nullptr, 0), table_refused);
    EXPECT_EQ(tbctSTCListTableGetVal(nullptr, &buffer), table_refused);
    EXPECT_EQ(tbctSTCDeleteListTable(nullptr, 0), table_refused);
}

TEST_F(list_table, deleting_twice_is_harmless) {
    ASSERT_EQ(create(101), 0u);
    EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    EXPECT_TRUE(is_zero(list));
    EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 0), table_refused);
}

TEST_F(list_table, outlives_the_store) {
    ASSERT_EQ(create(101), 0u);
    ASSERT_EQ(qryhost_close(), 0);
    ASSERT_EQ(tbctSTCListTableSetPos(&list, 100), 0u);
    EXPECT_EQ(value(), 707);
}

TEST_F(list_table, takes_no_block_of_the_memory_partition) {
    const std::uint32_t before = qryhost_pool_blocks();
    ASSERT_EQ(create(101), 0u);
    EXPECT_EQ(qryhost_pool_blocks(), before);
}

TEST_F(list_table, every_call_can_be_made_to_fail) {
    std::uint16_t buffer = 0xEEEE;
    qryhost_fail(QRYHOST_CREATE_LIST, 0, 1, 3);
    EXPECT_EQ(create(5), 3u);
    EXPECT_TRUE(is_zero(list));
    ASSERT_EQ(create(5), 0u);
    qryhost_fail(QRYHOST_LIST_SET_POS, 0, 1, 4);
    EXPECT_EQ(tbctSTCListTableSetPos(&list, 4), 4u);
    qryhost_fail(QRYHOST_LIST_GET_VAL, 0, 1, 5);
    EXPECT_EQ(tbctSTCListTableGetVal(&list, &buffer), 5u);
    EXPECT_EQ(buffer, 0xEEEE);
    EXPECT_EQ(value(), 7);
}

} // namespace
