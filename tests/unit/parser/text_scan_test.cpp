// The text helpers: trimming, splitting, peeling. What they leave alone when memory is short.
#include "unit/parser/parser_test.h"

namespace {

using test::at;
using test::refused;
using test::texts;
using test::traces;

class text_scan : public test::parser_test {
  protected:
    std::string trimmed_in_place(unsigned char mode, std::string text) {
        EXPECT_EQ(parser.trim_space_front_rear(mode, text.data()), 0u);
        return text.c_str();
    }

    std::string trimmed_string(unsigned char mode, std::string text) {
        EXPECT_EQ(parser.trim_space_front_rear(mode, text), 0u);
        return text;
    }

    std::uint32_t divide_two(const char *text) {
        out.clear();
        return parser.divide_two_keyword(text, " ORDER ", " BY ", count, out);
    }

    std::uint32_t divide_where(const char *text) {
        out.clear();
        return parser.divide_where_str(text, count, out);
    }

    unsigned int count = 0;
    texts out;
};

TEST_F(text_scan, outer_blanks_are_trimmed_by_mode) {
    struct {
        unsigned char mode;
        const char *text;
        const char *expected;
    } const rows[] = {
        {17, "  a b  ", "a b"}, {17, "ab", "ab"},     {17, "", ""},           {17, "   ", ""},
        {17, "a ", "a"},        {17, " a", "a"},      {0x01, "  a  ", "a  "}, {0x10, "  a  ", "  a"},
        {0x01, "   ", ""},      {0x10, "   ", ""},    {0x00, " a ", " a "},   {17, "\ta\n ", "\ta\n"},
        {17, " \r", "\r"},      {17, "a  b", "a  b"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string("\"") + row.text + "\" mode " + std::to_string(row.mode));
        EXPECT_EQ(trimmed_in_place(row.mode, row.text), row.expected);
        EXPECT_EQ(trimmed_string(row.mode, row.text), row.expected);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, the_in_place_trim_takes_a_block_only_where_there_are_blanks) {
    std::string text = "ab";
    qryhost_fail(QRYHOST_ALLOC, 0, UINT32_MAX, 77);
    EXPECT_EQ(parser.trim_space_front_rear(17, text.data()), 0u);
    EXPECT_TRUE(take_traces().empty());
    EXPECT_EQ(parser.trim_space_front_rear(17, text), 1u);
    EXPECT_EQ(take_traces(), (traces{test::no_trim_block()}));
    EXPECT_EQ(text, "ab");
}

TEST_F(text_scan, texts_are_untouched_when_a_trim_has_no_block) {
    std::string text = " a b ";
    qryhost_fail(QRYHOST_ALLOC, 0, UINT32_MAX, 77);
    EXPECT_EQ(parser.trim_space_front_rear(17, text.data()), 1u);
    EXPECT_EQ(parser.trim_space_front_rear(17, text), 1u);
    EXPECT_EQ(parser.trim_space_all(text.data()), 1u);
    EXPECT_FALSE(parser.trimmed(text));
    EXPECT_EQ(text, " a b ");
    EXPECT_EQ(take_traces(), (traces{test::no_trim_block_in_place(), test::no_trim_block(),
                                     at("trim_space_all", 2278, 1), test::no_trim_block()}));
}

TEST_F(text_scan, trim_space_all_removes_every_blank) {
    const char *const rows[][2] = {
        {"A, B ,C", "A,B,C"}, {"", ""}, {"   ", ""}, {"ab", "ab"}, {" a\tb ", "a\tb"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row[0]);
        std::string text = row[0];
        EXPECT_EQ(parser.trim_space_all(text.data()), 0u);
        EXPECT_STREQ(text.c_str(), row[1]);
    }
}

TEST_F(text_scan, only_decimal_digits_make_a_number) {
    const std::pair<const char *, int> rows[] = {{"", 1},   {"0", 1},    {"1234567890", 1}, {"-1", 0},
                                                 {"+1", 0}, {"1.5", 0},  {" 1", 0},         {"1 ", 0},
                                                 {"a", 0},  {"12a3", 0}, {"/", 0},          {":", 0}};
    for (const auto &[text, expected] : rows) {
        SCOPED_TRACE(text);
        int is_number = -1;
        EXPECT_EQ(parser.check_col_val(text, is_number), 0u);
        EXPECT_EQ(is_number, expected);
    }
}

TEST_F(text_scan, keywords_are_counted_without_overlap) {
    struct {
        const char *text;
        const char *keyword;
        unsigned int count;
    } const rows[] = {
        {"a,b,c", ",", 2}, {"abc", ",", 0},           {"", ",", 0},          {"aaaa", "aa", 2},
        {"aaa", "aa", 1},  {" AND AND ", " AND ", 1}, {" and ", " AND ", 0}, {nullptr, ",", 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text == nullptr ? "null" : row.text);
        count = 99;
        EXPECT_EQ(parser.get_keyword_num(row.text, row.keyword, count), 0u);
        EXPECT_EQ(count, row.count);
    }
}

TEST_F(text_scan, divide_keyword_cuts_at_every_occurrence) {
    struct {
        const char *text;
        const char *keyword;
        texts pieces;
    } const rows[] = {
        {"A,B,", ",", {"A", "B", ""}},
        {"AB", ",", {}},
        {"", ",", {}},
        {",", ",", {"", ""}},
        {",,", ",", {"", "", ""}},
        {"A AND B AND C", " AND ", {"A", "B", "C"}},
        {"x AND AND y", " AND ", {"x", "AND y"}},
        {"t where a", " WHERE ", {}},
        {"t\tWHERE a", " WHERE ", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        out = {"kept"};
        count = 99;
        EXPECT_EQ(parser.divide_keyword(row.text, row.keyword, count, out), 0u);
        EXPECT_EQ(count, row.pieces.size());
        ASSERT_FALSE(out.empty());
        EXPECT_EQ(out.front(), "kept");
        EXPECT_EQ(texts(out.begin() + 1, out.end()), row.pieces);
    }
}

TEST_F(text_scan, divide_keyword_without_a_block_appends_nothing) {
    count = 99;
    expect_outcomes({{1, {test::no_split_block()}}}, [this] {
        out.clear();
        return parser.divide_keyword("A,B", ",", count, out);
    });
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 77);
    out.clear();
    EXPECT_EQ(parser.divide_keyword("A,B", ",", count, out), 1u);
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(out.empty());
}

TEST_F(text_scan, two_adjacent_keywords_are_found) {
    const std::pair<const char *, texts> rows[] = {
        {" x ORDER BY y", {" x", "y"}},
        {" x ORDER   BY y", {" x", "y"}},
        {" x  ORDER BY  y ", {" x ", " y "}},
        {" ORDER BY ", {"", ""}},
    };
    for (const auto &[text, expected] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(divide_two(text), 0u);
        EXPECT_EQ(count, 2u);
        EXPECT_EQ(out, expected);
    }
    out = {"kept"};
    EXPECT_EQ(parser.divide_two_keyword(" x ORDER BY y", " ORDER ", " BY ", count, out), 0u);
    EXPECT_EQ(out, (texts{"kept", " x", "y"}));
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, two_keywords_are_refused_with_their_traces) {
    struct {
        const char *text;
        unsigned int count;
        traces traced;
    } const rows[] = {
        {" x", 0, {}},
        {" x order by y", 0, {}},
        {" x ORDER BY y ORDER BY z", 3, {}},
        {" x ORDER y", 0, {at("divide_two_keyword", 1158)}},
        {" x ORDER BY", 0, {at("divide_two_keyword", 1158)}},
        {" x ORDER BY y BY z", 3, {at("divide_two_keyword", 1158)}},
        {" x ORDER z BY y", 2, {at("divide_two_keyword", 1170)}},
        {" x ORDER \t BY y", 2, {at("divide_two_keyword", 1170)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        count = 99;
        EXPECT_EQ(divide_two(row.text), refused);
        EXPECT_EQ(count, row.count);
        EXPECT_TRUE(out.empty());
        EXPECT_EQ(take_traces(), row.traced);
    }
}

TEST_F(text_scan, two_keywords_answer_1_only_for_their_own_block) {
    expect_outcomes({{refused, {test::no_split_block()}},
                     {1, {at("divide_two_keyword", 1145, 1)}},
                     {refused, {test::no_split_block(), at("divide_two_keyword", 1158)}},
                     {refused, {test::no_trim_block(), at("divide_two_keyword", 1170)}}},
                    [this] {
                        const std::uint32_t code = divide_two(" x ORDER BY y");
                        EXPECT_EQ(out.empty(), code != 0);
                        EXPECT_LE(count, 2u);
                        return code;
                    });
}

TEST_F(text_scan, where_gives_the_condition_as_written_then_the_table) {
    const std::pair<const char *, texts> rows[] = {
        {" t  WHERE  A = 1 ", {" A = 1 ", "t"}},
        {"t WHERE A=1", {"A=1", "t"}},
    };
    for (const auto &[text, expected] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(divide_where(text), 0u);
        EXPECT_EQ(count, 2u);
        EXPECT_EQ(out, expected);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, where_is_refused_in_silence) {
    const std::pair<const char *, unsigned int> rows[] = {
        {"t", 0},          {"t where A = 1", 0}, {"t WHERE", 0},  {"t WHERE ", 2},
        {"t WHERE   ", 2}, {"  WHERE A = 1", 2}, {" WHERE A", 2}, {"t WHERE A = 1 WHERE B = 2", 3},
    };
    for (const auto &[text, expected] : rows) {
        SCOPED_TRACE(text);
        count = 99;
        EXPECT_EQ(divide_where(text), refused);
        EXPECT_EQ(count, expected);
        EXPECT_TRUE(out.empty());
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, where_answers_1_only_for_its_own_block) {
    expect_outcomes({{refused, {test::no_split_block()}},
                     {1, {at("divide_where_str", 1465, 1)}},
                     {refused, {test::no_trim_block_in_place()}},
                     {refused, {test::no_trim_block()}}},
                    [this] {
                        const std::uint32_t code = divide_where("t WHERE A = 1");
                        EXPECT_EQ(out.empty(), code != 0);
                        return code;
                    });
}

TEST_F(text_scan, one_pair_of_quotes_is_peeled) {
    struct {
        const char *value;
        const char *expected;
        int quoted;
    } const rows[] = {
        {"'a'", "a", 1},     {"'a'b'", "a'b", 1}, {"'it's'", "it's", 1}, {"''", "", 1},
        {"'a' x", "a", 1},   {"abc'", "abc'", 0}, {"abc", "abc", 0},     {"", "", 0},
        {" 'a'", " 'a'", 0}, {"5", "5", 0},       {"'''", "'", 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.value);
        std::string value = row.value;
        int quoted = -1;
        EXPECT_EQ(parser.trim_single_q_str(value, &quoted), 0u);
        EXPECT_EQ(value, row.expected);
        EXPECT_EQ(quoted, row.quoted);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, an_unclosed_quote_is_refused) {
    for (const char *text : {"'abc", "'"}) {
        SCOPED_TRACE(text);
        std::string value = text;
        int quoted = -1;
        EXPECT_EQ(parser.trim_single_q_str(value, &quoted), refused);
        EXPECT_EQ(quoted, 0);
        EXPECT_EQ(take_traces(), (traces{at("trim_single_q_str", 2512)}));
    }
}

TEST_F(text_scan, unquoting_without_a_block_leaves_the_value) {
    expect_outcomes({{1, {test::no_quote_block()}}}, [this] {
        std::string value = "'a'";
        int quoted = -1;
        const std::uint32_t code = parser.trim_single_q_str(value, &quoted);
        EXPECT_EQ(value, code == 0 ? "a" : "'a'");
        EXPECT_EQ(quoted, code == 0 ? 1 : 0);
        return code;
    });
}

TEST_F(text_scan, runs_of_brackets_are_dropped_at_both_ends) {
    const char *const rows[][2] = {
        {"(a,b)", "a,b"}, {"((a,b))", "a,b"}, {"((a)", "a"},    {"(a))", "a"},
        {"( )", " "},     {"a()b", "a()b"},   {"(a)b", "a)b"},  {")(", ")("},
        {"(a(b)", "a(b"}, {"x(", nullptr},    {"x)", nullptr},  {"", nullptr},
        {"()", nullptr},  {"(())", nullptr},  {"(()", nullptr}, {"1", nullptr},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row[0]);
        std::string value = row[0];
        EXPECT_EQ(parser.trim_bracket_str(value), row[1] == nullptr ? refused : 0u);
        EXPECT_EQ(value, row[1] == nullptr ? row[0] : row[1]);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, brackets_without_a_block_are_left) {
    expect_outcomes({{1, {at("trim_bracket_str", 2584, 1)}}}, [this] {
        std::string value = "(a)";
        const std::uint32_t code = parser.trim_bracket_str(value);
        EXPECT_EQ(value, code == 0 ? "a" : "(a)");
        return code;
    });
}

TEST_F(text_scan, one_trailing_percent_is_removed) {
    const char *const rows[][2] = {{"ab%", "ab"},    {"ab%%", "ab%"}, {"%", ""},        {"%ab", nullptr},
                                   {"a%b", nullptr}, {"", nullptr},   {"ab% ", nullptr}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row[0]);
        std::string value = row[0];
        EXPECT_EQ(parser.trim_percent_str(value), row[1] == nullptr ? refused : 0u);
        EXPECT_EQ(value, row[1] == nullptr ? row[0] : row[1]);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, a_selected_column_is_found_by_its_exact_name) {
    std::vector<norvane::qry_lib_analyze_info> queries(2);
    queries[1].set_table("T");
    queries[1].add_cols("A", QRY_LIB_COLUMN_VALUE{}, QRY_LIB_COLUMN_TYPE_STR);
    queries[1].add_cols("B", QRY_LIB_COLUMN_VALUE{}, QRY_LIB_COLUMN_TYPE_STR);
    EXPECT_EQ(parser.get_is_col_name(1, "A", queries), 1);
    EXPECT_EQ(parser.get_is_col_name(1, "B", queries), 1);
    for (const char *name : {"a", "AB", "", "T"}) {
        EXPECT_EQ(parser.get_is_col_name(1, name, queries), 0) << name;
    }
    EXPECT_EQ(parser.get_is_col_name(0, "A", queries), 0);
    EXPECT_EQ(parser.get_is_col_name(2, "A", queries), 0);
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(text_scan, a_table_is_compared_at_its_index) {
    info.add_table("T");
    info.add_table("U");
    EXPECT_EQ(parser.get_is_table(0, "T", info), 1);
    EXPECT_EQ(parser.get_is_table(1, "U", info), 1);
    EXPECT_EQ(parser.get_is_table(1, "T", info), 0);
    EXPECT_EQ(parser.get_is_table(0, "t", info), 0);
    EXPECT_TRUE(take_traces().empty());
    EXPECT_EQ(parser.get_is_table(2, "T", info), 0);
    EXPECT_EQ(take_traces(), (traces{at("get_is_table", 2069, QRY_LIB_NO_SUCH_ITEM)}));
}

TEST_F(text_scan, names_are_compared_up_to_their_capacity) {
    const std::string table(QRY_LIB_TABLE_NAME_MAX, 't');
    const std::string col(QRY_LIB_COLUMN_NAME_MAX, 'c');
    std::vector<norvane::qry_lib_analyze_info> queries(1);
    queries[0].set_table(table.c_str());
    queries[0].add_cols(col.c_str(), QRY_LIB_COLUMN_VALUE{}, QRY_LIB_COLUMN_TYPE_STR);
    EXPECT_EQ(parser.get_is_table(0, table, queries[0]), 1);
    EXPECT_EQ(parser.get_is_table(0, table + "t", queries[0]), 0);
    EXPECT_EQ(parser.get_is_col_name(0, col, queries), 1);
    EXPECT_EQ(parser.get_is_col_name(0, col + "c", queries), 0);
}

TEST_F(text_scan, a_megabyte_is_scanned_like_any_text) {
    constexpr std::size_t length = 1024 * 1024;
    const std::string blanks(length, ' ');
    EXPECT_EQ(trimmed_string(17, blanks), "");
    EXPECT_EQ(trimmed_in_place(17, blanks + "x"), "x");
    EXPECT_EQ(parser.divide_keyword(std::string(length, ',').c_str(), ",", count, out), 0u);
    EXPECT_EQ(count, length + 1);
    std::string quotes(length, '\'');
    int quoted = 0;
    EXPECT_EQ(parser.trim_single_q_str(quotes, &quoted), 0u);
    EXPECT_EQ(quotes.size(), length - 2);
}

} // namespace
