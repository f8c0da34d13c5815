// The calls that run queries: SQL text and statement records against real records, one table at a time.
#include "platform/element_table.h"
#include "unit/query_support.h"

namespace {

using test::texts;

const std::string exec_query = "qry_lib_db_wrapper_exec_query";
const std::string exec = "qry_lib_db_wrapper_exec";
const std::string stmt_exec_query = "qry_lib_db_wrapper_stmt_exec_query";
const std::string stmt_exec = "qry_lib_db_wrapper_stmt_exec";

class query : public test::query_test {
  protected:
    void put_persons() {
        ASSERT_EQ(put("PSN_TBL", {{"PSN_ID", "2"}, {"PSN_NAME", "Sato"}}), 0u);
        ASSERT_EQ(put("PSN_TBL", {{"PSN_ID", "1"}, {"PSN_NAME", "Abe"}}), 0u);
    }

    // Makes the statement a SELECT of one column of PSN_TBL.
    void select(const char *column) {
        qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_SELECT);
        qry_lib_db_stmt_set_table_name(&stmt, "PSN_TBL");
        qry_lib_db_stmt_set_col_num(&stmt, 1);
        qry_lib_db_stmt_set_col_name(&stmt, 0, column);
    }

    // The rowset holds the answer to a COUNT.
    void expect_count(std::uint32_t expected) {
        ASSERT_EQ(rowset.record_num, 1);
        EXPECT_EQ(rowset.current, -1);
        ASSERT_EQ(rowset.records[0].col_num, 1);
        EXPECT_STREQ(rowset.records[0].cols[0].col_name, "");
        EXPECT_STREQ(rowset.records[0].cols[0].table_name, "");
        EXPECT_EQ(rowset.records[0].cols[0].type, QRY_LIB_COLUMN_TYPE_UINT);
        EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 1u);
        EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, 0, 4711), expected);
        EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 0u);
    }
};

TEST_F(query, the_whole_life_of_a_record) {
    put_persons();
    EXPECT_EQ(rows("SELECT PSN_ID, PSN_NAME FROM PSN_TBL"), (texts{"2,Sato", "1,Abe"}));
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL ORDER BY PSN_ID"), (texts{"Abe", "Sato"}));
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE 'Sa%'"), (texts{"2"}));
    EXPECT_EQ(put("PSN_TBL", {{"PSN_NAME", "Ito"}}, QRY_LIB_DB_QUERY_TYPE_UPDATE, "PSN_ID = 2"), 0u);
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID IN (1, 2)"), (texts{"Ito", "Abe"}));
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_ID = 2"), 0u);
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL"), (texts{"Abe"}));
    EXPECT_EQ(take_chain(), texts{});
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DROP TABLE PSN_TBL"), 0u);
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL"), texts{});
    EXPECT_EQ(code, 0u);
}

TEST_F(query, a_result_carries_names_types_and_the_cursor_before_it) {
    put_persons();
    rows("SELECT PSN_ID, PSN_NAME FROM PSN_TBL");
    const QRY_LIB_COLUMN *columns = rowset.records[0].cols;
    EXPECT_STREQ(columns[0].col_name, "PSN_ID");
    EXPECT_STREQ(columns[1].col_name, "PSN_NAME");
    EXPECT_STREQ(columns[1].table_name, "PSN_TBL");
    EXPECT_EQ(columns[0].type, QRY_LIB_COLUMN_TYPE_USHORT);
    EXPECT_EQ(columns[1].type, QRY_LIB_COLUMN_TYPE_STR);
    EXPECT_EQ(rowset.current, -1);
}

