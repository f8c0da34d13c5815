// Access to single elements and records, and the library's own string comparisons.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::department_id;
using test::department_name;
using test::departments;
using test::injected;
using test::persons;
using test::requester;

constexpr std::uint32_t no_record = 0xFFFFFFFF;

class element_access : public test::host_test {};

TEST(tb_string, strcmp_orders_signed_bytes) {
    struct {
        const char *a;
        const char *b;
        int order;
    } const rows[] = {
        {"ABC", "ABD", -1}, {"ABD", "ABC", 1},  {"ABC", "AB", 1},    {"AB", "ABC", -1},   {"", "", 0},
        {"A", "", 1},       {"", "A", -1},      {"ABC", "ABC", 0},   {"abc", "ABC", 1},   {"_", "T", 1},
        {"\x80", "A", -1},  {"A", "\x80", 1},   {"\xFF", "\x80", 1}, {"\x80", "", -1},    {"", "\x80", -1},
        {"A", "A\x80", -1}, {"A\x80", "A", -1}, {"\x7F", "\x80", 1}, {"A\tB", "A B", -1}, {"A\nB", "A\tB", 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.a << " and " << row.b);
        EXPECT_EQ(qry_lib_tb_strcmp(row.a, row.b), row.order);
    }
}

TEST(tb_string, strncmp_takes_a_prefix_for_equal) {
    struct {
        const char *a;
        const char *b;
        std::uint32_t n;
        int order;
    } const rows[] = {
        {"AB", "ABC", 5, 0},   {"", "X", 3, 0},         {"X", "Y", 0, 0},    {"ABC", "ABD", 2, 0},
        {"ABC", "ABD", 3, -1}, {"ABD", "ABC", 3, 1},    {"ABC", "AB", 3, 1}, {"ABC", "AB", 2, 0},
        {"X", "", 1, 1},       {"\x80", "A", 1, -1},    {"\x80", "", 1, -1}, {"A", "B", 1, -1},
        {"", "", 1, 0},        {"AB", "AB", 0xFFFF, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.a << " and " << row.b << ", " << row.n);
        EXPECT_EQ(qry_lib_tb_strncmp(row.a, row.b, row.n), row.order);
    }
}

TEST(tb_string, long_texts_are_walked_to_their_end) {
    std::string a(1 << 20, 'x');
    std::string b = a;
    EXPECT_EQ(qry_lib_tb_strcmp(a.c_str(), b.c_str()), 0);
    b.back() = 'y';
    EXPECT_EQ(qry_lib_tb_strcmp(a.c_str(), b.c_str()), -1);
    b = a;
    b[65534] = 'y';
    EXPECT_EQ(qry_lib_tb_strncmp(a.c_str(), b.c_str(), 65534), 0);
    EXPECT_EQ(qry_lib_tb_strncmp(a.c_str(), b.c_str(), 65535), -1);
}

TEST_F(element_access, records_are_counted_from_zero_behind_the_default) {
    std::uint16_t value = 5;
    ASSERT_EQ(qry_lib_tb_set_stc_table(requester, departments, 0, department_id, &value), 0u);
    value = 6;
    ASSERT_EQ(qry_lib_tb_set_stc_table(requester, departments, 100, department_id, &value), 0u);
    value = 7;
    ASSERT_EQ(qry_lib_tb_set_stc_default_table(requester, departments, department_id, &value), 0u);
    const std::uint16_t expected[] = {7, 5};
    for (std::uint32_t platform_record : {0u, 1u}) {
        value = 0;
        EXPECT_EQ(tbctSTCGetTable(departments, platform_record, department_id, &value), 0u);
        EXPECT_EQ(value, expected[platform_record]);
    }
    EXPECT_EQ(qry_lib_tb_get_stc_table(departments, 100, department_id, &value), 0u);
    EXPECT_EQ(value, 6);
    EXPECT_EQ(qry_lib_tb_get_stc_table(departments, 0, department_id, &value), 0u);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(qry_lib_tb_get_stc_default_table(departments, department_id, &value), 0u);
    EXPECT_EQ(value, 7);
}

