// The statement record: every setter, every refusal, every block.
#include <cstring>
#include <string>

#include <qrylib/qrylib.h>

#include "platform/os.h"
#include "unit/support.h"

namespace {

using codes = std::vector<std::pair<std::string, std::uint32_t>>;

class statement : public test::platform_test {
  protected:
    statement() { qry_lib_db_get_stmt("adbk_db", &stmt); }
    ~statement() override { qry_lib_db_stmt_term(&stmt); }

    qry_lib_db_stmt_ stmt;
};

TEST_F(statement, init_fills_with_zeros) {
    std::memset(&stmt, 0x5A, sizeof stmt);
    qry_lib_db_stmt_init(&stmt);
    const qry_lib_db_stmt_ zero = {};
    EXPECT_EQ(std::memcmp(&stmt, &zero, sizeof stmt), 0);
}

TEST_F(statement, get_stmt_binds_to_a_database) {
    EXPECT_EQ(qry_lib_db_get_stmt("log_db", &stmt), 0u);
    EXPECT_STREQ(stmt.db_name, "log_db");
    EXPECT_EQ(stmt.exec_type, QRY_LIB_DB_QUERY_TYPE_NONE);
    EXPECT_EQ(stmt.table_name, nullptr);
}

TEST_F(statement, get_stmt_refuses_null_and_over_long) {
    EXPECT_EQ(qry_lib_db_get_stmt(nullptr, &stmt), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_get_stmt("adbk_db", nullptr), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_get_stmt(std::string(256, 'd').c_str(), &stmt), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_codes(), codes(3, {"qry_lib_db_wrapper_get_stmt", QRY_LIB_INVALID_ARGUMENT}));
    EXPECT_EQ(qry_lib_db_get_stmt(std::string(255, 'd').c_str(), &stmt), 0u);
    EXPECT_EQ(std::strlen(stmt.db_name), 255u);
}

// A caller who does not look at the code may set and end the record all the same.
TEST_F(statement, a_refused_get_stmt_leaves_an_initialised_record) {
    const std::string too_long(256, 'd');
    for (const char *name : {static_cast<const char *>(nullptr), too_long.c_str()}) {
        qry_lib_db_stmt_ refused_stmt;
        std::memset(&refused_stmt, 0xA5, sizeof refused_stmt);
        EXPECT_EQ(qry_lib_db_get_stmt(name, &refused_stmt), QRY_LIB_INVALID_ARGUMENT);
        const qry_lib_db_stmt_ initialised{};
        EXPECT_EQ(std::memcmp(&refused_stmt, &initialised, sizeof initialised), 0);
        qry_lib_db_stmt_set_table_name(&refused_stmt, "PSN_TBL");
        EXPECT_STREQ(refused_stmt.table_name, "PSN_TBL");
        qry_lib_db_stmt_term(&refused_stmt);
    }
    EXPECT_EQ(take_codes(), codes(2, {"qry_lib_db_wrapper_get_stmt", QRY_LIB_INVALID_ARGUMENT}));
}

TEST_F(statement, first_table_name_wins) {
    qry_lib_db_stmt_set_table_name(&stmt, "PSN_TBL");
    qry_lib_db_stmt_set_table_name(&stmt, "GRP_TBL");
    EXPECT_STREQ(stmt.table_name, "PSN_TBL");
    EXPECT_TRUE(take_codes().empty());
}

TEST_F(statement, column_setters_are_refused_without_columns) {
    qry_lib_db_stmt_set_col_name(&stmt, 0, "PSN_ID");
    qry_lib_db_stmt_set_elem_as_int(&stmt, 0, 1);
    EXPECT_EQ(stmt.record.cols, nullptr);
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_db_wrapper_stmt_set_col_name", QRY_LIB_INVALID_ARGUMENT},
                                   {"qry_lib_db_wrapper_stmt_set_elem_as_int", QRY_LIB_INVALID_ARGUMENT}}));
}

TEST_F(statement, indexes_outside_the_record_are_refused) {
    qry_lib_db_stmt_set_col_num(&stmt, 2);
    for (const std::int32_t index : {-1, 2, INT32_MIN, INT32_MAX}) {
        qry_lib_db_stmt_set_col_name(&stmt, index, "A");
        qry_lib_db_stmt_set_elem_as_uchar(&stmt, index, 1);
        qry_lib_db_stmt_set_elem_as_str(&stmt, index, "x");
    }
    EXPECT_EQ(take_codes().size(), 12u);
    EXPECT_EQ(stmt.record.cols, nullptr);
}

