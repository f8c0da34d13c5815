// The whole route of a statement: catalog, filter keys, search, operation, cursor.
#include "unit/exec/exec_test.h"

namespace {

using test::any_line;
using test::departments;
using test::edit_counters;
using test::failure;
using test::injected;
using test::invalid_argument;
using test::put_department;
using test::query_of;
using test::traces;

constexpr auto insert_type = QRY_LIB_DB_QUERY_TYPE_INSERT;
constexpr auto update_type = QRY_LIB_DB_QUERY_TYPE_UPDATE;
constexpr auto delete_type = QRY_LIB_DB_QUERY_TYPE_DELETE;
constexpr auto select_type = QRY_LIB_DB_QUERY_TYPE_SELECT;
constexpr auto count_type = QRY_LIB_DB_QUERY_TYPE_COUNT;
constexpr auto create_type = QRY_LIB_DB_QUERY_TYPE_CREATE;

using texts = std::vector<std::string>;

class dispatch : public test::exec_test {
  protected:
    static query_of on_departments(QRY_LIB_DB_QUERY_TYPE type) {
        return query_of(type, "department_db", "DEPT_TBL");
    }

    static void fill() {
        ASSERT_EQ(qryhost_reset(), 0);
        put_department(0, 30, "Sato");
        put_department(2, 10, "Abe");
    }

    int select(const norvane::qry_lib_analyze_info &query) {
        qry_lib_db_rowset_term(&rowset);
        return executer.exec(query, rowset);
    }