TEST_F(element_access, the_record_that_would_wrap_is_refused_without_a_call) {
    char buffer[3001] = "old";
    qryhost_fail_clear();
    EXPECT_EQ(qry_lib_tb_get_stc_table(departments, no_record, department_name, buffer),
              QRY_LIB_TABLE_ARGUMENT);
    EXPECT_EQ(qry_lib_tb_get_stc_table_str(departments, no_record, department_name, buffer, 2),
              QRY_LIB_TABLE_ARGUMENT);
    EXPECT_EQ(qry_lib_tb_set_stc_table(requester, departments, no_record, department_name, buffer),
              QRY_LIB_TABLE_ARGUMENT);
    EXPECT_EQ(qry_lib_tb_reset_one_stc_table(departments, no_record), QRY_LIB_TABLE_ARGUMENT);
    for (const qryhost_call call : {QRYHOST_GET_TABLE, QRYHOST_SET_TABLE, QRYHOST_INIT_TABLE}) {
        EXPECT_EQ(qryhost_call_count(call), 0u);
    }
    EXPECT_STREQ(buffer, "old");
    EXPECT_TRUE(lines.empty());
}

TEST_F(element_access, records_beyond_the_capacity_are_the_platforms_to_refuse) {
    char buffer[3001] = {};
    for (const std::uint32_t record : {101u, 65535u, 0xFFFFFFFEu}) {
        EXPECT_EQ(qry_lib_tb_get_stc_table(departments, record, department_name, buffer),
                  test::table_refused);
        EXPECT_EQ(qry_lib_tb_reset_one_stc_table(departments, record), test::table_refused);
    }
    EXPECT_EQ(qry_lib_tb_get_stc_table(departments, 0, 0xDEADBEEF, buffer), test::table_refused);
    EXPECT_EQ(qry_lib_tb_get_stc_table(0xDEADBEEF, 0, department_name, buffer), test::table_refused);
    EXPECT_EQ(qry_lib_tb_get_stc_table(departments, 0, department_name, nullptr), test::table_refused);
    EXPECT_EQ(qry_lib_tb_get_stc_table_str(departments, 0, department_name, nullptr, 5), test::table_refused);
}