TEST_F(query, a_count_is_one_row_of_one_column) {
    rows("SELECT COUNT(*) FROM PSN_TBL");
    EXPECT_EQ(code, 0u);
    expect_count(0);
    put_persons();
    rows("SELECT COUNT(*) FROM PSN_TBL");
    expect_count(2);
    rows("SELECT COUNT(*) FROM PSN_TBL WHERE PSN_NAME = 'Abe'");
    expect_count(1);
    rows("SELECT COUNT(*) FROM PSN_TBL WHERE PSN_ID > 2");
    expect_count(0);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(query, a_count_of_the_edit_counter_counts_every_record) {
    use("department_db");
    rows("SELECT COUNT(*) FROM EDIT_CNT_TBL");
    expect_count(2);
}

TEST_F(query, a_refused_text_leaves_the_rowset_untouched) {
    QRY_LIB_RECORD record{};
    qry_lib_db_rowset_ held{0, &record, 5};
    for (const char *sql : {"", " ", "SELECT", "PSN_ID FROM PSN_TBL", "SELECT PSN_ID", "INSERT INTO PSN_TBL",
                            "select PSN_ID from PSN_TBL", "SELECT\tPSN_ID\tFROM\tPSN_TBL",
                            "SELECT PSN_ID\nFROM PSN_TBL", "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID"}) {
        SCOPED_TRACE(sql);
        EXPECT_EQ(qry_lib_db_exec_query(&stmt, sql, &held), QRY_LIB_NOT_ACCEPTED);
        EXPECT_EQ(held.record_num, 0);
        EXPECT_EQ(held.records, &record);
        EXPECT_EQ(held.current, 5);
        const texts chain = take_chain();
        ASSERT_FALSE(chain.empty());
        EXPECT_EQ(chain.back(), exec_query + " 0xDB00");
    }
}

TEST_F(query, each_failure_is_traced_on_the_way_up) {
    put_persons();
    struct {
        const char *db;
        const char *sql;
        std::uint32_t code;
        texts chain;
    } const failures[] = {
        {"adbk_db",
         "SELECT",
         QRY_LIB_NOT_ACCEPTED,
         {"divide_select_reserve_str:936 0xDB00", "analyze_sql_select:165 0xDB00", exec_query + " 0xDB00"}},
        {"no_db",
         "SELECT PSN_ID FROM PSN_TBL",
         QRY_LIB_INVALID_ARGUMENT,
         {"exec_internal:222 0xDB05", exec_query + " 0xDB05"}},
        {"",
         "SELECT COUNT(*) FROM PSN_TBL",
         QRY_LIB_INVALID_ARGUMENT,
         {"exec_internal:222 0xDB05", exec_query + " 0xDB05"}},
        {"adbk_db",
         "SELECT X FROM NO_TBL",
         QRY_LIB_INVALID_ARGUMENT,
         {"create_primary_filter_key:849 0xDB05", "create_filter_key:768 0xDB05", "exec_internal:231 0xDB05",
          exec_query + " 0xDB05"}},
        {"adbk_db",
         "SELECT X FROM PSN_TBL",
         QRY_LIB_INVALID_ARGUMENT,
         {"exec_select_proc:408 0xDB05", "exec_select:316 0xDB05", exec_query + " 0xDB05"}},
        {"adbk_db",
         "SELECT * FROM PSN_TBL",
         QRY_LIB_INVALID_ARGUMENT,
         {"exec_select_proc:408 0xDB05", "exec_select:316 0xDB05", exec_query + " 0xDB05"}},
        {"adbk_db",
         "SELECT PSN_ID FROM PSN_TBL WHERE X=1",
         QRY_LIB_INVALID_ARGUMENT,
         {"create_filter_key:786 0xDB05", "exec_internal:231 0xDB05", exec_query + " 0xDB05"}},
    };
    for (const auto &failure : failures) {
        SCOPED_TRACE(failure.sql);
        use(failure.db);
        EXPECT_EQ(rows(failure.sql), texts{});
        EXPECT_EQ(code, failure.code);
        EXPECT_EQ(take_chain(), failure.chain);
        EXPECT_EQ(rowset.record_num, 0);
    }
}

TEST_F(query, statements_without_rows_are_run_by_exec) {
    put_persons();
    EXPECT_EQ(qry_lib_db_exec(&stmt, "CREATE TABLE PSN_TBL"), 0u);
    take_chain();
    EXPECT_EQ(qry_lib_db_exec(&stmt, "SELECT PSN_ID FROM PSN_TBL"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), (texts{"analyze_sql:533 0xDB00", exec + " 0xDB00"}));
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM NO_TBL"), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), (texts{"create_primary_filter_key:849 0xDB05", "create_filter_key:768 0xDB05",
                                   "exec_internal:231 0xDB05", exec + " 0xDB05"}));
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_ID = 9"), 0u);
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL").size(), 2u);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(query, a_statement_record_selects) {
    put_persons();
    select("PSN_NAME");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "PSN_NAME DESC");
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), 0u);
    EXPECT_EQ(test::row_texts(rowset), (texts{"Sato", "Abe"}));
    EXPECT_EQ(rowset.current, -1);
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_set_where_equal_int(&stmt, "PSN_ID", 1);
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), 0u);
    EXPECT_EQ(test::row_texts(rowset), (texts{"Abe"}));
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(query, a_statement_record_counts) {
    put_persons();
    for (const char *column : {"COUNT(*)", " COUNT( * ) "}) {
        select(column);
        EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), 0u);
        expect_count(2);
        qry_lib_db_rowset_term(&rowset);
    }
}