TEST_F(statement, each_value_setter_writes_its_member_and_tag) {
    qry_lib_db_stmt_set_col_num(&stmt, 6);
    qry_lib_db_stmt_set_elem_as_int(&stmt, 0, -5);
    qry_lib_db_stmt_set_elem_as_uchar(&stmt, 1, 200);
    qry_lib_db_stmt_set_elem_as_ushort(&stmt, 2, 60000);
    qry_lib_db_stmt_set_elem_as_uint(&stmt, 3, 4000000000u);
    qry_lib_db_stmt_set_elem_as_ulong(&stmt, 4, 4294967295u);
    qry_lib_db_stmt_set_elem_as_str(&stmt, 5, "Sato");
    const QRY_LIB_COLUMN *cols = stmt.record.cols;
    for (std::uint32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(cols[i].type, i);
        EXPECT_STREQ(cols[i].col_name, "");
    }
    EXPECT_EQ(cols[0].value.int_value, -5);
    EXPECT_EQ(cols[1].value.str_value[0], static_cast<char>(200));
    EXPECT_EQ(cols[1].value.str_value[1], 0);
    EXPECT_EQ(cols[2].value.ushort_value, 60000);
    EXPECT_EQ(cols[3].value.uint_value, 4000000000u);
    EXPECT_EQ(cols[4].value.ulong_value, 4294967295u);
    EXPECT_STREQ(cols[5].value.str_value, "Sato");
}

TEST_F(statement, name_and_value_do_not_touch_each_other) {
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_elem_as_ushort(&stmt, 0, 7);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "PSN_ID");
    EXPECT_EQ(stmt.record.cols[0].value.ushort_value, 7);
    EXPECT_EQ(stmt.record.cols[0].type, QRY_LIB_COLUMN_TYPE_USHORT);
    qry_lib_db_stmt_set_elem_as_ushort(&stmt, 0, 8);
    EXPECT_STREQ(stmt.record.cols[0].col_name, "PSN_ID");
}

TEST_F(statement, capacities_are_kept_to_the_byte) {
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_col_name(&stmt, 0, std::string(31, 'c').c_str());
    qry_lib_db_stmt_set_elem_as_str(&stmt, 0, std::string(2999, 'v').c_str());
    EXPECT_EQ(std::strlen(stmt.record.cols[0].col_name), 31u);
    EXPECT_EQ(std::strlen(stmt.record.cols[0].value.str_value), 2999u);
    EXPECT_TRUE(take_codes().empty());
    qry_lib_db_stmt_set_col_name(&stmt, 0, std::string(32, 'd').c_str());
    qry_lib_db_stmt_set_elem_as_str(&stmt, 0, std::string(3000, 'w').c_str());
    qry_lib_db_stmt_set_table_name(&stmt, std::string(128, 't').c_str());
    EXPECT_EQ(take_codes().size(), 3u);
    EXPECT_EQ(stmt.record.cols[0].col_name[0], 'c');
    EXPECT_EQ(stmt.record.cols[0].value.str_value[0], 'v');
    EXPECT_EQ(stmt.table_name, nullptr);
}

TEST_F(statement, set_col_num_discards_values) {
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_elem_as_str(&stmt, 0, "old");
    qry_lib_db_stmt_set_col_num(&stmt, 2);
    EXPECT_EQ(stmt.record.cols, nullptr);
    qry_lib_db_stmt_set_col_name(&stmt, 1, "B");
    EXPECT_EQ(stmt.record.cols[0].type, QRY_LIB_COLUMN_TYPE_INT);
    EXPECT_EQ(stmt.record.cols[0].value.int_value, 0);
}

TEST_F(statement, equal_conditions_are_formatted_and_replaced) {
    qry_lib_db_stmt_set_where_equal_int(&stmt, "PSN_ID", 5);
    EXPECT_STREQ(stmt.where_phrase, "PSN_ID = 5");
    const char *block = stmt.where_phrase;
    qry_lib_db_stmt_set_where_equal_int(&stmt, "PSN_ID", 4);
    EXPECT_STREQ(stmt.where_phrase, "PSN_ID = 4");
    EXPECT_EQ(stmt.where_phrase, block);
    qry_lib_db_stmt_set_where_equal_str(&stmt, "PSN_NAME", "Sato");
    EXPECT_STREQ(stmt.where_phrase, "PSN_NAME = 'Sato'");
    qry_lib_db_stmt_set_where_equal_ulong(&stmt, "ID", 4294967295u);
    EXPECT_STREQ(stmt.where_phrase, "ID = -1");
    EXPECT_TRUE(take_codes().empty());
}