    static void expect_untouched() {
        for (int call = 0; call < QRYHOST_CALL_NUM; ++call) {
            EXPECT_EQ(qryhost_call_count(static_cast<qryhost_call>(call)), 0u) << "call " << call;
        }
    }
};

TEST_F(dispatch, each_statement_does_its_work) {
    EXPECT_EQ(executer.exec(on_departments(insert_type).value("ID", "2").value("NAME", "Sato")), 0);
    EXPECT_EQ(executer.exec(on_departments(insert_type).value("ID", "1").value("NAME", "Abe")), 0);
    EXPECT_EQ(executer.exec(on_departments(insert_type).value("ID", "2").value("NAME", "Ito")), 0);
    EXPECT_EQ(select(on_departments(select_type).column("ID").column("NAME")), 0);
    EXPECT_EQ(rows(), (texts{"2,Ito", "1,Abe"}));
    EXPECT_EQ(
        executer.exec(
            on_departments(update_type).value("NAME", "Ono").where("ID", QRY_LIB_OPERATION_TYPE_LESS, "2")),
        0);
    EXPECT_EQ(select(on_departments(select_type)
                         .column("NAME")
                         .where("NAME", QRY_LIB_OPERATION_TYPE_LIKE, "O")
                         .order("ID", QRY_LIB_ODER_TYPE_ASC)),
              0);
    EXPECT_EQ(rows(), (texts{"Ono"}));
    EXPECT_EQ(select(on_departments(count_type)), 0);
    EXPECT_EQ(rows(), (texts{"2", "1"}));
    EXPECT_EQ(executer.exec(on_departments(delete_type).where("ID", QRY_LIB_OPERATION_TYPE_EQUAL, "2")), 0);
    EXPECT_EQ(select(on_departments(select_type).column("ID")), 0);
    EXPECT_EQ(rows(), (texts{"1"}));
    EXPECT_EQ(executer.exec(on_departments(delete_type)), 0);
    EXPECT_EQ(select(on_departments(count_type)), 0);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_TRUE(lines.empty());
}

TEST_F(dispatch, only_records_in_use_are_found) {
    test::put(departments, test::in_default, test::department_id, std::uint16_t{5});
    for (std::uint32_t r = 0; r < 101; ++r) {
        put_department(r, 5);
    }
    put_department(50, 0, "zero");
    EXPECT_EQ(select(on_departments(select_type).column("NAME")), 0);
    EXPECT_EQ(rows(), (texts{"zero"}));
}

TEST_F(dispatch, every_edit_counter_is_visited) {
    EXPECT_EQ(select(query_of(count_type, "department_db", "EDIT_CNT_TBL")), 0);
    EXPECT_EQ(rowset.record_num, 2);
    EXPECT_EQ(executer.exec(query_of(insert_type, "department_db", "EDIT_CNT_TBL").number("CNT", 7)), 0);
    EXPECT_EQ(select(query_of(select_type, "department_db", "EDIT_CNT_TBL").column("CNT")), 0);
    EXPECT_EQ(rows(), (texts{"7", "7"})); // without keys an INSERT overwrites them all
}

TEST_F(dispatch, create_touches_nothing) {
    qryhost_fail_clear();
    EXPECT_EQ(executer.exec(query_of(create_type, "no_db", "NO_TBL")), 0);
    rowset.current = 7;
    EXPECT_EQ(executer.exec(query_of(create_type, "adbk_db", "PSN_TBL"), rowset), 0);
    EXPECT_EQ(rowset.current, 7);
    rowset.current = -1;
    expect_untouched();
    EXPECT_TRUE(lines.empty());
}

TEST_F(dispatch, unknown_databases_are_refused_before_any_key) {
    qryhost_fail_clear();
    for (const std::string &name :
         {std::string("ADBK_DB"), std::string(), std::string("adbk_db\n"), std::string(1 << 20, 'd')}) {
        for (const std::uint32_t type : {0u, 1u, 2u, 3u, 4u, 5u, 7u}) {
            EXPECT_EQ(
                executer.exec(query_of(static_cast<QRY_LIB_DB_QUERY_TYPE>(type), name.c_str(), "PSN_TBL")),
                invalid_argument);
            EXPECT_EQ(take_traces(), (traces{{"exec_internal", 222, 0xDB05}}));
        }
    }
    expect_untouched();
}

TEST_F(dispatch, a_select_without_a_rowset_only_searches) {
    fill();
    for (const auto type : {select_type, count_type}) {
        qryhost_fail_clear();
        EXPECT_EQ(executer.exec(on_departments(type).column("NO_COL")), 0);
        EXPECT_EQ(qryhost_call_count(QRYHOST_LIST_SET_POS), 101u);
        EXPECT_EQ(qryhost_call_count(QRYHOST_GET_TABLE), 1u); // the default key
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(dispatch, other_types_are_refused_behind_the_search) {
    for (const std::uint32_t type : {0u, 7u, 0xFFFFFFFFu}) {
        qryhost_fail_clear();
        rowset.current = 7;
        EXPECT_EQ(executer.exec(on_departments(static_cast<QRY_LIB_DB_QUERY_TYPE>(type)), rowset),
                  invalid_argument);
        EXPECT_EQ(qryhost_call_count(QRYHOST_LIST_SET_POS), 101u);
        EXPECT_EQ(rowset.current, -1);
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(dispatch, the_cursor_ends_before_the_first_row) {
    fill();
    EXPECT_EQ(select(on_departments(select_type).column("ID")), 0);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 1u);
    EXPECT_EQ(rowset.current, 0);
    EXPECT_EQ(select(on_departments(count_type)), 0);
    EXPECT_EQ(rowset.current, -1);
    // Also for a select that fails half way, and for a statement that makes no rows.
    qryhost_fail(QRYHOST_GET_TABLE, 2, 1, injected);
    EXPECT_EQ(select(on_departments(select_type).column("ID")), injected);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(rowset.record_num, 0);
    rowset.current = 7;
    EXPECT_EQ(executer.exec(on_departments(update_type).value("NAME", "x"), rowset), 0);
    EXPECT_EQ(rowset.current, -1);
}

TEST_F(dispatch, refusals_carry_the_whole_way_of_traces) {
    EXPECT_EQ(select(query_of(select_type, "department_db", "NO_TBL").column("ID")), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 849, 0xDB05},
                                     {"create_filter_key", 768, 0xDB05},
                                     {"exec_internal", 231, 0xDB05}}));
    EXPECT_EQ(
        select(on_departments(select_type).column("ID").where("NO_COL", QRY_LIB_OPERATION_TYPE_EQUAL, "1")),
        invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"create_filter_key", 786, 0xDB05}, {"exec_internal", 231, 0xDB05}}));
    EXPECT_EQ(
        select(on_departments(select_type).column("ID").where("NAME", QRY_LIB_OPERATION_TYPE_LESS, "x")),
        test::table_argument);
    EXPECT_EQ(take_traces(), (traces{{"qry_lib_tb_create_search_table_id", 415, 0x5241},
                                     {"create_search_table_id", 1448, 0xDB05},
                                     {"exec_internal", 240, 0x5241}}));
    // The operations trace their own failures; the route adds nothing.
    EXPECT_EQ(executer.exec(on_departments(update_type).value("NAME", "x")), test::no_such_item);
    EXPECT_EQ(take_traces(), (traces{{"exec_update", 705, 0xDB02}}));
    EXPECT_EQ(executer.exec(on_departments(insert_type).value("ID", "0")), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 1001, 0xDB05},
                                     {"create_filter_key", 768, 0xDB05},
                                     {"exec_internal", 231, 0xDB05}}));
    EXPECT_EQ(executer.exec(on_departments(insert_type).value("NAME", "x")), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 982, 0xDB05},
                                     {"create_filter_key", 768, 0xDB05},
                                     {"exec_internal", 231, 0xDB05}}));
    EXPECT_EQ(executer.exec(query_of(insert_type, "usrac_db", "ACCOUNT_TBL").value("ID", "1")),
              test::no_free_entry);
    EXPECT_EQ(take_traces(), (traces{{"exec_new_insert", 603, 0xDB04}}));
}

