// WHERE: which conditions a text becomes, and where each refusal is traced.
#include "unit/parser/parser_test.h"

namespace {

using test::at;
using test::conditions;
using test::outcome;
using test::refused;
using test::traces;

class where_analysis : public test::parser_test {
  protected:
    std::uint32_t analyze(const std::string &where) {
        info.all_clear();
        info.set_table("T");
        return parser.set_filter_str(where.c_str(), info);
    }

    // What a lone condition is refused with.
    static traces lone(int line) { return {at("divide_operate", line), at("set_filter_str", 1534)}; }

    static traces lone(const test::return_trace &helper, int line) {
        return {helper, at("divide_operate", line), at("set_filter_str", 1534)};
    }
};

TEST_F(where_analysis, conditions_are_cut_at_their_operator) {
    struct {
        const char *where;
        conditions expected;
    } const rows[] = {
        {"PSN_ID = 5", {equal("PSN_ID", "5")}},
        {"A=1", {equal("A", "1")}},
        {"  A  =  1  ", {equal("A", "1")}},
        {"A != 1", {not_equal("A", "1")}},
        {"A!=1", {not_equal("A", "1")}},
        {"A < 1", {less("A", "1")}},
        {"A > 1", {greater("A", "1")}},
        {"A <= 1", {less_equal("A", "1")}},
        {"A >= 1", {greater_equal("A", "1")}},
        {"NAME LIKE 'Ab%'", {like("NAME", "Ab").in_quotes()}},
        {"NAME LIKE Ab%", {like("NAME", "Ab")}},
        {"NAME LIKE '%'", {like("NAME", "").in_quotes()}},
        {"NAME LIKE 'a%b_%'", {like("NAME", "a%b_").in_quotes()}},
        {"PSN_ID >= 10 AND PSN_ID < 20", {greater_equal("PSN_ID", "10"), less("PSN_ID", "20")}},
        {"NAME = 'a' OR NAME = 'b'",
         {equal("NAME", "a").in_quotes().joined_by_or(), equal("NAME", "b").in_quotes().joined_by_or()}},
        {"A=1 AND B=2 AND C=3", {equal("A", "1"), equal("B", "2"), equal("C", "3")}},
        {"A <> 1", {greater("A <", "1")}},
        {"A => 1", {greater("A =", "1")}},
        {"A =< 1", {less("A =", "1")}},
        {"A = 'x>y'", {equal("A", "x>y").in_quotes()}},
        {"A = 'x==y'", {equal("A", "x==y").in_quotes()}},
        {"A = ' LIKE '", {equal("A", " LIKE ").in_quotes()}},
        {"A = 'x IN y'", {equal("A", "x IN y").in_quotes()}},
        {"NAME = 'O''Hara'", {equal("NAME", "O''Hara").in_quotes()}},
        {"NAME = 'a' b", {equal("NAME", "a").in_quotes()}},
        {"NAME = ''", {equal("NAME", "").in_quotes()}},
        {"NAME = ' a '", {equal("NAME", " a ").in_quotes()}},
        {"NAME = a'b'", {equal("NAME", "a'b'")}},
        {"a.K = b.K", {equal("a.K", "b.K")}},
        {"A = -5", {equal("A", "-5")}},
        {"A\t=\t1\n", {equal("A\t", "\t1\n")}},
        {"A = 1 and B", {equal("A", "1 and B")}},
        {"A = 1\tAND\tB = 2", {equal("A", "1\tAND\tB = 2")}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.where);
        EXPECT_EQ(analyze(row.where), 0u);
        EXPECT_EQ(filters(info), row.expected);
        EXPECT_TRUE(take_traces().empty());
    }
}

TEST_F(where_analysis, lists_become_conditions_joined_by_or) {
    struct {
        const char *where;
        conditions expected;
    } const rows[] = {
        {"PSN_ID IN (1, 2, 3)",
         {equal("PSN_ID", "1").joined_by_or(), equal("PSN_ID", "2").joined_by_or(),
          equal("PSN_ID", "3").joined_by_or()}},
        {"NAME INLIKE ('a%','b%')",
         {like("NAME", "a").in_quotes().joined_by_or(), like("NAME", "b").in_quotes().joined_by_or()}},
        {"A IN (1)", {equal("A", "1").joined_by_or()}},
        {"A IN(1)", {equal("A", "1").joined_by_or()}},
        {"A IN('x')", {equal("A", "x").in_quotes().joined_by_or()}},
        {"A IN ( 1 , 'x' )", {equal("A", "1").joined_by_or(), equal("A", "x").in_quotes().joined_by_or()}},
        {"A IN ((1,2))", {equal("A", "1").joined_by_or(), equal("A", "2").joined_by_or()}},
        {"A INLIKE('a%')", {like("A", "a").in_quotes().joined_by_or()}},
        {"A INLIKE (a%, b%)", {like("A", "a").joined_by_or(), like("A", "b").joined_by_or()}},
        {"A = 1 AND B IN (2,3)",
         {equal("A", "1"), equal("B", "2").joined_by_or(), equal("B", "3").joined_by_or()}},
        {"A INSIDE (1)", {equal("A", "SIDE (1").joined_by_or()}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.where);
        EXPECT_EQ(analyze(row.where), 0u);
        EXPECT_EQ(filters(info), row.expected);
        EXPECT_TRUE(take_traces().empty());
    }
}

TEST_F(where_analysis, refusals_are_traced_where_they_are_found) {
    const auto unclosed = at("trim_single_q_str", 2512);
    struct {
        const char *where;
        traces traced;
    } const rows[] = {
        {"A = 1 AND B = 2 OR C = 3", {at("set_filter_str", 1527, 0)}},
        {"A == 1", lone(1257)},
        {"A==1", lone(1257)},
        {"A LIKE'x%'", lone(1271)},
        {"A", lone(1271)},
        {"", lone(1271)},
        {"A like 'x%'", lone(1271)},
        {"'A' = 1", lone(1271)},
        {"= 1", lone(1294)},
        {"   = 1", lone(1294)},
        {"A =", lone(1300)},
        {"A =   ", lone(1300)},
        {"A IN", lone(1300)},
        {"A INLIKE ", lone(1300)},
        {"A IN 1", lone(1315)},
        {"A IN ()", lone(1315)},
        {"A IN (1", lone(1315)},
        {"A IN 1)", lone(1315)},
        {"A = INTEG_TBL.X", lone(1315)},
        {"A IN ( )", lone(1330)},
        {"A IN ('x)", lone(unclosed, 1337)},
        {"A INLIKE ('x')", lone(1347)},
        {"A INLIKE ('')", lone(1347)},
        {"A IN (1,)", lone(1370)},
        {"A IN (1, ,2)", lone(1370)},
        {"A IN (,)", lone(1370)},
        {"NAME IN ('a,b')", lone(unclosed, 1377)},
        {"A INLIKE ('a%','b')", lone(1387)},
        {"A = 'x", lone(unclosed, 1408)},
        {"A LIKE 'x", lone(unclosed, 1408)},
        {"A LIKE 'x'", lone(1416)},
        {"A LIKE '%x'", lone(1416)},
        {"NAME = 'a AND b'", {unclosed, at("divide_operate", 1408), at("set_filter_str", 1561)}},
        {"A = 1 AND B", {at("divide_operate", 1271), at("set_filter_str", 1561)}},
        {" OR ", {at("divide_operate", 1271), at("set_filter_str", 1561)}},
        {"A = 1 OR  = 2", {at("divide_operate", 1294), at("set_filter_str", 1561)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.where);
        EXPECT_EQ(analyze(row.where), refused);
        EXPECT_EQ(take_traces(), row.traced);
    }
}

TEST_F(where_analysis, conditions_before_a_refusal_stay) {
    EXPECT_EQ(analyze("A = 1 OR B = 2 OR C"), refused);
    EXPECT_EQ(filters(info), (conditions{equal("A", "1").joined_by_or(), equal("B", "2").joined_by_or()}));
    EXPECT_EQ(analyze("A IN (1,2,,3)"), refused);
    EXPECT_EQ(filters(info), (conditions{equal("A", "1").joined_by_or(), equal("A", "2").joined_by_or()}));
    EXPECT_EQ(analyze("A = 1 AND B = 2 OR C = 3"), refused);
    EXPECT_EQ(filters(info), conditions{});
}

TEST_F(where_analysis, one_condition_carries_the_join_of_its_caller) {
    info.set_table("T");
    EXPECT_EQ(parser.divide_operate("A = 1", QRY_LIB_JOIN_TYPE_OR, info), 0u);
    EXPECT_EQ(parser.divide_operate("B IN (2)", QRY_LIB_JOIN_TYPE_AND, info), 0u);
    EXPECT_EQ(filters(info), (conditions{equal("A", "1").joined_by_or(), equal("B", "2").joined_by_or()}));
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 77);
    EXPECT_EQ(parser.divide_operate("C = 3", QRY_LIB_JOIN_TYPE_OR, info), 1u);
    EXPECT_EQ(parser.divide_operate("C == 3", QRY_LIB_JOIN_TYPE_OR, info), refused);
    EXPECT_EQ(take_traces(), (traces{at("divide_operate", 1235, 1), at("divide_operate", 1257)}));
    EXPECT_EQ(info.get_filter_cols_num(), 2);
}

TEST_F(where_analysis, conditions_belong_to_the_first_table) {
    info.set_table("MAIN");
    info.add_table("OTHER");
    EXPECT_EQ(parser.set_filter_str("A = 5", info), 0u);
    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    char value[QRY_LIB_STRING_MAX + 1];
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    std::int32_t quoted;
    EXPECT_EQ(info.get_filter_cols(0, table, col, value, operation, join, quoted), 0u);
    EXPECT_STREQ(table, "MAIN");
}

TEST_F(where_analysis, each_allocation_of_a_comparison_may_fail) {
    const auto trim = test::no_trim_block();
    expect_outcomes({{refused, {at("divide_operate", 1235, 1), at("set_filter_str", 1534)}},
                     {refused, lone(trim, 1294)},
                     {refused, lone(trim, 1300)},
                     {refused, lone(test::no_quote_block(), 1408)}},
                    [this] { return analyze("A LIKE 'x%'"); });
}

TEST_F(where_analysis, each_allocation_of_a_joined_text_may_fail) {
    const auto trim = test::no_trim_block();
    const auto joined = at("set_filter_str", 1561);
    expect_outcomes({{refused, {test::no_split_block(), at("set_filter_str", 1552)}},
                     {refused, {at("divide_operate", 1235, 1), joined}},
                     {refused, {trim, at("divide_operate", 1294), joined}},
                     {refused, {trim, at("divide_operate", 1300), joined}},
                     {refused, {at("divide_operate", 1235, 1), joined}},
                     {refused, {trim, at("divide_operate", 1294), joined}},
                     {refused, {trim, at("divide_operate", 1300), joined}}},
                    [this] { return analyze("A = 1 OR B = 2"); });
}

TEST_F(where_analysis, each_allocation_of_a_list_may_fail) {
    const auto trim = test::no_trim_block();
    const auto split = test::no_split_block();
    const auto bracket = at("trim_bracket_str", 2584, 1);
    std::vector<outcome> expected = {
        {refused, {at("divide_operate", 1235, 1), at("set_filter_str", 1534)}},
        {refused, lone(trim, 1294)},
        {refused, lone(trim, 1300)},
        {refused, lone(bracket, 1315)},
        {refused, lone(split, 1322)},
        {refused, lone(trim, 1330)},
        {refused, lone(test::no_quote_block(), 1337)},
    };
    expect_outcomes(expected, [this] { return analyze("A IN ('x')"); });
    expect_outcomes(expected, [this] { return analyze("A INLIKE ('x%')"); });
    expected.resize(5);
    for (int element = 0; element < 2; ++element) {
        expected.push_back({refused, lone(trim, 1370)});
        expected.push_back({refused, lone(test::no_quote_block(), 1377)});
    }
    expect_outcomes(expected, [this] { return analyze("A IN ('x','y')"); });
    expect_outcomes(expected, [this] { return analyze("A INLIKE ('x%','y%')"); });
}

TEST_F(where_analysis, names_and_values_are_accepted_up_to_their_capacity) {
    const std::string name(QRY_LIB_COLUMN_NAME_MAX, 'c');
    const std::string value(QRY_LIB_STRING_MAX, 'v');
    EXPECT_EQ(analyze(name + " = '" + value + "'"), 0u);
    EXPECT_EQ(filters(info), (conditions{equal(name, value).in_quotes()}));
    EXPECT_EQ(analyze(name + " LIKE '" + value + "%'"), 0u);
    EXPECT_EQ(analyze(name + " IN ('" + value + "'," + value + ")"), 0u);
    EXPECT_TRUE(take_codes().empty());
    const std::string too_long[] = {name + "c = 1", name + " = v" + value, name + " IN (1, v" + value + ")",
                                    "T." + name + " = 1", name + " LIKE v" + value + "%"};
    for (const std::string &where : too_long) {
        SCOPED_TRACE(where.substr(0, 50));
        EXPECT_EQ(analyze(where), refused);
        EXPECT_EQ(take_codes(), (test::codes{{"divide_operate", refused}, {"set_filter_str", refused}}));
    }
}

TEST_F(where_analysis, no_more_conditions_than_16_bits_count) {
    std::string list = "A IN (1";
    for (int i = 1; i < UINT16_MAX; ++i) {
        list += ",1";
    }
    EXPECT_EQ(analyze(list + ")"), 0u);
    EXPECT_EQ(info.get_filter_cols_num(), UINT16_MAX);
    EXPECT_EQ(analyze(list + ",1)"), refused);
    EXPECT_EQ(take_codes(), (test::codes{{"divide_operate", refused}, {"set_filter_str", refused}}));
}

TEST_F(where_analysis, a_megabyte_of_text_is_refused) {
    constexpr std::size_t length = 1024 * 1024;
    EXPECT_EQ(analyze(std::string(length, '=')), refused);
    EXPECT_EQ(take_traces(), lone(1257));
    EXPECT_EQ(analyze(std::string(length, '\'')), refused);
    EXPECT_EQ(analyze(std::string(length, '<')), refused);
    EXPECT_EQ(analyze("A = " + std::string(length, 'x')), refused);
    EXPECT_EQ(analyze("A IN " + std::string(length, '(') + std::string(length, ')')), refused);
    EXPECT_EQ(info.get_filter_cols_num(), 0);
}

} // namespace
