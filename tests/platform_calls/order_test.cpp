// What is given back before a trace and what behind it. Callers cannot tell; a platform's log can.
#include <algorithm>
#include <cstring>

#include <qrylib/db_handle.h>
#include <qrylib/element_table.h>

#include "exec/qry_lib_db_executer.h"
#include "link/qry_lib_db_rowset_link_lib.h"
#include "platform/os.h"
#include "platform_calls/recorder.h"
#include "unit/exec/exec_test.h"
#include "unit/query_support.h"

namespace {

using test::number_column;
using test::texts;

constexpr std::uint32_t injected = 77;
constexpr std::uint32_t departments = 0x05080404;
constexpr std::uint32_t department_id = 0x44871000;

class call_order : public test::query_test {
  protected:
    call_order() : query_test("department_db") {
        EXPECT_EQ(put("DEPT_TBL", {{"ID", "1"}, {"NAME", "Sales"}}), 0u);
        EXPECT_EQ(put("DEPT_TBL", {{"ID", "2"}, {"NAME", "Legal"}}), 0u);
        EXPECT_EQ(put("EDIT_CNT_TBL", {{"ID", "1"}, {"CNT", "5"}}), 0u);
    }

    // The calls of a query that fails.
    texts failing(const char *sql) {
        test::start_recording();
        EXPECT_NE(qry_lib_db_exec_query(&stmt, sql, &rowset), 0u);
        return test::stop_recording();
    }
};

bool is_trace(const std::string &call) {
    return call.rfind("trace ", 0) == 0;
}

// The calls from the first trace on.
texts from_first_trace(const texts &calls) {
    return {std::find_if(calls.begin(), calls.end(), is_trace), calls.end()};
}

// The calls behind the last one of that name.
texts behind(const texts &calls, const std::string &call) {
    const auto at = std::find(calls.rbegin(), calls.rend(), call);
    EXPECT_NE(at, calls.rend()) << call;
    return {at.base(), calls.end()};
}

// Every block that was taken was given back.
bool holds_none(const texts &calls) {
    const auto count = [&](const char *verb) {
        return std::count_if(calls.begin(), calls.end(),
                             [=](const std::string &call) { return call.rfind(verb, 0) == 0; });
    };
    return count("take ") == count("give ");
}

TEST_F(call_order, a_part_that_fails_empties_the_link_model_before_the_trace) {
    const texts calls = failing("SELECT DEPT_TBL.ID, EDIT_CNT_TBL.NONE FROM DEPT_TBL, EDIT_CNT_TBL "
                                "WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID");
    EXPECT_EQ(calls.back(), "trace qry_lib_db_wrapper_exec_query 0xDB05");
    const texts last = behind(calls, "trace exec_select:316 0xDB05");
    EXPECT_GT(last.size(), 1u); // the first table's rows
    EXPECT_TRUE(holds_none(calls));
}

TEST_F(call_order, a_join_that_fails_empties_the_link_model_before_the_trace) {
    constexpr char join[] = "SELECT DEPT_TBL.ID, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL "
                            "WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID";
    qryhost_fail_clear();
    ASSERT_EQ(rows(join), (texts{"1,5", "1,5"})); // an INSERT overwrites every counter
    constexpr std::uint32_t result_blocks = 3;    // of the joined rows, the last ones taken
    const std::uint32_t before_result = qryhost_call_count(QRYHOST_ALLOC) - result_blocks;
    qry_lib_db_rowset_term(&rowset);
    qryhost_fail(QRYHOST_ALLOC, before_result, 1, injected);
    const texts calls = failing(join);
    qryhost_fail_clear();
    EXPECT_EQ(calls.back(), "trace qry_lib_db_wrapper_exec_query 0xDB05");
    EXPECT_GT(behind(calls, "trace link_rowset:312 0xDB05").size(), 4u); // the rows of both tables
    EXPECT_TRUE(holds_none(calls));
}

TEST_F(call_order, a_count_without_a_result_is_traced_before_its_rows_go) {
    qryhost_fail_clear();
    ASSERT_EQ(rows("SELECT COUNT(*) FROM DEPT_TBL"), (texts{"2"}));
    const std::uint32_t before_result = qryhost_call_count(QRYHOST_ALLOC) - 2;
    qry_lib_db_rowset_term(&rowset);
    qryhost_fail(QRYHOST_ALLOC, before_result, 1, injected);
    const texts calls = failing("SELECT COUNT(*) FROM DEPT_TBL");
    qryhost_fail_clear();
    const texts last = behind(calls, "trace qry_lib_db_wrapper_exec_query 0x2001");
    EXPECT_EQ(last.size(), 3u); // two rows and their array
    EXPECT_TRUE(std::none_of(last.begin(), last.end(), is_trace));
}

TEST_F(call_order, a_rowset_without_memory_gives_back_before_its_trace) {
    const norvane::qry_lib_db_rowset_lib lib;
    for (const std::uint32_t let_through : {0u, 1u, 2u}) {
        qryhost_fail_clear();
        qryhost_fail(QRYHOST_ALLOC, let_through, 1, injected);
        test::start_recording();
        EXPECT_EQ(lib.init_rowset(1, 3, rowset), 1u);
        const texts calls = test::stop_recording();
        const texts expected[] = {
            {"trace init_rowset 0x1"},
            {"take 1", "give 1", "trace init_rowset 0x1"},
            {"take 1", "take 2", "give 2", "give 1", "trace init_rowset 0x1"},
        };
        EXPECT_EQ(calls, expected[let_through]);
    }
    qryhost_fail_clear();
}

// Both refusals of an id: the table is full, and there is no gap.
TEST_F(call_order, an_id_that_is_refused_gives_back_before_its_trace) {
    for (const std::uint32_t max_count : {2u, 100u}) {
        qry_lib_db_unused_id_param_ param{};
        param.db_name = "department_db";
        param.table_name = "DEPT_TBL";
        param.col_name = "ID";
        param.min_id = 1;
        param.max_id = 2;
        param.max_count = max_count;
        param.id_kind = 2;
        std::uint32_t id = 0;
        test::start_recording();
        EXPECT_EQ(qry_lib_db_get_unused_id(&param, &id), QRY_LIB_NO_FREE_ENTRY);
        const texts calls = test::stop_recording();
        EXPECT_EQ(calls.back(), "trace qry_lib_db_wrapper_get_unused_id 0xDB04");
        EXPECT_TRUE(holds_none(calls));
    }
}

TEST_F(call_order, the_last_node_goes_before_the_service_is_deregistered) {
    test::start_recording();
    ASSERT_EQ(dsql_db_handle_add(), 0);
    ASSERT_EQ(dsql_db_handle_delete(), 0);
    EXPECT_EQ(test::stop_recording(), (texts{"take 1", "take 2", "give 2", "deregister", "give 1"}));
}

TEST_F(call_order, a_search_out_of_reach_gives_back_and_deletes_before_its_trace) {
    void *earlier = nullptr;
    ASSERT_EQ(pfwOSWOrgAllocMemPart(0, &earlier, 16), 0u);
    auto id = reinterpret_cast<qry_lib_tb_search_id>(earlier);
    qry_lib_tb_list_filter_key_ keys[2] = {};
    for (qry_lib_tb_list_filter_key_ &key : keys) {
        key.category_id = departments;
        key.element_id = department_id;
        key.elem_type = 2;
        key.cmp_size = 2;
        key.join = QRY_LIB_JOIN_TYPE_AND;
    }
    std::uint16_t found = 0;
    const test::lost_blocks_allowed lost;
    qryhost_fail(QRYHOST_LIST_SET_POS, 0, 1, injected);
    test::start_recording();
    EXPECT_EQ(qry_lib_tb_create_search_table_id(departments, 2, keys, &id, &found), QRY_LIB_TABLE_ACCESS);
    const texts calls = test::stop_recording();
    qryhost_fail_clear();
    EXPECT_EQ(calls,
              (texts{"take 1", "trace qry_lib_tb_create_search_table_id:519 0x5243", "give", "delete list",
                     "delete list", "trace qry_lib_tb_create_search_table_id:452 0x5243"}));
    EXPECT_EQ(id, 0u);
    test::settle_lost_block();
}

TEST_F(call_order, a_failed_search_gives_its_keys_back_before_the_executers_trace) {
    const test::lost_blocks_allowed lost;
    qryhost_fail(QRYHOST_LIST_SET_POS, 0, 1, injected);
    const texts calls = failing("SELECT ID FROM DEPT_TBL");
    qryhost_fail_clear();
    const texts last = behind(calls, "trace qry_lib_tb_create_search_table_id:452 0x5243");
    ASSERT_GE(last.size(), 2u);
    EXPECT_EQ(last[0].rfind("give ", 0), 0u);
    EXPECT_EQ(last[1], "trace create_search_table_id:1448 0xDB05");
    test::settle_lost_block();
}

TEST_F(call_order, a_projection_that_fails_is_traced_before_its_rows_go) {
    norvane::QRY_LIB_ROWSET_LINK joined;
    joined.records.push_back({{number_column("A", "X", QRY_LIB_COLUMN_TYPE_UINT, 1)}});
    norvane::qry_lib_analyze_link_info link_info;
    link_info.add_cols("A", "NONE");
    test::start_recording();
    EXPECT_EQ(norvane::qry_lib_db_rowset_link_lib().covert_rowset(joined, link_info, rowset), 0xDB05);
    EXPECT_EQ(from_first_trace(test::stop_recording()),
              (texts{"trace covert_rowset:599 0xDB05", "give 2", "give 1"}));
}

TEST_F(call_order, a_select_that_fails_is_traced_before_its_rows_go) {
    const texts calls = failing("SELECT NONE FROM DEPT_TBL");
    EXPECT_GT(behind(calls, "trace exec_select_proc:408 0xDB05").size(), 3u);
}

} // namespace
