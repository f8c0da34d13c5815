// Statements that return no rows: what each form yields, where each refusal is traced.
#include "unit/parser/parser_test.h"

namespace {

using test::at;
using test::conditions;
using test::outcome;
using test::refused;
using test::texts;
using test::traces;

class statement_analysis : public test::parser_test {
  protected:
    std::uint32_t analyze(const std::string &sql) {
        info.all_clear();
        return parser.analyze_sql("adbk_db", sql.c_str(), info);
    }
};

// CREATE INDEX could not be looked for.
const test::return_trace no_search = at("analyze_sql", test::any_line, 1);

TEST_F(statement_analysis, delete_takes_its_table_and_conditions) {
    struct {
        const char *sql;
        const char *table;
        conditions filters;
    } const rows[] = {
        {"DELETE FROM adbk WHERE PSN_ID = 5", "adbk", {equal("PSN_ID", "5")}},
        {"DELETE FROM adbk WHERE NAME = 'x' OR NAME = 'y'",
         "adbk",
         {equal("NAME", "x").in_quotes().joined_by_or(), equal("NAME", "y").in_quotes().joined_by_or()}},
        {"DELETE FROM adbk", "adbk", {}},
        {"  DELETE FROM adbk  ", "adbk", {}},
        {"DELETE  FROM adbk", "adbk", {}},
        {"DELETE     FROM   adbk", "adbk", {}},
        {"DELETE FROM t WHERE", "t WHERE", {}},
        {"DELETE FROM t WHERE ", "t WHERE", {}},
        {"DELETE FROM  t  WHERE A=1", "t", {equal("A", "1")}},
        {"DELETE FROM t where A = 1", "t where A = 1", {}},
        {"DELETE FROM t\tWHERE A = 1", "t\tWHERE A = 1", {}},
        {"DROP TABLE adbk", "adbk", {}},
        {" DROP   TABLE   adbk ", "adbk", {}},
        {"DROP TABLE t WHERE", "t WHERE", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(analyze(row.sql), 0u);
        EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_DELETE);
        EXPECT_STREQ(info.get_db_name(), "adbk_db");
        EXPECT_EQ(tables(info), (texts{row.table}));
        EXPECT_EQ(filters(info), row.filters);
        EXPECT_EQ(info.get_cols_num(), 0);
        EXPECT_EQ(order(info), " 0");
        EXPECT_TRUE(take_traces().empty());
    }
}

TEST_F(statement_analysis, create_is_accepted_and_names_no_table) {
    struct {
        const char *sql;
        const char *db;
        traces traced;
    } const rows[] = {
        {"CREATE INDEX i ON t", "", {}},
        {"  CREATE   INDEX i", "", {}},
        {"DELETE FROM t WHERE x CREATE INDEX i", "", {}},
        {"CREATE INDEX i ON t ORDER BY x", "", {}},
        {"CREATE TABLE adbk (...)", "adbk_db", {at("divide_two_keyword", 1158)}},
        {"foo CREATE TABLE adbk", "adbk_db", {at("divide_two_keyword", 1158)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(analyze(row.sql), 0u);
        EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_CREATE);
        EXPECT_STREQ(info.get_db_name(), row.db);
        EXPECT_EQ(tables(info), (texts{""}));
        EXPECT_EQ(info.get_filter_cols_num(), 0);
        EXPECT_EQ(take_traces(), row.traced);
    }
}

TEST_F(statement_analysis, refusals_are_traced_where_they_are_found) {
    struct {
        const char *sql;
        traces traced;
    } const rows[] = {
        {"DELETE FROM t ORDER BY x", {at("analyze_sql", 447, 0)}},
        {"DROP TABLE t ORDER BY x", {at("analyze_sql", 447, 0)}},
        {"CREATE TABLE t ORDER BY x", {at("divide_two_keyword", 1158), at("analyze_sql", 447, 0)}},
        {"CREATE TABLE a CREATE TABLE b", {at("analyze_sql", 459)}},
        {"CREATE TABLE a TABLE b",
         {at("divide_two_keyword", 1158), at("divide_two_keyword", 1158), at("analyze_sql", 459)}},
        {"CREATE  CREATE INDEX i", {at("analyze_sql", 459)}},
        {"DROP TABLE a DROP TABLE b", {at("analyze_sql", 482)}},
        {"DROP TABLE a TABLE b", {at("divide_two_keyword", 1158), at("analyze_sql", 482)}},
        {"x DROP TABLE t", {at("analyze_sql", 493)}},
        {"DROP TABLE t WHERE A = 1", {at("analyze_sql", 503, 0)}},
        {"DROP TABLE  WHERE A = 1", {at("analyze_sql", 503, 0)}},
        {"DROP TABLE ", {at("analyze_sql", 510)}},
        {"DROP TABLE    ", {at("analyze_sql", 510)}},
        {"DELETE FROM a DELETE FROM b", {at("analyze_sql", 528)}},
        {"DELETE FROM a FROM b", {at("divide_two_keyword", 1158), at("analyze_sql", 528)}},
        {"DELETE adbk", {at("divide_two_keyword", 1158), at("analyze_sql", 533)}},
        {"DELETE FROM", {at("divide_two_keyword", 1158), at("analyze_sql", 533)}},
        {"DELETE x FROM t", {at("divide_two_keyword", 1170), at("analyze_sql", 533)}},
        {"delete from t", {at("analyze_sql", 533)}},
        {"drop table t", {at("analyze_sql", 533)}},
        {"INSERT INTO t VALUES (1)", {at("analyze_sql", 533)}},
        {"UPDATE t SET A = 1", {at("analyze_sql", 533)}},
        {"SELECT A FROM t", {at("analyze_sql", 533)}},
        {"DELETE\tFROM t", {at("analyze_sql", 533)}},
        {"DELETE FROM\nt", {at("divide_two_keyword", 1158), at("analyze_sql", 533)}},
        {"", {at("analyze_sql", 533)}},
        {"   ", {at("analyze_sql", 533)}},
        {"x DELETE FROM t", {at("analyze_sql", 543)}},
        {"DELETE FROM t WHERE A = 1 WHERE B = 2", {at("analyze_sql", 559)}},
        {"DELETE FROM ", {at("analyze_sql", 579)}},
        {"DELETE FROM    ", {at("analyze_sql", 579)}},
        {"DELETE FROM t WHERE A", {at("divide_operate", 1271), at("set_filter_str", 1534)}},
        {"DELETE FROM t WHERE A = 1 AND B = 2 OR C = 3", {at("set_filter_str", 1527, 0)}},
        {"DROP x TABLE t", {at("divide_two_keyword", 1170), at("analyze_sql", 533)}},
        {"CREATE x INDEX i",
         {at("divide_two_keyword", 1170), at("divide_two_keyword", 1158), at("analyze_sql", 533)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(analyze(row.sql), refused);
        EXPECT_EQ(take_traces(), row.traced);
    }
}

TEST_F(statement_analysis, refusals_leave_what_was_reached) {
    EXPECT_EQ(analyze("DELETE FROM t ORDER BY x"), refused);
    EXPECT_STREQ(info.get_db_name(), "");
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_NONE);
    EXPECT_EQ(tables(info), (texts{""}));

    EXPECT_EQ(analyze("CREATE TABLE a CREATE TABLE b"), refused);
    EXPECT_STREQ(info.get_db_name(), "adbk_db");
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_NONE);

    EXPECT_EQ(analyze("INSERT"), refused);
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_DELETE);
    EXPECT_EQ(tables(info), (texts{""}));

    EXPECT_EQ(analyze("DELETE FROM t WHERE A = 1 AND B"), refused);
    EXPECT_EQ(tables(info), (texts{"t"}));
    EXPECT_EQ(filters(info), (conditions{equal("A", "1")}));
}

TEST_F(statement_analysis, the_first_table_is_replaced_and_the_others_stay) {
    info.add_table("old");
    info.add_table("second");
    EXPECT_EQ(parser.analyze_sql("adbk_db", "DELETE FROM t", info), 0u);
    EXPECT_EQ(tables(info), (texts{"t", "second"}));
}

TEST_F(statement_analysis, each_allocation_of_a_delete_may_fail) {
    const auto split = test::no_split_block();
    const auto trim = test::no_trim_block();
    const std::vector<outcome> expected = {
        {1, {at("analyze_sql", 424, 1)}},
        {1, {split, no_search}},
        {refused, {split, at("analyze_sql", 447, 0)}},
        {refused, {split, at("analyze_sql", 459)}},
        {refused, {split, at("analyze_sql", 482)}},
        {refused, {split, at("analyze_sql", 533)}},
        {refused, {at("divide_two_keyword", 1145, 1), at("analyze_sql", 533)}},
        {refused, {split, at("divide_two_keyword", 1158), at("analyze_sql", 533)}},
        {refused, {trim, at("divide_two_keyword", 1170), at("analyze_sql", 533)}},
        {refused, {trim, at("analyze_sql", 543)}},
        {refused, {split, at("analyze_sql", 559)}},
        {refused, {trim, at("analyze_sql", 579)}},
    };
    const auto run = [this] { return analyze("DELETE FROM t"); };
    expect_outcomes(expected, run);
}

TEST_F(statement_analysis, each_allocation_of_a_delete_with_a_condition_may_fail) {
    const auto split = test::no_split_block();
    const auto trim = test::no_trim_block();
    const auto lone = at("set_filter_str", 1534);
    // The first ten are those of the text without a condition.
    std::vector<outcome> expected = {
        {refused, {split, at("analyze_sql", 559)}},
        {refused, {at("divide_where_str", 1465, 1), at("analyze_sql", 559)}},
        {refused, {test::no_trim_block_in_place(), at("analyze_sql", 559)}},
        {refused, {trim, at("analyze_sql", 559)}},
        {refused, {at("divide_operate", 1235, 1), lone}},
        {refused, {trim, at("divide_operate", 1294), lone}},
        {refused, {trim, at("divide_operate", 1300), lone}},
        {refused, {test::no_quote_block(), at("divide_operate", 1408), lone}},
    };
    constexpr std::uint32_t before_where = 10;
    for (std::uint32_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        qryhost_fail(QRYHOST_ALLOC, before_where + i, 1, 77);
        EXPECT_EQ(analyze("DELETE FROM t WHERE A = 'x'"), expected[i].code);
        EXPECT_EQ(take_traces(), expected[i].traced);
    }
    qryhost_fail_clear();
    EXPECT_EQ(analyze("DELETE FROM t WHERE A = 'x'"), 0u);
    EXPECT_EQ(qryhost_call_count(QRYHOST_ALLOC), before_where + expected.size());
}

TEST_F(statement_analysis, each_allocation_of_a_drop_may_fail) {
    const auto split = test::no_split_block();
    const auto trim = test::no_trim_block();
    const std::vector<outcome> expected = {
        {1, {at("analyze_sql", 424, 1)}},
        {1, {split, no_search}},
        {refused, {split, at("analyze_sql", 447, 0)}},
        {refused, {split, at("analyze_sql", 459)}},
        {refused, {split, at("analyze_sql", 482)}},
        {refused, {at("divide_two_keyword", 1145, 1), at("analyze_sql", 482)}},
        {refused, {split, at("divide_two_keyword", 1158), at("analyze_sql", 482)}},
        {refused, {trim, at("divide_two_keyword", 1170), at("analyze_sql", 482)}},
        {refused, {trim, at("analyze_sql", 493)}},
        {refused, {trim, at("analyze_sql", 510)}},
    };
    const auto run = [this] { return analyze("DROP TABLE t"); };
    expect_outcomes(expected, run);
}

// A text that may be a CREATE INDEX, which has no effect, is never taken for another statement.
TEST_F(statement_analysis, each_allocation_of_create_index_may_fail) {
    const auto split = test::no_split_block();
    const auto missing = at("divide_two_keyword", 1158);
    const std::vector<outcome> expected = {
        {1, {at("analyze_sql", 424, 1)}},
        {1, {split, no_search}},
        {1, {at("divide_two_keyword", 1145, 1), no_search}},
        {1, {split, missing, no_search}},
        {1, {test::no_trim_block(), at("divide_two_keyword", 1170), no_search}}};
    for (const char *text : {"CREATE INDEX i", "DELETE FROM PSN_TBL WHERE PSN_NAME = 'x CREATE INDEX y'"}) {
        SCOPED_TRACE(text);
        expect_outcomes(expected, [&] { return analyze(text); });
    }
}

TEST_F(statement_analysis, table_names_are_accepted_up_to_their_capacity) {
    const std::string longest(QRY_LIB_TABLE_NAME_MAX, 't');
    for (const char *form : {"DELETE FROM ", "DROP TABLE "}) {
        SCOPED_TRACE(form);
        EXPECT_EQ(analyze(form + longest), 0u);
        EXPECT_EQ(tables(info), (texts{longest}));
        EXPECT_TRUE(take_codes().empty());
        EXPECT_EQ(analyze(form + longest + "t"), refused);
        EXPECT_EQ(take_codes(), (test::codes{{"analyze_sql", refused}}));
        EXPECT_EQ(tables(info), (texts{""}));
    }
    EXPECT_EQ(analyze("DELETE FROM " + longest + "t WHERE A = 1"), refused);
    EXPECT_EQ(take_codes(), (test::codes{{"analyze_sql", refused}}));
    EXPECT_EQ(info.get_filter_cols_num(), 0);
}

TEST_F(statement_analysis, a_megabyte_of_text_is_refused) {
    const std::string filler(1024 * 1024, 'x');
    EXPECT_EQ(analyze(filler), refused);
    EXPECT_EQ(take_traces(), (traces{at("analyze_sql", 533)}));
    EXPECT_EQ(analyze("DELETE FROM " + filler), refused);
    EXPECT_EQ(analyze("DELETE FROM t WHERE A = '" + filler + "'"), refused);
    EXPECT_EQ(info.get_filter_cols_num(), 0);
    EXPECT_EQ(analyze("DELETE" + std::string(1024 * 1024, ' ') + "FROM t"), 0u);
}

} // namespace