// What counts is the length of the text, whatever its block would hold.
TEST_F(statement, an_equal_condition_longer_than_the_earlier_text_takes_a_block) {
    qry_lib_db_stmt_set_where_equal_str(&stmt, "PSN_NAME", "Sato Kenji");
    qry_lib_db_stmt_set_where_equal_int(&stmt, "PSN_ID", 5);
    EXPECT_STREQ(stmt.where_phrase, "PSN_ID = 5");
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 7);
    qry_lib_db_stmt_set_where_equal_int(&stmt, "PSN_ID", 12);
    EXPECT_STREQ(stmt.where_phrase, "PSN_ID = 5");
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_db_wrapper_stmt_set_where_equal_int", QRY_LIB_NO_MEMORY}}));
}

TEST_F(statement, equal_string_refuses_null_and_empty) {
    qry_lib_db_stmt_set_where_equal_int(&stmt, "A", 1);
    qry_lib_db_stmt_set_where_equal_str(&stmt, "A", nullptr);
    qry_lib_db_stmt_set_where_equal_str(&stmt, "A", "");
    EXPECT_STREQ(stmt.where_phrase, "A = 1");
    EXPECT_EQ(take_codes(),
              codes(2, {"qry_lib_db_wrapper_stmt_set_where_equal_str", QRY_LIB_INVALID_ARGUMENT}));
}

TEST_F(statement, equal_condition_must_fit_its_buffer) {
    // Five characters go to " = ''": 249 of value and one of name make 255.
    qry_lib_db_stmt_set_where_equal_str(&stmt, "A", std::string(249, 'x').c_str());
    ASSERT_NE(stmt.where_phrase, nullptr);
    EXPECT_EQ(std::strlen(stmt.where_phrase), 255u);
    qry_lib_db_stmt_set_where_equal_str(&stmt, "B", std::string(250, 'x').c_str());
    EXPECT_EQ(stmt.where_phrase[0], 'A');
    EXPECT_EQ(take_codes(),
              (codes{{"qry_lib_db_wrapper_stmt_set_where_equal_str", QRY_LIB_INVALID_ARGUMENT}}));
}

TEST_F(statement, equal_condition_on_a_name_beyond_its_capacity_is_refused) {
    const std::string longest(31, 'c');
    const std::string longer(32, 'd');
    qry_lib_db_stmt_set_where_equal_int(&stmt, longest.c_str(), 1);
    qry_lib_db_stmt_set_where_equal_int(&stmt, longer.c_str(), 1);
    qry_lib_db_stmt_set_where_equal_ulong(&stmt, longer.c_str(), 1);
    qry_lib_db_stmt_set_where_equal_str(&stmt, longer.c_str(), "1");
    EXPECT_STREQ(stmt.where_phrase, (longest + " = 1").c_str());
    EXPECT_EQ(take_codes(),
              (codes{{"qry_lib_db_wrapper_stmt_set_where_equal_int", QRY_LIB_INVALID_ARGUMENT},
                     {"qry_lib_db_wrapper_stmt_set_where_equal_ulong", QRY_LIB_INVALID_ARGUMENT},
                     {"qry_lib_db_wrapper_stmt_set_where_equal_str", QRY_LIB_INVALID_ARGUMENT}}));
}

TEST_F(statement, replaced_phrases_are_lost) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    qry_lib_db_stmt_set_where_phrase(&stmt, "A = 1");
    char *first_where = stmt.where_phrase;
    qry_lib_db_stmt_set_where_phrase(&stmt, "B = 2");
    EXPECT_STREQ(stmt.where_phrase, "B = 2");
    EXPECT_STREQ(first_where, "A = 1");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "A");
    char *first_orderby = stmt.orderby_phrase;
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "B DESC");
    EXPECT_STREQ(stmt.orderby_phrase, "B DESC");
    qry_lib_db_stmt_term(&stmt);
    EXPECT_EQ(qryhost_pool_blocks(), blocks + 2);
    pfwOSWOrgFreeMemPart(0, first_where);
    pfwOSWOrgFreeMemPart(0, first_orderby);
}

TEST_F(statement, max_rows_is_ignored) {
    const qry_lib_db_stmt_ before = stmt;
    qry_lib_db_stmt_set_max_rows(&stmt, 1);
    EXPECT_EQ(std::memcmp(&before, &stmt, sizeof stmt), 0);
}