TEST_F(dispatch, a_row_test_that_fails_ends_the_statement) {
    const test::lost_blocks_allowed allowed;
    const traces row_test = {{"qry_lib_tb_create_search_table_id", 519, 0x5243},
                             {"qry_lib_tb_create_search_table_id", 452, 0x5243},
                             {"create_search_table_id", 1448, 0xDB05},
                             {"exec_internal", 240, 0x5243}};
    qryhost_fail(QRYHOST_LIST_SET_POS, 50, 1, injected);
    EXPECT_EQ(select(on_departments(select_type).column("ID")), test::table_access);
    EXPECT_EQ(take_traces(), row_test);
    test::settle_lost_block();
    qryhost_fail(QRYHOST_CREATE_LIST, 0, 1, injected);
    EXPECT_EQ(executer.exec(on_departments(delete_type)), test::table_access);
    traces with_list = row_test;
    with_list.insert(with_list.begin(), {"qry_lib_tb_create_list_table", 805, injected});
    EXPECT_EQ(take_traces(), with_list);
    test::settle_lost_block();
}

// What every statement answers when the blocks of its search fail.
std::vector<failure> search_blocks() {
    return {failure{test::no_memory, {{"create_search_table_id", 1430, 1}, {"exec_internal", 240, 1}}},
            failure{test::table_access,
                    {{"qry_lib_tb_alloc_mem", 690, 0x5243},
                     {"qry_lib_tb_create_search_table_id", 429, 0x5243},
                     {"create_search_table_id", 1448, 0xDB05},
                     {"exec_internal", 240, 0x5243}}}};
}

TEST_F(dispatch, every_block_of_a_select_can_fail) {
    const failure rowset_block = {
        QRY_LIB_ROWSET_NOT_CREATED,
        {{"init_rowset", any_line, 1}, {"exec_select_proc", 380, 0x2001}, {"exec_select", 316, 0x2001}}};
    std::vector<failure> expected = search_blocks();
    expected.insert(expected.end(), 3, rowset_block); // the rows, and two rows' columns
    for (const auto &[function, line] :
         {std::pair("sort_tbdb_table_id", 1243), std::pair("sort_tbdb_table_id_internal", 1286)}) {
        expected.push_back(
            {test::no_memory, {{function, line, 1}, {"exec_select_proc", 387, 1}, {"exec_select", 316, 1}}});
    }
    expect_failures(
        QRYHOST_ALLOC, fill,
        [&] {
            const int code =
                select(on_departments(select_type).column("ID").order("ID", QRY_LIB_ODER_TYPE_DESC));
            qry_lib_db_rowset_term(&rowset);
            return code;
        },
        expected);
}

TEST_F(dispatch, every_block_of_a_write_can_fail) {
    expect_failures(
        QRYHOST_ALLOC, fill, [&] { return executer.exec(on_departments(update_type).value("NAME", "x")); },
        search_blocks());
    expect_failures(
        QRYHOST_ALLOC, fill, [&] { return executer.exec(on_departments(delete_type)); }, search_blocks());
    std::vector<failure> expected = search_blocks();
    for (failure free_search : search_blocks()) {
        free_search.lines.back() = {"exec_new_insert", 595, static_cast<std::uint32_t>(free_search.code)};
        expected.push_back(free_search);
    }
    expect_failures(
        QRYHOST_ALLOC, fill, [&] { return executer.exec(on_departments(insert_type).value("ID", "7")); },
        expected);
}

