// The smallest unused id: gaps, limits and every refusal.
#include <qrylib/db_handle.h>
#include <qrylib/query.h>
#include <qrylib/statement.h>
#include <qrylib/types.h>

#include <string>

#include "platform/element_table.h"
#include "unit/support.h"

namespace {

using codes = std::vector<std::pair<std::string, std::uint32_t>>;

constexpr std::uint32_t requester = 0x2301;
constexpr std::uint32_t person_category = 0x05090400;
constexpr std::uint32_t person_id = 0x40971002;
constexpr std::uint32_t edit_category = 0x06070903;
constexpr std::uint32_t edit_id = 0x93782000;
constexpr char wrapper_name[] = "qry_lib_db_wrapper_get_unused_id";

class unused_id : public test::platform_test {
  protected:
    ~unused_id() override {
        qryhost_fail_clear();
        tbctResetTable(person_category);
        tbctResetTable(edit_category);
    }

    // Gives the person records, in order, these ids.
    static void store(const std::vector<std::uint16_t> &ids) {
        ASSERT_EQ(tbctResetTable(person_category), 0u);
        std::uint32_t record = 0;
        for (const std::uint16_t id : ids) {
            ASSERT_EQ(tbctSTCSetTable(requester, person_category, ++record, person_id, &id), 0u);
        }
    }

    std::uint32_t ask() {
        id = untouched;
        return qry_lib_db_get_unused_id(&param, &id);
    }

    static constexpr std::uint32_t untouched = 0xABCDEF01;

    qry_lib_db_unused_id_param_ param = {"adbk_db", "PSN_TBL", "PSN_ID", 1, 10, 100, 2};
    std::uint32_t id = untouched;
};

TEST_F(unused_id, the_smallest_gap_is_found) {
    constexpr struct {
        const char *name;
        std::uint16_t ids[5];
        std::uint32_t expected;
    } rows[] = {{"none", {}, 1},
                {"1 2 3", {1, 2, 3}, 4},
                {"1 2 3 5", {1, 2, 3, 5}, 4},
                {"unordered", {5, 3, 1, 2}, 4},
                {"first free", {2, 3}, 1},
                {"beyond the range", {11, 12}, 1},
                {"last", {1, 2, 10, 4, 3}, 5}};
    for (const auto &row : rows) {
        std::vector<std::uint16_t> ids;
        for (const std::uint16_t stored : row.ids) {
            if (stored != 0) {
                ids.push_back(stored);
            }
        }
        store(ids);
        EXPECT_EQ(ask(), 0u) << row.name;
        EXPECT_EQ(id, row.expected) << row.name;
    }
    EXPECT_TRUE(take_codes().empty());
}

TEST_F(unused_id, the_sample_device_has_its_smallest_free_ids) {
    ASSERT_EQ(qryhost_load(QRYLIB_EXAMPLES "/office.json"), 0) << qryhost_error();
    param = {"adbk_db", "PSN_TBL", "PSN_ID", 1, 1000, 1000, 2};
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 11u); // ten people, 1 to 10
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt("adbk_db", &stmt);
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_ID = 8"), 0u);
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 8u);
    param = {"department_db", "DEPT_TBL", "ID", 1, 1000, 1000, 2};
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 102u); // 101 departments, 1 to 101
    param.max_count = 101;
    EXPECT_EQ(ask(), QRY_LIB_NO_FREE_ENTRY);
    EXPECT_EQ(qryhost_reset(), 0);
}

TEST_F(unused_id, a_range_starts_anywhere) {
    store({1, 2, 100, 101, 103});
    param.min_id = 100;
    param.max_id = 200;
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 102u);
}

TEST_F(unused_id, the_last_id_of_the_range_is_given) {
    store({1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 10u);
}

TEST_F(unused_id, a_full_range_has_no_free_id) {
    store({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    param.max_count = 11;
    EXPECT_EQ(ask(), QRY_LIB_NO_FREE_ENTRY);
    EXPECT_EQ(id, untouched);
    EXPECT_EQ(take_codes(), (codes{{wrapper_name, QRY_LIB_NO_FREE_ENTRY}}));
}

TEST_F(unused_id, a_table_at_its_capacity_gives_no_id) {
    store({1, 3});
    param.max_count = 2;
    EXPECT_EQ(ask(), QRY_LIB_NO_FREE_ENTRY);
    param.max_count = 1;
    EXPECT_EQ(ask(), QRY_LIB_NO_FREE_ENTRY);
    EXPECT_EQ(id, untouched);
    EXPECT_EQ(take_codes(), codes(2, {wrapper_name, QRY_LIB_NO_FREE_ENTRY}));
    param.max_count = 3;
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 2u);
}

TEST_F(unused_id, a_range_that_ends_before_it_begins_has_its_first_id) {
    store({1, 2, 3, 4, 5, 6});
    param.min_id = 5;
    param.max_id = 2;
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 5u);
}

TEST_F(unused_id, without_a_row_the_limits_are_not_looked_at) {
    param.max_count = 0;
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 1u);
    param.min_id = 20;
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, 20u);
}