TEST_F(element_access, platform_codes_come_back_unchanged) {
    char buffer[3001] = {};
    const std::uint32_t setting = test::setting_ids[0];
    struct {
        qryhost_call call;
        std::function<std::uint32_t()> access;
    } const rows[] = {
        {QRYHOST_GET_TABLE,
         [&] { return qry_lib_tb_get_stc_table(departments, 0, department_name, buffer); }},
        {QRYHOST_GET_TABLE,
         [&] { return qry_lib_tb_get_stc_table_str(departments, 0, department_name, buffer, 9); }},
        {QRYHOST_GET_TABLE,
         [&] { return qry_lib_tb_get_stc_default_table(departments, department_name, buffer); }},
        {QRYHOST_GET_TABLE,
         [&] { return qry_lib_tb_get_stc_default_table_str(departments, department_name, buffer, 9); }},
        {QRYHOST_SET_TABLE,
         [&] { return qry_lib_tb_set_stc_table(requester, departments, 0, department_name, buffer); }},
        {QRYHOST_SET_TABLE,
         [&] { return qry_lib_tb_set_stc_default_table(requester, departments, department_name, buffer); }},
        {QRYHOST_INIT_TABLE, [&] { return qry_lib_tb_reset_one_stc_table(departments, 0); }},
        {QRYHOST_INIT_TABLE, [&] { return qry_lib_tb_reset_all_stc_table(departments); }},
        {QRYHOST_GET_STATUS, [&] { return qry_lib_tb_get_stc_status(test::settings, setting, buffer); }},
        {QRYHOST_GET_STATUS,
         [&] { return qry_lib_tb_get_stc_status_str(test::settings, setting, buffer, 3); }},
        {QRYHOST_SET_TABLE,
         [&] { return qry_lib_tb_set_stc_status(requester, test::settings, setting, buffer); }},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        std::memset(buffer, 'x', sizeof buffer);
        qryhost_fail(rows[i].call, 0, 1, injected);
        EXPECT_EQ(rows[i].access(), static_cast<std::uint32_t>(injected));
        EXPECT_EQ(std::count(buffer, buffer + sizeof buffer, 'x'), 3001); // nothing is terminated either
        std::memset(buffer, 0, sizeof buffer);
        EXPECT_EQ(rows[i].access(), 0u);
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(element_access, string_reads_are_terminated_at_the_size) {
    test::put_text(departments, 0, department_name, std::string(193, 'n'));
    test::put_text(departments, test::in_default, department_name, std::string(193, 'd'));
    char buffer[3001];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(qry_lib_tb_get_stc_table_str(departments, 0, department_name, buffer, 193), 0u);
    EXPECT_EQ(std::string(buffer), std::string(192, 'n'));
    EXPECT_EQ(qry_lib_tb_get_stc_default_table_str(departments, department_name, buffer, 10), 0u);
    EXPECT_EQ(std::string(buffer), std::string(9, 'd'));
    std::uint8_t setting[] = {'a', 'b', 'c', 'd'};
    ASSERT_EQ(qry_lib_tb_set_stc_status(requester, test::settings, test::setting_ids[1], setting), 0u);
    EXPECT_EQ(qry_lib_tb_get_stc_status_str(test::settings, test::setting_ids[1], buffer, 4), 0u);
    EXPECT_STREQ(buffer, "abc");
    // A size of 0 has no last byte.
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(qry_lib_tb_get_stc_table_str(departments, 0, department_name, buffer + 1, 0), 0u);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(buffer[193], 'n');
}

TEST_F(element_access, settings_are_read_and_written) {
    std::uint32_t value = 0x01020304;
    ASSERT_EQ(qry_lib_tb_set_stc_status(requester, test::settings, test::setting_ids[2], &value), 0u);
    value = 0;
    EXPECT_EQ(qry_lib_tb_get_stc_status(test::settings, test::setting_ids[2], &value), 0u);
    EXPECT_EQ(value, 0x01020304u);
}

TEST_F(element_access, records_go_back_to_the_default) {
    test::put_text(departments, test::in_default, department_name, "none");
    for (const std::uint32_t record : {0u, 1u, 100u}) {
        test::put_department(record, 9, "dept");
    }
    EXPECT_EQ(qry_lib_tb_reset_one_stc_table(departments, 1), 0u);
    EXPECT_EQ(test::text_at(departments, 1, department_name), "none");
    EXPECT_EQ(test::text_at(departments, 0, department_name), "dept");
    EXPECT_EQ(test::text_at(departments, 100, department_name), "dept");
    EXPECT_EQ(qry_lib_tb_reset_all_stc_table(departments), 0u);
    EXPECT_EQ(test::text_at(departments, 0, department_name), "none");
    EXPECT_EQ(test::text_at(departments, 100, department_name), "none");
    EXPECT_EQ(test::number_at<std::uint16_t>(departments, 100, department_id), 0);
}

TEST_F(element_access, capacities_are_told) {
    for (const QRY_LIB_TB_MAX_ROW &row : QRY_LIB_TB_MAX_TABLE) {
        std::uint16_t max = 0xAAAA;
        EXPECT_EQ(qry_lib_tb_get_max_stc_table_number(row.category, &max), 0u);
        EXPECT_EQ(max, row.max_number);
    }
    std::uint16_t max = 0xAAAA;
    for (const std::uint32_t category : {0u, 0x05090403u, 0xFFFFFFFFu}) {
        EXPECT_EQ(qry_lib_tb_get_max_stc_table_number(category, &max), QRY_LIB_TABLE_ARGUMENT);
    }
    EXPECT_EQ(max, 0xAAAA);
    EXPECT_EQ(qry_lib_tb_get_max_stc_table_number(persons, nullptr), QRY_LIB_TABLE_ARGUMENT);
    EXPECT_TRUE(lines.empty());
}

} // namespace