TEST_F(dispatch, every_read_of_a_select_can_fail) {
    const failure unread = {injected, {{"exec_select_proc", 436, injected}, {"exec_select", 316, injected}}};
    const failure unsorted = {injected,
                              {{"sort_internal", 1343, injected},
                               {"exec_select_proc", 387, injected},
                               {"exec_select", 316, injected}}};
    const failure no_default = {injected,
                                {{"create_primary_filter_key", 861, injected},
                                 {"create_filter_key", 768, injected},
                                 {"exec_internal", 231, injected}}};
    const auto operation = [&] {
        const int code = select(on_departments(select_type).column("ID").order("ID", QRY_LIB_ODER_TYPE_ASC));
        qry_lib_db_rowset_term(&rowset);
        return code;
    };
    expect_failures(QRYHOST_GET_TABLE, fill, operation, {no_default, unsorted, unsorted, unread, unread});
    expect_failures(QRYHOST_SORT, fill, operation,
                    {failure{test::not_accepted,
                             {{"sort_internal", 1358, injected},
                              {"exec_select_proc", 387, 0xDB00},
                              {"exec_select", 316, 0xDB00}}}});
}

TEST_F(dispatch, an_executer_serves_call_after_call) {
    fill();
    EXPECT_EQ(executer.exec(query_of(select_type, "no_db", "DEPT_TBL")), invalid_argument);
    EXPECT_EQ(select(on_departments(select_type).column("NO_COL")), invalid_argument);
    EXPECT_EQ(select(query_of(select_type, "adbk_db", "PSN_TBL").column("PSN_ID")), 0);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(select(on_departments(select_type).column("ID")), 0);
    EXPECT_EQ(rows(), (texts{"30", "10"}));
}

TEST_F(dispatch, many_conditions_are_tested_one_by_one) {
    fill();
    query_of query = on_departments(select_type).column("ID");
    for (int i = 0; i < 300; ++i) {
        query.where("ID", QRY_LIB_OPERATION_TYPE_EQUAL, std::to_string(1000 + i), QRY_LIB_JOIN_TYPE_OR);
    }
    EXPECT_EQ(select(query), 0);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(select(query.where("ID", QRY_LIB_OPERATION_TYPE_EQUAL, "10", QRY_LIB_JOIN_TYPE_OR)), 0);
    EXPECT_EQ(rows(), (texts{"10"}));
}

TEST_F(dispatch, the_summary_names_the_statement_and_its_order) {
    EXPECT_EQ(executer.log_out_put_analyze_info(query_of(select_type, "adbk_db", "PSN_TBL")
                                                    .column("PSN_NAME")
                                                    .where("PSN_ID", QRY_LIB_OPERATION_TYPE_EQUAL, "1")
                                                    .order("PSN_ID", QRY_LIB_ODER_TYPE_ASC)),
              "EXE_TYPE=[SELECT] TABLE=[PSN_TBL]DB_NAME=[adbk_db] SORT PSN_ID [ASC ]");
    const char *const labels[] = {"", "INSERT", "UPDATE", "DELETE", "SELECT", "COUNT", "CREATE]", "", ""};
    for (std::uint32_t type = 0; type < std::size(labels); ++type) {
        EXPECT_EQ(
            executer.log_out_put_analyze_info(query_of(static_cast<QRY_LIB_DB_QUERY_TYPE>(type), "d", "T")),
            "EXE_TYPE=[" + std::string(labels[type]) + "] TABLE=[T]DB_NAME=[d] SORT  [NOTHING ]");
    }
    const char *const orders[] = {"NOTHING ]", "ASC ]", "DESC ]", "", ""};
    for (std::uint32_t order = 0; order < std::size(orders); ++order) {
        query_of query(update_type, "d", "T");
        EXPECT_EQ(executer.log_out_put_analyze_info(query.order("C", static_cast<QRY_LIB_ODER_TYPE>(order))),
                  "EXE_TYPE=[UPDATE] TABLE=[T]DB_NAME=[d] SORT C [" + std::string(orders[order]));
    }
    EXPECT_EQ(executer.log_out_put_analyze_info(norvane::qry_lib_analyze_info()),
              "EXE_TYPE=[] TABLE=[]DB_NAME=[] SORT  [NOTHING ]");
    EXPECT_TRUE(lines.empty());
}

} // namespace