TEST_F(unused_id, ids_of_32_bits) {
    const std::uint32_t largest = INT32_MAX;
    ASSERT_EQ(tbctSTCSetTable(requester, edit_category, 1, edit_id, &largest), 0u);
    const std::uint32_t before = largest - 1;
    param = {"department_db", "EDIT_CNT_TBL", "ID", before, largest, 10, 1};
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(id, before);
    ASSERT_EQ(tbctSTCSetTable(requester, edit_category, 2, edit_id, &before), 0u);
    EXPECT_EQ(ask(), QRY_LIB_NO_FREE_ENTRY);
}

TEST_F(unused_id, the_kind_limits_the_largest_id) {
    constexpr struct {
        std::uint8_t kind;
        std::uint32_t max_id;
        std::uint32_t code;
    } rows[] = {{1, 2147483647u, 0},
                {1, 2147483648u, QRY_LIB_INVALID_ARGUMENT},
                {1, UINT32_MAX, QRY_LIB_INVALID_ARGUMENT},
                {2, 32767, 0},
                {2, 32768, QRY_LIB_INVALID_ARGUMENT},
                {2, UINT32_MAX, QRY_LIB_INVALID_ARGUMENT},
                {0, 10, QRY_LIB_INVALID_ARGUMENT},
                {3, 10, QRY_LIB_INVALID_ARGUMENT},
                {255, 10, QRY_LIB_INVALID_ARGUMENT}};
    for (const auto &row : rows) {
        param.id_kind = row.kind;
        param.max_id = row.max_id;
        EXPECT_EQ(ask(), row.code) << int{row.kind} << " " << row.max_id;
        EXPECT_EQ(take_codes(), row.code == 0 ? codes{} : (codes{{wrapper_name, row.code}}));
    }
}

TEST_F(unused_id, null_arguments_are_refused) {
    EXPECT_EQ(qry_lib_db_get_unused_id(nullptr, &id), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_get_unused_id(&param, nullptr), QRY_LIB_INVALID_ARGUMENT);
    for (const char *qry_lib_db_unused_id_param_::*name :
         {&qry_lib_db_unused_id_param_::db_name, &qry_lib_db_unused_id_param_::table_name,
          &qry_lib_db_unused_id_param_::col_name}) {
        const char *earlier = param.*name;
        param.*name = nullptr;
        EXPECT_EQ(ask(), QRY_LIB_INVALID_ARGUMENT);
        param.*name = earlier;
    }
    EXPECT_EQ(take_codes(), codes(5, {wrapper_name, QRY_LIB_INVALID_ARGUMENT}));
}

TEST_F(unused_id, an_over_long_database_name_is_refused) {
    const std::string name(256, 'd');
    param.db_name = name.c_str();
    EXPECT_EQ(ask(), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_codes(), (codes{{"qry_lib_db_wrapper_get_stmt", QRY_LIB_INVALID_ARGUMENT},
                                   {wrapper_name, QRY_LIB_INVALID_ARGUMENT}}));
}

TEST_F(unused_id, a_query_beyond_255_characters_is_refused) {
    const std::size_t around =
        std::string("SELECT PSN_ID FROM  WHERE PSN_ID >= 1 AND PSN_ID <= 10 ORDER BY PSN_ID ASC").size();
    const std::string longest(255 - around, 'T');
    param.table_name = longest.c_str();
    EXPECT_NE(ask(), QRY_LIB_FAILURE);
    const std::string longer = longest + "T";
    param.table_name = longer.c_str();
    take_codes();
    EXPECT_EQ(ask(), QRY_LIB_FAILURE);
    EXPECT_EQ(take_codes(), (codes{{wrapper_name, QRY_LIB_FAILURE}}));
}

TEST_F(unused_id, a_failing_query_gives_its_code) {
    param.col_name = "NO_SUCH";
    EXPECT_EQ(ask(), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_codes().back(), (codes::value_type{wrapper_name, QRY_LIB_INVALID_ARGUMENT}));
    param.col_name = "PSN_ID";
    param.db_name = "no_db";
    EXPECT_EQ(ask(), QRY_LIB_INVALID_ARGUMENT);
    param.db_name = "adbk_db";
    param.col_name = "PSN_ID FROM";
    EXPECT_EQ(ask(), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_codes().back(), (codes::value_type{wrapper_name, QRY_LIB_NOT_ACCEPTED}));
    EXPECT_EQ(id, untouched);
}

TEST_F(unused_id, every_failing_allocation_gives_its_block_back) {
    store({1, 2, 4});
    ASSERT_EQ(ask(), 0u);
    ASSERT_EQ(id, 3u);
    const std::uint32_t blocks = qryhost_pool_blocks();
    qryhost_fail_clear();
    ASSERT_EQ(ask(), 0u);
    const std::uint32_t allocations = qryhost_call_count(QRYHOST_ALLOC);
    ASSERT_GT(allocations, 0u);
    for (std::uint32_t skip = 0; skip < allocations; ++skip) {
        qryhost_fail(QRYHOST_ALLOC, skip, 1, 0x77);
        if (ask() != 0) {
            EXPECT_EQ(take_codes().back().first, wrapper_name);
            EXPECT_EQ(id, untouched);
        }
        EXPECT_EQ(qryhost_pool_blocks(), blocks) << skip;
    }
}

} // namespace
