// Record values, default records and settings of the workstation's element tables.
#include "platform/element_table.h"

#include <cstring>

#include "unit/host/host_test.h"

namespace {

using namespace test;

using element_table = host_test;

void set(std::uint32_t category, std::uint32_t record, std::uint32_t element, const value_buffer &value) {
    ASSERT_EQ(tbctSTCSetTable(requester, category, record, element, value.data()), 0u);
}

value_buffer get(std::uint32_t category, std::uint32_t record, std::uint32_t element) {
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(category, record, element, value.data()), 0u);
    return value;
}

value_buffer text(const char *characters) {
    value_buffer value = empty_buffer();
    std::memcpy(value.data(), characters, std::strlen(characters));
    return value;
}

TEST_F(element_table, a_fresh_store_is_all_zeros) {
    const std::vector<std::uint8_t> content = store_content();
    EXPECT_GT(content.size(), 102u * 2 * 193) << "the names of the departments alone";
    EXPECT_EQ(content, std::vector<std::uint8_t>(content.size()));
}

TEST_F(element_table, every_value_keeps_its_own_bytes) {
    seeded_random random;
    SCOPED_TRACE(random.rerun());
    std::map<std::pair<element_key, std::uint32_t>, value_buffer> written;
    for (const auto &[key, size] : element_sizes()) {
        for (std::uint32_t record = 0; record <= capacity(key.first); ++record) {
            value_buffer value = empty_buffer();
            std::generate(value.begin(), value.begin() + size, [&random] { return random.byte(); });
            set(key.first, record, key.second, value);
            written[{key, record}] = value;
        }
    }
    for (const auto &[where, value] : written) {
        EXPECT_EQ(get(where.first.first, where.second, where.first.second), value)
            << std::hex << where.first.first << " " << where.first.second << " record " << where.second;
    }
}

TEST_F(element_table, a_read_writes_the_element_and_no_byte_more) {
    for (const auto &[key, size] : element_sizes()) {
        value_buffer value = empty_buffer(0xEE);
        ASSERT_EQ(tbctSTCGetTable(key.first, 0, key.second, value.data()), 0u);
        value_buffer expected = empty_buffer(0xEE);
        std::fill(expected.begin(), expected.begin() + size, std::uint8_t{0});
        EXPECT_EQ(value, expected) << std::hex << key.first << " " << key.second;
    }
}

TEST_F(element_table, a_composite_is_as_large_as_its_farthest_member) {
    const auto sizes = element_sizes();
    EXPECT_EQ((sizes.at({no_records, 0x7321F000})), 214);
    EXPECT_EQ((sizes.at({0x05150706, 0x7651F001})), 129);
}

TEST_F(element_table, refuses_what_does_not_exist) {
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(0x05080499, 1, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetTable(departments, 1, person_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetTable(departments, 101, department_name, value.data()), 0u);
    EXPECT_EQ(tbctSTCGetTable(departments, 102, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetTable(departments, 0xFFFFFFFF, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetTable(departments, 1, department_name, nullptr), table_refused);
    EXPECT_EQ(tbctSTCSetTable(requester, 0x05080499, 1, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCSetTable(requester, departments, 102, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, 1, value.data()), table_refused);
    EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, department_name, nullptr), table_refused);
}

TEST_F(element_table, a_category_without_records_has_a_default_record) {
    set(no_records, 0, 0x73260000, text("x"));
    EXPECT_EQ(get(no_records, 0, 0x73260000)[0], 'x');
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(no_records, 1, 0x73260000, value.data()), table_refused);
    EXPECT_EQ(tbctResetTable(no_records), 0u);
    EXPECT_EQ(tbSTCInitTable(no_records, 1), table_refused);
}

TEST_F(element_table, a_category_outside_the_schema_has_no_elements) {
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(0x06170500, 1, 0x40971000, value.data()), table_refused);
    EXPECT_EQ(tbctResetTable(0x06170500), table_refused);
}