TEST_F(query, a_counting_record_sorts_what_it_counts) {
    put_persons();
    select("COUNT(*)");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "PSN_NAME DESC");
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), 0u);
    expect_count(2);
    EXPECT_EQ(qryhost_call_count(QRYHOST_SORT), 1u);
    qry_lib_db_rowset_term(&rowset);
    EXPECT_EQ(take_chain(), texts{});

    qry_lib_db_stmt_term(&stmt);
    use("adbk_db");
    select("COUNT(*)");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "NO_COLUMN");
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(rowset.record_num, 0);
    const texts chain = take_chain();
    ASSERT_GE(chain.size(), 3u);
    EXPECT_EQ(
        texts(chain.begin(), chain.begin() + 3),
        (texts{"sort_tbdb_table_id:1233 0xDB05", "exec_select_proc:387 0xDB05", "exec_select:332 0xDB05"}));
}

TEST_F(query, a_statement_record_without_rows_runs_and_rewinds_the_rowset) {
    put_persons();
    rowset.current = 5;
    select("PSN_ID");
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_DELETE);
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), 0u);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL"), texts{});
}

TEST_F(query, a_select_without_a_rowset_only_searches) {
    put_persons();
    select("NO_COLUMN");
    EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), 0u);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(query, other_statement_types_are_refused) {
    select("PSN_ID");
    for (const std::uint32_t type : {0u, 5u, 6u, 7u, 0xFFFFFFFFu}) {
        qry_lib_db_stmt_set_exec_type(&stmt, static_cast<QRY_LIB_DB_QUERY_TYPE>(type));
        EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), QRY_LIB_NOT_ACCEPTED);
        EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), QRY_LIB_NOT_ACCEPTED);
        EXPECT_EQ(take_chain(), (texts{stmt_exec + " 0xDB00", stmt_exec_query + " 0xDB00"}));
    }
}

TEST_F(query, incomplete_statements_are_refused_by_every_type) {
    struct {
        QRY_LIB_DB_QUERY_TYPE type;
        std::string point;
    } const types[] = {
        {QRY_LIB_DB_QUERY_TYPE_INSERT, "analyze_param_insert:757 0xDB00"},
        {QRY_LIB_DB_QUERY_TYPE_UPDATE, "analyze_param_update:812 0xDB00"},
        {QRY_LIB_DB_QUERY_TYPE_DELETE, "analyze_param_delete:872 0xDB00"},
        {QRY_LIB_DB_QUERY_TYPE_SELECT, "analyze_param_select:668 0xDB00"},
    };
    for (const auto &[type, point] : types) {
        qry_lib_db_stmt_set_exec_type(&stmt, type);
        EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), QRY_LIB_NOT_ACCEPTED);
        EXPECT_EQ(take_chain(), (texts{point, stmt_exec + " 0xDB00"}));
        EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), QRY_LIB_NOT_ACCEPTED);
        EXPECT_EQ(take_chain(), (texts{point, stmt_exec_query + " 0xDB00"}));
    }
}

