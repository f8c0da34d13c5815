// Whole queries over several tables, from the text to the rows.
#include "platform/element_table.h"
#include "unit/query_support.h"

namespace {

using test::texts;

const std::string exec_query = "qry_lib_db_wrapper_exec_query";

// Departments 1 and 2, and edit counters that count 10 for id 2 and 20 for id 1, in this order.
class linked_query : public test::query_test {
  protected:
    linked_query() : query_test("department_db") {
        for (const char *id : {"1", "2"}) {
            EXPECT_EQ(put("DEPT_TBL", {{"ID", id}, {"NAME", std::string("Dept") + id}}), 0u);
        }
        set_counter(1, 2, 10);
        set_counter(2, 1, 20);
    }

    // An INSERT into a counter table writes each of its records, so that two that differ are written here.
    static void set_counter(std::uint32_t record, std::uint32_t id, std::uint32_t count) {
        constexpr std::uint32_t category = 0x06070903;
        EXPECT_EQ(tbctSTCSetTable(0x2301, category, record, 0x93782000, &id), 0u);
        EXPECT_EQ(tbctSTCSetTable(0x2301, category, record, 0x93782001, &count), 0u);
    }

    void expect_failure(const std::string &sql, std::uint32_t expected, const texts &chain) {
        SCOPED_TRACE(sql);
        const std::uint32_t blocks = qryhost_pool_blocks();
        EXPECT_EQ(rows(sql), texts{});
        EXPECT_EQ(code, expected);
        EXPECT_EQ(take_chain(), chain);
        EXPECT_EQ(rowset.record_num, 0);
        EXPECT_EQ(qryhost_pool_blocks(), blocks);
    }
};

TEST_F(linked_query, rows_come_in_the_last_tables_order_and_numbers_of_different_width_meet) {
    EXPECT_EQ(rows("SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE "
                   "DEPT_TBL.ID=EDIT_CNT_TBL.ID"),
              (texts{"Dept2,10", "Dept1,20"}));
    EXPECT_EQ(rows("SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM EDIT_CNT_TBL, DEPT_TBL WHERE "
                   "DEPT_TBL.ID=EDIT_CNT_TBL.ID"),
              (texts{"Dept1,20", "Dept2,10"}));
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(linked_query, one_row_may_meet_several) {
    set_counter(1, 1, 10);
    EXPECT_EQ(rows("SELECT EDIT_CNT_TBL.CNT, DEPT_TBL.ID FROM DEPT_TBL, EDIT_CNT_TBL WHERE "
                   "DEPT_TBL.ID=EDIT_CNT_TBL.ID"),
              (texts{"10,1", "20,1"}));
}

TEST_F(linked_query, columns_of_like_name_are_told_apart_by_their_table) {
    EXPECT_EQ(rows("SELECT EDIT_CNT_TBL.ID, DEPT_TBL.ID FROM DEPT_TBL, EDIT_CNT_TBL WHERE "
                   "DEPT_TBL.ID=EDIT_CNT_TBL.ID AND DEPT_TBL.ID=2"),
              (texts{"2,2"}));
    const QRY_LIB_COLUMN *columns = rowset.records[0].cols;
    EXPECT_STREQ(columns[0].table_name, "EDIT_CNT_TBL");
    EXPECT_STREQ(columns[1].table_name, "DEPT_TBL");
    EXPECT_STREQ(columns[1].col_name, "ID");
    EXPECT_EQ(columns[0].type, QRY_LIB_COLUMN_TYPE_ULONG);
    EXPECT_EQ(columns[1].type, QRY_LIB_COLUMN_TYPE_USHORT);
    const norvane::qry_lib_db_rowset_lib lib{};
    std::uint16_t index = 99;
    EXPECT_EQ(lib.get_col_index(rowset, "DEPT_TBL", "ID", index), 0u);
    EXPECT_EQ(index, 1);
}

TEST_F(linked_query, each_tables_conditions_choose_its_rows) {
    const std::string join = "SELECT DEPT_TBL.NAME FROM DEPT_TBL, EDIT_CNT_TBL WHERE "
                             "DEPT_TBL.ID=EDIT_CNT_TBL.ID AND ";
    EXPECT_EQ(rows(join + "DEPT_TBL.NAME='Dept2'"), (texts{"Dept2"}));
    EXPECT_EQ(rows(join + "DEPT_TBL.NAME LIKE 'Dept%'"), (texts{"Dept2", "Dept1"}));
    EXPECT_EQ(rows(join + "EDIT_CNT_TBL.CNT>=20"), (texts{"Dept1"}));
    EXPECT_EQ(rows(join + "EDIT_CNT_TBL.CNT>=20 AND DEPT_TBL.ID!=1"), texts{});
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(rows(join + "DEPT_TBL.NAME='None'"), texts{});
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(linked_query, an_order_by_is_accepted_and_ignored) {
    EXPECT_EQ(rows("SELECT DEPT_TBL.NAME FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID "
                   "ORDER BY DEPT_TBL.NAME ASC"),
              (texts{"Dept2", "Dept1"}));
}

TEST_F(linked_query, a_count_counts_the_joined_rows) {
    const std::string count = "SELECT COUNT(*) FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID";
    EXPECT_EQ(rows(count), (texts{"2"}));
    EXPECT_EQ(rowset.records[0].cols[0].type, QRY_LIB_COLUMN_TYPE_UINT);
    EXPECT_STREQ(rowset.records[0].cols[0].col_name, "");
    EXPECT_EQ(rows(count + " AND DEPT_TBL.ID=9"), (texts{"0"}));
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(linked_query, a_table_without_records_gives_no_rows) {
    use("adbk_db");
    ASSERT_EQ(put("PSN_TBL", {{"PSN_ID", "1"}}), 0u);
    for (const char *from : {"PSN_TBL, EMAIL_TBL", "EMAIL_TBL, PSN_TBL", "EMAIL_TBL, FTP_TBL"}) {
        SCOPED_TRACE(from);
        const std::string table = std::string(from).substr(0, std::string(from).find(','));
        const std::string other = std::string(from).substr(table.size() + 2);
        EXPECT_EQ(rows("SELECT " + table + ".PSN_ID FROM " + from + " WHERE " + table + ".PSN_ID=" + other +
                       ".PSN_ID"),
                  texts{});
        EXPECT_EQ(code, 0u);
    }
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(linked_query, six_tables_are_joined) {
    use("log_db");
    const texts tables = {"P_JOB_LOG_TBL",  "ST_JOB_LOG_TBL",  "S_JOB_LOG_TBL",
                          "P_SSFC_LOG_TBL", "ST_SSFC_LOG_TBL", "S_SSFC_LOG_TBL"};
    std::string list;
    std::string where;
    for (const std::string &table : tables) {
        ASSERT_EQ(put(table.c_str(), {{"JOB_ID", "70000"}}), 0u);
        list += (list.empty() ? "" : ",") + table;
        if (table != tables.front()) {
            where += (where.empty() ? "" : " AND ") + table + ".JOB_ID=P_JOB_LOG_TBL.JOB_ID";
        }
    }
    EXPECT_EQ(rows("SELECT S_SSFC_LOG_TBL.JOB_ID,P_JOB_LOG_TBL.JOB_ID FROM " + list + " WHERE " + where),
              (texts{"70000,70000"}));
    EXPECT_EQ(rows("SELECT COUNT(*) FROM " + list + " WHERE " + where), (texts{"1"}));
    ASSERT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM S_JOB_LOG_TBL"), 0u);
    EXPECT_EQ(rows("SELECT COUNT(*) FROM " + list + " WHERE " + where), (texts{"0"}));
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(linked_query, strings_join_by_their_text) {
    use("log_db");
    ASSERT_EQ(put("P_JOB_LOG_TBL", {{"JOB_ID", "1"}, {"JOB_NAME", "Copy"}}), 0u);
    ASSERT_EQ(put("S_JOB_LOG_TBL", {{"JOB_ID", "2"}, {"JOB_NAME", "Copy"}}), 0u);
    const std::string sql = "SELECT S_JOB_LOG_TBL.JOB_ID FROM P_JOB_LOG_TBL, S_JOB_LOG_TBL WHERE "
                            "P_JOB_LOG_TBL.JOB_NAME=S_JOB_LOG_TBL.JOB_NAME";
    EXPECT_EQ(rows(sql), (texts{"2"}));
    ASSERT_EQ(put("S_JOB_LOG_TBL", {{"JOB_NAME", "copy"}}, QRY_LIB_DB_QUERY_TYPE_UPDATE), 0u);
    EXPECT_EQ(rows(sql), texts{});
    EXPECT_EQ(rows("SELECT S_JOB_LOG_TBL.JOB_ID FROM P_JOB_LOG_TBL, S_JOB_LOG_TBL WHERE "
                   "P_JOB_LOG_TBL.JOB_NAME=S_JOB_LOG_TBL.JOB_ID"),
              texts{});
    EXPECT_EQ(code, 0u);
}

TEST_F(linked_query, refusals_of_the_analysis_end_with_the_call) {
    expect_failure("SELECT NAME FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID",
                   QRY_LIB_NOT_ACCEPTED, {"analyze_sql_select_link:368 0xDB00", exec_query + " 0xDB00"});
    expect_failure("SELECT * FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID",
                   QRY_LIB_NOT_ACCEPTED, {"analyze_sql_select_link:368 0xDB00", exec_query + " 0xDB00"});
    expect_failure(
        "SELECT COUNT(*) FROM DEPT_TBL, EDIT_CNT_TBL", QRY_LIB_NOT_ACCEPTED,
        {"set_link_filter_cols:1745 0xDB00", "analyze_sql_select_link:376 0xDB00", exec_query + " 0xDB00"});
    expect_failure("SELECT DEPT_TBL.ID FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=1.5",
                   QRY_LIB_NOT_ACCEPTED,
                   {"set_link_filter_val:1963 0xDB00", "set_link_filter_cols:1831 0xDB00",
                    "analyze_sql_select_link:376 0xDB00", exec_query + " 0xDB00"});
}

TEST_F(linked_query, failures_of_one_tables_query_pass_through) {
    const texts no_column = {"exec_select_proc:408 0xDB05", "exec_select:316 0xDB05", exec_query + " 0xDB05"};
    expect_failure("SELECT DEPT_TBL.NO FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID",
                   QRY_LIB_INVALID_ARGUMENT, no_column);
    expect_failure("SELECT DEPT_TBL.ID FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.NO",
                   QRY_LIB_INVALID_ARGUMENT, no_column);
    expect_failure("SELECT COUNT(*) FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.NO",
                   QRY_LIB_INVALID_ARGUMENT, no_column);
    expect_failure("SELECT DEPT_TBL.ID FROM DEPT_TBL, NO_TBL WHERE DEPT_TBL.ID=NO_TBL.ID",
                   QRY_LIB_INVALID_ARGUMENT,
                   {"create_primary_filter_key:849 0xDB05", "create_filter_key:768 0xDB05",
                    "exec_internal:231 0xDB05", exec_query + " 0xDB05"});
    use("no_db");
    expect_failure("SELECT DEPT_TBL.ID FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID",
                   QRY_LIB_INVALID_ARGUMENT, {"exec_internal:222 0xDB05", exec_query + " 0xDB05"});
}

TEST_F(linked_query, a_table_joined_to_itself_has_no_key) {
    expect_failure("SELECT DEPT_TBL.ID FROM DEPT_TBL, DEPT_TBL WHERE DEPT_TBL.ID=DEPT_TBL.ID",
                   QRY_LIB_INVALID_ARGUMENT, {"link_rowset:233 0xDB05", exec_query + " 0xDB05"});
}

TEST_F(linked_query, a_table_that_nothing_links_is_refused) {
    use("log_db");
    for (const char *table : {"P_JOB_LOG_TBL", "S_JOB_LOG_TBL", "ST_JOB_LOG_TBL"}) {
        ASSERT_EQ(put(table, {{"JOB_ID", "1"}}), 0u);
    }
    expect_failure("SELECT P_JOB_LOG_TBL.JOB_ID FROM P_JOB_LOG_TBL, S_JOB_LOG_TBL, ST_JOB_LOG_TBL WHERE "
                   "P_JOB_LOG_TBL.JOB_ID=S_JOB_LOG_TBL.JOB_ID AND P_JOB_LOG_TBL.RET=S_JOB_LOG_TBL.RET",
                   QRY_LIB_INVALID_ARGUMENT, {"link_rowset:233 0xDB05", exec_query + " 0xDB05"});
    expect_failure("SELECT P_JOB_LOG_TBL.JOB_ID FROM P_JOB_LOG_TBL, S_JOB_LOG_TBL, ST_JOB_LOG_TBL WHERE "
                   "P_JOB_LOG_TBL.JOB_ID=ST_JOB_LOG_TBL.JOB_ID AND ST_JOB_LOG_TBL.RET=S_JOB_LOG_TBL.RET",
                   QRY_LIB_INVALID_ARGUMENT, {"link_rowset:233 0xDB05", exec_query + " 0xDB05"});
}

TEST_F(linked_query, every_platform_failure_gives_the_blocks_back) {
    const std::string sql = "SELECT DEPT_TBL.NAME FROM DEPT_TBL, EDIT_CNT_TBL WHERE "
                            "DEPT_TBL.ID=EDIT_CNT_TBL.ID AND DEPT_TBL.ID=1";
    const std::uint32_t blocks = qryhost_pool_blocks();
    qryhost_fail_clear();
    ASSERT_EQ(rows(sql), (texts{"Dept1"}));
    const std::uint32_t read_num = qryhost_call_count(QRYHOST_GET_TABLE);
    ASSERT_GT(read_num, 2u);
    for (std::uint32_t let_through = 0; let_through < read_num; ++let_through) {
        for (const std::uint32_t times : {1u, UINT32_MAX}) {
            SCOPED_TRACE(let_through);
            qryhost_fail(QRYHOST_GET_TABLE, let_through, times, 0x1234);
            EXPECT_EQ(rows(sql), texts{});
            qryhost_fail_clear();
            EXPECT_EQ(code, 0x1234u);
            EXPECT_EQ(take_chain().back(), exec_query + " 0x1234");
            EXPECT_EQ(qryhost_pool_blocks(), blocks);
        }
    }
}

TEST_F(linked_query, each_memory_failure_ends_it_at_its_place) {
    const std::string sql =
        "SELECT DEPT_TBL.NAME FROM DEPT_TBL,EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID";
    const std::string wrapper = exec_query + " 0x";
    const texts no_keys = {"create_search_table_id:1430 0x1", "exec_internal:240 0x1", wrapper + "1"};
    const texts no_records = {
        "qry_lib_tb_alloc_mem:690 0x5243", "qry_lib_tb_create_search_table_id:429 0x5243",
        "create_search_table_id:1448 0xDB05", "exec_internal:240 0x5243", wrapper + "5243"};
    const texts no_part = {"init_rowset 0x1", "exec_select_proc:380 0x2001", "exec_select:316 0x2001",
                           wrapper + "2001"};
    const texts no_result = {"init_rowset 0x1", "covert_rowset:565 0xDB05", "link_rowset:312 0xDB05",
                             wrapper + "DB05"};
    // Each table has two rows: a rowset is a block for the rows and one for each.
    const std::vector<texts> executed = {no_keys,   no_records, no_part,  no_part, no_part,
                                         no_keys,   no_records, no_part,  no_part, no_part,
                                         no_result, no_result,  no_result};
    std::vector<texts> chains;
    const std::uint32_t blocks = qryhost_pool_blocks();
    test::with_each_block_refused(
        [&] {
            qry_lib_db_rowset_term(&rowset);
            code = qry_lib_db_exec_query(&stmt, sql.c_str(), &rowset);
        },
        [&](std::uint32_t let_through) {
            EXPECT_NE(code, 0u);
            EXPECT_EQ(rowset.record_num, 0);
            EXPECT_EQ(qryhost_pool_blocks(), blocks);
            const texts chain = take_chain();
            if (chains.size() <= let_through) {
                chains.push_back(chain);
            }
            EXPECT_EQ(chains[let_through], chain) << "once and for good differ";
        });
    ASSERT_GT(chains.size(), executed.size());
    const auto first_executed = chains.end() - static_cast<std::ptrdiff_t>(executed.size());
    EXPECT_EQ(std::vector<texts>(first_executed, chains.end()), executed);
    for (auto chain = chains.begin(); chain != first_executed; ++chain) {
        EXPECT_TRUE(chain->back() == wrapper + "DB00" || chain->back() == wrapper + "1") << chain->back();
    }
}

TEST_F(linked_query, far_more_tables_and_conditions_than_exist_are_answered) {
    std::string list = "DEPT_TBL";
    std::string where;
    for (int i = 0; i < 300; ++i) {
        list += ",NO_TBL";
        where += (i == 0 ? "" : " AND ") + std::string("NO_TBL.K=DEPT_TBL.ID");
    }
    EXPECT_EQ(rows("SELECT DEPT_TBL.ID FROM " + list + " WHERE " + where), texts{});
    EXPECT_EQ(code, QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain().back(), exec_query + " 0xDB05");
}

} // namespace