TEST_F(statement, term_gives_everything_back_and_unbinds) {
    qry_lib_db_stmt_set_table_name(&stmt, "T");
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "A");
    qry_lib_db_stmt_set_where_phrase(&stmt, "A = 1");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "A");
    qry_lib_db_stmt_term(&stmt);
    const qry_lib_db_stmt_ zero = {};
    EXPECT_EQ(std::memcmp(&stmt, &zero, sizeof stmt), 0);
}

TEST_F(statement, memory_failures_leave_the_statement_as_it_was) {
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qryhost_fail(QRYHOST_ALLOC, 0, UINT32_MAX, 77);
    qry_lib_db_stmt_set_table_name(&stmt, "T");
    qry_lib_db_stmt_set_col_name(&stmt, 0, "A");
    qry_lib_db_stmt_set_where_phrase(&stmt, "A = 1");
    qry_lib_db_stmt_set_where_equal_int(&stmt, "A", 1);
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "A");
    qryhost_fail_clear();
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_db_wrapper_stmt_set_table_name", 1},
                                   {"qry_lib_db_wrapper_stmt_set_alloc", 1},
                                   {"qry_lib_db_wrapper_stmt_set_col_name", 1},
                                   {"qry_lib_db_wrapper_stmt_set_where_phrase", 1},
                                   {"qry_lib_db_wrapper_stmt_set_where_equal_int", 1},
                                   {"qry_lib_db_wrapper_stmt_set_orderby_phrase", 77}}));
    EXPECT_EQ(stmt.table_name, nullptr);
    EXPECT_EQ(stmt.record.cols, nullptr);
    EXPECT_EQ(stmt.where_phrase, nullptr);
    EXPECT_EQ(stmt.orderby_phrase, nullptr);
}

TEST_F(statement, a_longer_condition_without_memory_leaves_the_earlier_one) {
    qry_lib_db_stmt_set_where_equal_int(&stmt, "A", 1);
    const std::uint32_t blocks = qryhost_pool_blocks();
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 77);
    qry_lib_db_stmt_set_where_equal_int(&stmt, "A", 12345);
    qryhost_fail_clear();
    EXPECT_STREQ(stmt.where_phrase, "A = 1");
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_db_wrapper_stmt_set_where_equal_int", QRY_LIB_NO_MEMORY}}));
    qry_lib_db_stmt_set_where_equal_int(&stmt, "A", 12345);
    EXPECT_STREQ(stmt.where_phrase, "A = 12345");
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

TEST_F(statement, null_arguments_are_ignored_and_traced) {
    qry_lib_db_stmt_init(nullptr);
    qry_lib_db_stmt_term(nullptr);
    qry_lib_db_stmt_set_table_name(nullptr, "T");
    qry_lib_db_stmt_set_table_name(&stmt, nullptr);
    qry_lib_db_stmt_set_exec_type(nullptr, QRY_LIB_DB_QUERY_TYPE_SELECT);
    qry_lib_db_stmt_set_col_num(nullptr, 1);
    qry_lib_db_stmt_set_col_name(nullptr, 0, "A");
    qry_lib_db_stmt_set_col_name(&stmt, 0, nullptr);
    qry_lib_db_stmt_set_elem_as_int(nullptr, 0, 1);
    qry_lib_db_stmt_set_elem_as_str(&stmt, 0, nullptr);
    qry_lib_db_stmt_set_where_phrase(nullptr, "A");
    qry_lib_db_stmt_set_where_phrase(&stmt, nullptr);
    qry_lib_db_stmt_set_where_equal_int(&stmt, nullptr, 1);
    qry_lib_db_stmt_set_where_equal_int(nullptr, "A", 1);
    qry_lib_db_stmt_set_where_equal_ulong(&stmt, nullptr, 1);
    qry_lib_db_stmt_set_where_equal_ulong(nullptr, "A", 1);
    qry_lib_db_stmt_set_where_equal_str(&stmt, nullptr, "a");
    qry_lib_db_stmt_set_where_equal_str(nullptr, "A", "a");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, nullptr);
    qry_lib_db_stmt_set_orderby_phrase(nullptr, "A");
    const auto traced = take_codes();
    EXPECT_EQ(traced.size(), 20u);
    for (const auto &[function, code] : traced) {
        EXPECT_EQ(code, QRY_LIB_INVALID_ARGUMENT) << function;
    }
}

} // namespace