TEST_F(element_table, init_puts_one_record_back_to_the_default_record) {
    set(departments, 0, department_name, text("template"));
    for (const std::uint32_t record : {1u, 2u, 101u}) {
        set(departments, record, department_name, text("changed"));
    }
    EXPECT_EQ(tbSTCInitTable(departments, 2), 0u);
    EXPECT_EQ(get(departments, 1, department_name), text("changed"));
    EXPECT_EQ(get(departments, 2, department_name), text("template"));
    EXPECT_EQ(get(departments, 101, department_name), text("changed"));
    EXPECT_EQ(tbSTCInitTable(departments, 101), 0u);
    EXPECT_EQ(get(departments, 101, department_name), text("template"));
}

TEST_F(element_table, init_refuses_the_default_record_and_what_does_not_exist) {
    EXPECT_EQ(tbSTCInitTable(departments, 0), table_refused);
    EXPECT_EQ(tbSTCInitTable(departments, 102), table_refused);
    EXPECT_EQ(tbSTCInitTable(departments, 0xFFFFFFFF), table_refused);
    EXPECT_EQ(tbSTCInitTable(0x12345678, 1), table_refused);
    EXPECT_EQ(tbSTCInitTable(settings, 1), table_refused);
    EXPECT_EQ(tbctResetTable(settings), table_refused);
    EXPECT_EQ(tbctResetTable(0), table_refused);
}

TEST_F(element_table, reset_puts_every_record_of_the_category_back) {
    set(departments, 0, department_name, text("template"));
    set(persons, 1, person_name, text("untouched"));
    for (std::uint32_t record = 1; record <= 101; ++record) {
        set(departments, record, department_name, text("changed"));
    }
    EXPECT_EQ(tbctResetTable(departments), 0u);
    for (std::uint32_t record = 0; record <= 101; ++record) {
        EXPECT_EQ(get(departments, record, department_name), text("template"));
    }
    EXPECT_EQ(get(persons, 1, person_name), text("untouched"));
}

TEST_F(element_table, settings_are_numbers_of_their_own) {
    for (std::uint32_t i = 0; i < 3; ++i) {
        const std::uint32_t mode = i + 1;
        EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[i], &mode), 0u);
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
        std::uint32_t mode[2] = {0, 0xEEEEEEEE};
        EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[i], mode), 0u);
        EXPECT_EQ(mode[0], i + 1);
        EXPECT_EQ(mode[1], 0xEEEEEEEE);
    }
}

TEST_F(element_table, settings_and_records_do_not_mix) {
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(settings, 0, setting_ids[0], value.data()), table_refused);
    EXPECT_EQ(tbctSTCSetTable(requester, settings, 0, setting_ids[0], value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetStatus(departments, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCSetStatus(requester, departments, department_name, value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetStatus(settings, 0x85004861, value.data()), table_refused);
    EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[0], nullptr), table_refused);
    EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], nullptr), table_refused);
    tbctListTable list{};
    EXPECT_EQ(tbctSTCCreateListTable(settings, setting_ids[0], 0, &list), table_refused);
}

TEST_F(element_table, an_injected_failure_changes_nothing) {
    set(departments, 1, department_name, text("kept"));
    const std::vector<std::uint8_t> before = store_content();
    const value_buffer other = text("other");
    for (const qryhost_call call : {QRYHOST_SET_TABLE, QRYHOST_INIT_TABLE}) {
        qryhost_fail(call, 0, 2, 0x77);
    }
    EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, department_name, other.data()), 0x77u);
    EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], other.data()), 0x77u);
    EXPECT_EQ(tbSTCInitTable(departments, 1), 0x77u);
    EXPECT_EQ(tbctResetTable(departments), 0x77u);
    EXPECT_EQ(store_content(), before);
}

TEST_F(element_table, an_injected_failure_of_a_read_leaves_the_buffer_alone) {
    value_buffer value = empty_buffer(0xEE);
    qryhost_fail(QRYHOST_GET_TABLE, 0, 1, 9);
    EXPECT_EQ(tbctSTCGetTable(departments, 1, department_name, value.data()), 9u);
    qryhost_fail(QRYHOST_GET_STATUS, 0, 1, 8);
    EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[0], value.data()), 8u);
    EXPECT_EQ(value, empty_buffer(0xEE));
}

} // namespace