TEST_F(query, write_failures_pass_through) {
    put_persons();
    EXPECT_EQ(put("PSN_TBL", {{"PSN_NAME", "X"}}, QRY_LIB_DB_QUERY_TYPE_UPDATE, "PSN_ID = 9"),
              QRY_LIB_NO_SUCH_ITEM);
    EXPECT_EQ(take_chain(), (texts{"exec_update:705 0xDB02", stmt_exec + " 0xDB02"}));
    EXPECT_EQ(put("PSN_TBL", {{"PSN_NAME", "X"}}), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), (texts{"create_primary_filter_key:982 0xDB05", "create_filter_key:768 0xDB05",
                                   "exec_internal:231 0xDB05", stmt_exec + " 0xDB05"}));
}

TEST_F(query, platform_codes_pass_through_unchanged) {
    put_persons();
    qryhost_fail(QRYHOST_GET_TABLE, 1, 1, 0x1234); // the first read is that of the free record's key
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL"), texts{});
    EXPECT_EQ(code, 0x1234u);
    EXPECT_EQ(take_chain(),
              (texts{"exec_select_proc:436 0x1234", "exec_select:316 0x1234", exec_query + " 0x1234"}));
    EXPECT_EQ(rowset.record_num, 0);
}

TEST_F(query, null_arguments_are_refused) {
    EXPECT_EQ(qry_lib_db_exec_query(nullptr, "SELECT", &rowset), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_exec_query(&stmt, nullptr, &rowset), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_exec_query(&stmt, "SELECT", nullptr), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), texts(3, exec_query + " 0xDB05"));
    EXPECT_EQ(qry_lib_db_exec(nullptr, "DROP TABLE T"), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_exec(&stmt, nullptr), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), texts(2, exec + " 0xDB05"));
    EXPECT_EQ(qry_lib_db_stmt_exec_query(nullptr, &rowset), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, nullptr), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), texts(2, stmt_exec_query + " 0xDB05"));
    EXPECT_EQ(qry_lib_db_stmt_exec(nullptr), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), texts{stmt_exec + " 0xDB05"});
}

TEST_F(query, a_database_name_without_its_end_is_refused) {
    std::memset(stmt.db_name, 'd', sizeof stmt.db_name);
    EXPECT_EQ(qry_lib_db_exec_query(&stmt, "SELECT PSN_ID FROM PSN_TBL", &rowset), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DROP TABLE PSN_TBL"), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_stmt_exec_query(&stmt, &rowset), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(take_chain(), (texts{exec_query + " 0xDB05", exec + " 0xDB05", stmt_exec_query + " 0xDB05",
                                   stmt_exec + " 0xDB05"}));
}

TEST_F(query, a_megabyte_of_text_is_answered) {
    const std::string megabyte(1 << 20, 'A');
    for (const std::string &sql :
         {megabyte, "SELECT " + megabyte + " FROM PSN_TBL", "SELECT PSN_ID FROM " + megabyte,
          "SELECT PSN_ID FROM PSN_TBL WHERE " + megabyte + "=1",
          "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME='" + megabyte + "'",
          "SELECT PSN_ID FROM PSN_TBL ORDER BY " + megabyte, "SELECT " + std::string(1 << 20, ' '),
          "SELECT " + std::string(70000, ',') + " FROM PSN_TBL",
          "SELECT A.B FROM " + std::string(70000, ',')}) {
        EXPECT_EQ(rows(sql), texts{});
        EXPECT_EQ(code, QRY_LIB_NOT_ACCEPTED) << sql.substr(0, 40);
        EXPECT_EQ(take_chain().back(), exec_query + " 0xDB00");
    }
}

TEST_F(query, tabs_and_line_feeds_are_part_of_words_and_values) {
    ASSERT_EQ(put("PSN_TBL", {{"PSN_ID", "1"}, {"PSN_NAME", "a\tb\nc"}}), 0u);
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME='a\tb\nc'"), (texts{"1"}));
    EXPECT_EQ(rows("SELECT PSN_ID\t FROM PSN_TBL"), texts{});
    EXPECT_EQ(code, QRY_LIB_INVALID_ARGUMENT);
}

TEST_F(query, connection_calls_copy_the_name) {
    char out[256];
    const std::string longest(255, 'n');
    for (const std::string &name : {std::string("adbk_db"), std::string(), longest}) {
        std::memset(out, '#', sizeof out);
        EXPECT_EQ(qry_lib_db_init_datasource(out, 1, 2, name.c_str()), 0u);
        EXPECT_EQ(out, name);
        std::memset(out, '#', sizeof out);
        EXPECT_EQ(qry_lib_db_get_connection(name.c_str(), 3, out), 0u);
        EXPECT_EQ(out, name);
        std::memset(out, '#', sizeof out);
        EXPECT_EQ(qry_lib_db_get_connection_keep(name.c_str(), 4, out), 0u);
        EXPECT_EQ(out, name);
        EXPECT_EQ(qry_lib_db_get_connection_keep_start(name.c_str()), 0u);
    }
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(query, connection_calls_refuse_null_and_over_long) {
    char out[256] = "kept";
    const std::string over_long(1000000, 'n');
    for (const char *name : {static_cast<const char *>(nullptr), over_long.c_str()}) {
        EXPECT_EQ(qry_lib_db_init_datasource(out, 0, 0, name), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_EQ(qry_lib_db_get_connection(name, 0, out), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_EQ(qry_lib_db_get_connection_keep(name, 0, out), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_EQ(qry_lib_db_get_connection_keep_start(name), QRY_LIB_INVALID_ARGUMENT);
    }
    EXPECT_EQ(qry_lib_db_init_datasource(nullptr, 0, 0, "d"), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_db_get_connection(std::string(256, 'n').c_str(), 0, out), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_STREQ(out, "kept");
    EXPECT_EQ(take_chain().size(), 10u);
}

TEST_F(query, transaction_calls_change_nothing) {
    put_persons();
    for (std::uint32_t (*call)(void) :
         {qry_lib_db_commit, qry_lib_db_rollback, qry_lib_db_disconnect_keep_end}) {
        EXPECT_EQ(call(), 0u);
    }
    EXPECT_EQ(qry_lib_db_disconnect(5), 0u);
    EXPECT_EQ(qry_lib_db_disconnect_keep(5), 0u);
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL"), (texts{"2", "1"}));
    EXPECT_EQ(take_chain(), texts{});
}

class query_without_memory : public query {
  protected:
    // Refuses each block of the operation in turn. Its failure must be the wrapper's last trace, and every
    // block must have come back; `chains` collects the traces of each place. A statement may survive one
    // search for a keyword that it does not have; that search is then all that is traced.
    template <typename Operation>
    void run(const std::string &wrapper, bool may_survive, Operation operation) {
        chains.clear();
        const std::uint32_t blocks = qryhost_pool_blocks();
        test::with_each_block_refused(
            [&] {
                qry_lib_db_rowset_term(&rowset);
                code = operation();
            },
            [&](std::uint32_t let_through) {
                EXPECT_EQ(rowset.record_num, 0);
                EXPECT_EQ(qryhost_pool_blocks(), blocks);
                const texts chain = take_chain();
                if (may_survive && code == 0) {
                    EXPECT_EQ(chain, texts{"divide_keyword:1063 0x1"});
                    return;
                }
                char last[16];
                std::snprintf(last, sizeof last, " 0x%X", static_cast<unsigned int>(code));
                EXPECT_NE(code, 0u);
                ASSERT_FALSE(chain.empty());
                EXPECT_EQ(chain.back(), wrapper + last);
                if (chains.size() <= let_through) {
                    chains.push_back(chain);
                }
                if (!may_survive) {
                    EXPECT_EQ(chains[let_through], chain) << "once and for good differ";
                }
            });
        EXPECT_EQ(operation(), 0u);
        EXPECT_EQ(take_chain(), texts{});
        qry_lib_db_rowset_term(&rowset);
    }

    std::vector<texts> chains;
};

TEST_F(query_without_memory, a_count_ends_at_each_place) {
    put_persons();
    run(exec_query, false,
        [&] { return qry_lib_db_exec_query(&stmt, "SELECT COUNT(*) FROM PSN_TBL", &rowset); });
    const std::string wrapper = exec_query + " 0x";
    const texts searched = {"create_search_table_id:1430 0x1", "exec_internal:240 0x1", wrapper + "1"};
    const texts no_records = {
        "qry_lib_tb_alloc_mem:690 0x5243", "qry_lib_tb_create_search_table_id:429 0x5243",
        "create_search_table_id:1448 0xDB05", "exec_internal:240 0x5243", wrapper + "5243"};
    const texts no_rowset = {"init_rowset 0x1", "exec_select_proc:380 0x2001", "exec_select:332 0x2001",
                             wrapper + "2001"};
    const texts no_answer = {"init_rowset 0x1", wrapper + "2001"};
    const std::vector<texts> executed = {searched,  no_records, no_rowset, no_rowset,
                                         no_rowset, no_answer,  no_answer};
    ASSERT_GT(chains.size(), executed.size());
    const std::size_t analysed = chains.size() - executed.size();
    for (std::size_t i = 0; i < analysed; ++i) {
        EXPECT_TRUE(chains[i].back() == wrapper + "DB00" || chains[i].back() == wrapper + "1");
    }
    EXPECT_EQ(std::vector<texts>(chains.end() - static_cast<std::ptrdiff_t>(executed.size()), chains.end()),
              executed);
}

TEST_F(query_without_memory, every_other_query_gives_its_blocks_back) {
    put_persons();
    run(exec_query, false, [&] {
        return qry_lib_db_exec_query(
            &stmt, "SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID IN (1, 2) ORDER BY PSN_ID DESC",
            &rowset);
    });
    run(exec, true, [&] { return qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_NAME = 'None'"); });
    select("PSN_NAME");
    qry_lib_db_stmt_set_where_phrase(&stmt, "PSN_ID = 1");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "PSN_ID");
    run(stmt_exec_query, false, [&] { return qry_lib_db_stmt_exec_query(&stmt, &rowset); });
    select("COUNT(*)");
    run(stmt_exec_query, false, [&] { return qry_lib_db_stmt_exec_query(&stmt, &rowset); });
    select("PSN_NAME");
    qry_lib_db_stmt_set_elem_as_str(&stmt, 0, "Ito");
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_UPDATE);
    run(stmt_exec, false, [&] { return qry_lib_db_stmt_exec(&stmt); });
    select("PSN_ID");
    qry_lib_db_stmt_set_elem_as_int(&stmt, 0, 3);
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_INSERT);
    run(stmt_exec, false, [&] {
        tbSTCInitTable(0x05090400, 3); // the record that the INSERT takes is free again
        return qry_lib_db_stmt_exec(&stmt);
    });
    EXPECT_EQ(rows("SELECT PSN_ID, PSN_NAME FROM PSN_TBL"), (texts{"2,Sato", "1,Ito", "3,"}));
}

} // namespace
