// A SELECT over several tables becomes one query for each table and the links between them; every refusal.
#include "parser/qry_lib_sql_parser.h"

#include "link/qry_lib_analyze_link_info.h"
#include "unit/query_support.h"

namespace {

using norvane::qry_lib_analyze_info;
using norvane::qry_lib_analyze_link_info;
using norvane::QRY_LIB_LINK;
using norvane::qry_lib_sql_parser;
using test::texts;

using queries = std::vector<qry_lib_analyze_info>;

std::string columns_text(const qry_lib_analyze_info &info) {
    std::string text;
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        char table[128];
        char col[32];
        QRY_LIB_COLUMN_VALUE value;
        QRY_LIB_COLUMN_TYPE type;
        EXPECT_EQ(info.get_cols(i, table, col, &value, type), 0u);
        EXPECT_EQ(type, QRY_LIB_COLUMN_TYPE_STR);
        EXPECT_STREQ(value.str_value, "");
        text += (i == 0 ? "" : " ") + std::string(table) + "." + col;
    }
    return text;
}

// "table.column operation join quoted value" of each condition.
texts conditions_text(const qry_lib_analyze_info &info) {
    texts result;
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        char table[128];
        char col[32];
        char value[3000];
        QRY_LIB_OPERATION_TYPE operation;
        QRY_LIB_JOIN_TYPE join;
        std::int32_t quoted = 0;
        EXPECT_EQ(info.get_filter_cols(i, table, col, value, operation, join, quoted), 0u);
        result.push_back(std::string(table) + "." + col + " " + std::to_string(operation) + " " +
                         std::to_string(join) + " " + std::to_string(quoted) + " " + value);
    }
    return result;
}

texts links_text(const qry_lib_analyze_link_info &link_info) {
    texts result;
    for (std::uint16_t i = 0; i < link_info.get_link_num(); ++i) {
        QRY_LIB_LINK link;
        EXPECT_EQ(link_info.get_link(i, link), 0u);
        result.push_back(std::string(link.left.table_name) + "." + link.left.col_name + "=" +
                         link.right.table_name + "." + link.right.col_name);
    }
    return result;
}

std::string select_list_text(const qry_lib_analyze_link_info &link_info) {
    std::string text;
    for (std::uint16_t i = 0; i < link_info.get_cols_num(); ++i) {
        char table[128];
        char col[32];
        EXPECT_EQ(link_info.get_cols(i, table, col), 0u);
        text += (i == 0 ? "" : " ") + std::string(table) + "." + col;
    }
    return text;
}

qry_lib_analyze_info query_on(const char *table) {
    qry_lib_analyze_info query;
    query.add_table(table);
    return query;
}

class link_analysis : public test::trace_test {
  protected:
    // Analyses the text; the code of the split.
    std::uint32_t split(const std::string &sql) {
        qry_lib_analyze_info info;
        link_info.all_clear();
        EXPECT_EQ(parser.analyze_sql_select("some_db", sql.c_str(), info), 0u) << sql;
        EXPECT_EQ(take_chain(), texts{});
        return parser.analyze_sql_select_link(info, link_info);
    }

    qry_lib_analyze_info per_table(std::uint16_t index) {
        qry_lib_analyze_info query;
        EXPECT_EQ(link_info.get_analyze_info(index, query), 0u);
        return query;
    }

    const qry_lib_sql_parser parser{};
    qry_lib_analyze_link_info link_info;
};

TEST_F(link_analysis, a_join_of_two_tables_gives_two_queries_and_a_link) {
    ASSERT_EQ(split("SELECT a.X, b.Y FROM a, b WHERE a.K = b.K ORDER BY a.X DESC"), 0u);
    EXPECT_EQ(link_info.get_analyze_info_num(), 2);
    EXPECT_EQ(columns_text(per_table(0)), "a.X a.K");
    EXPECT_EQ(columns_text(per_table(1)), "b.Y b.K");
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b.K"}));
    EXPECT_EQ(select_list_text(link_info), "a.X b.Y");
    for (const std::uint16_t t : test::indexes{0, 1}) {
        const qry_lib_analyze_info query = per_table(t);
        const char *table = t == 0 ? "a" : "b";
        EXPECT_EQ(query.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_SELECT);
        EXPECT_STREQ(query.get_db_name(), "some_db");
        EXPECT_EQ(query.get_table_num(), 1);
        EXPECT_STREQ(query.get_table(), table);
        EXPECT_EQ(query.get_filter_cols_num(), 0);
        char order_table[128] = "#";
        char order_col[32] = "#";
        QRY_LIB_ODER_TYPE order = QRY_LIB_ODER_TYPE_DESC;
        query.get_order(order_table, order_col, order);
        EXPECT_STREQ(order_table, table);
        EXPECT_STREQ(order_col, "");
        EXPECT_EQ(order, QRY_LIB_ODER_TYPE_NOTHING);
    }
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(link_analysis, an_order_by_is_dropped) {
    link_info.set_order("KEPT", "KEPT", QRY_LIB_ODER_TYPE_ASC);
    qry_lib_analyze_info info;
    ASSERT_EQ(parser.analyze_sql_select("d", "SELECT a.X, b.Y FROM a, b WHERE a.K=b.K ORDER BY a.X", info),
              0u);
    ASSERT_EQ(parser.analyze_sql_select_link(info, link_info), 0u);
    char table[128] = "#";
    char col[32] = "#";
    QRY_LIB_ODER_TYPE order = QRY_LIB_ODER_TYPE_DESC;
    link_info.get_order(table, col, order);
    EXPECT_STREQ(table, "");
    EXPECT_STREQ(col, "");
    EXPECT_EQ(order, QRY_LIB_ODER_TYPE_NOTHING);
}

TEST_F(link_analysis, plain_conditions_go_to_their_own_tables_query) {
    ASSERT_EQ(split("SELECT a.X FROM a, b WHERE a.N >= 5 AND a.K = b.K AND b.S != 'x.y' AND b.T LIKE 'pre%' "
                    "AND a.E = ''"),
              0u);
    EXPECT_EQ(conditions_text(per_table(0)), (texts{"a.N 5 1 0 5", "a.E 0 1 1 "}));
    EXPECT_EQ(conditions_text(per_table(1)), (texts{"b.S 1 1 1 x.y", "b.T 6 1 1 pre"}));
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b.K"}));
}

TEST_F(link_analysis, conditions_of_a_list_keep_their_own_join_word) {
    ASSERT_EQ(split("SELECT a.X FROM a, b WHERE a.K=b.K AND a.N IN (1, 2)"), 0u);
    EXPECT_EQ(conditions_text(per_table(0)), (texts{"a.N 0 2 0 1", "a.N 0 2 0 2"}));
}

TEST_F(link_analysis, blanks_around_the_parts_of_a_name_are_trimmed) {
    ASSERT_EQ(split("SELECT  a . X ,b.Y FROM  a ,  b  WHERE  a . K  =  b . K  AND a . N = 1"), 0u);
    EXPECT_EQ(select_list_text(link_info), "a.X b.Y");
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b.K"}));
    EXPECT_EQ(columns_text(per_table(0)), "a.X a.K");
    EXPECT_EQ(conditions_text(per_table(0)), (texts{"a.N 0 1 0 1"}));
}

TEST_F(link_analysis, a_key_that_is_selected_or_used_already_is_not_added_again) {
    ASSERT_EQ(split("SELECT b.K, a.K FROM a, b, c WHERE a.K=b.K AND b.K=c.K AND c.K=a.L"), 0u);
    EXPECT_EQ(columns_text(per_table(0)), "a.K a.L");
    EXPECT_EQ(columns_text(per_table(1)), "b.K");
    EXPECT_EQ(columns_text(per_table(2)), "c.K");
    EXPECT_EQ(select_list_text(link_info), "b.K a.K");
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b.K", "b.K=c.K", "c.K=a.L"}));
}

TEST_F(link_analysis, a_table_listed_twice_gets_everything_twice) {
    ASSERT_EQ(split("SELECT a.X FROM a, a WHERE a.K=a.L AND a.N=1"), 0u);
    EXPECT_EQ(select_list_text(link_info), "a.X a.X");
    for (const std::uint16_t t : test::indexes{0, 1}) {
        EXPECT_EQ(columns_text(per_table(t)), "a.X a.K a.L");
        EXPECT_EQ(conditions_text(per_table(t)), (texts{"a.N 0 1 0 1"}));
    }
    EXPECT_EQ(links_text(link_info), (texts{"a.K=a.L"}));
}

TEST_F(link_analysis, a_count_selects_the_keys_alone) {
    ASSERT_EQ(split("SELECT COUNT(*) FROM a, b WHERE a.K=b.K AND a.N=1"), 0u);
    EXPECT_EQ(link_info.get_cols_num(), 0);
    EXPECT_EQ(columns_text(per_table(0)), "a.K");
    EXPECT_EQ(columns_text(per_table(1)), "b.K");
    EXPECT_EQ(per_table(0).get_exec_type(), QRY_LIB_DB_QUERY_TYPE_COUNT);
}

TEST_F(link_analysis, other_statements_are_refused_silently) {
    for (const std::uint32_t type : {0u, 1u, 2u, 3u, 6u, 7u}) {
        qry_lib_analyze_info info;
        info.add_table("a");
        info.add_table("b");
        info.set_exec_type(static_cast<QRY_LIB_DB_QUERY_TYPE>(type));
        EXPECT_EQ(parser.analyze_sql_select_link(info, link_info), QRY_LIB_NOT_ACCEPTED);
    }
    EXPECT_EQ(link_info.get_analyze_info_num(), 0);
    EXPECT_EQ(take_chain(), texts{});
}

// A text that is refused, and the traces below those of analyze_sql_select_link.
struct refusal {
    std::string sql;
    texts chain;
};

TEST_F(link_analysis, each_select_list_is_refused_at_its_place) {
    const refusal refusals[] = {
        {"X", {}},
        {"*", {}},
        {"a.X, Y", {}},
        {"a.X.Y", {}},
        {".X", {}},
        {"a.", {}},
        {".", {}},
        {"c.X", {"set_link_select_cols:1705 0xDB00"}},
        {"A.X", {"set_link_select_cols:1705 0xDB00"}},
        {"a.X, b.Y, ab.Z", {"set_link_select_cols:1705 0xDB00"}},
    };
    for (const refusal &row : refusals) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(split("SELECT " + row.sql + " FROM a, b WHERE a.K=b.K"), QRY_LIB_NOT_ACCEPTED);
        texts chain = row.chain;
        chain.push_back("analyze_sql_select_link:368 0xDB00");
        EXPECT_EQ(take_chain(), chain);
        EXPECT_EQ(link_info.get_analyze_info_num(), 0);
    }
}

const texts unknown_side = {"set_link_filter_val:1963 0xDB00", "set_link_filter_cols:1831 0xDB00"};
const texts not_an_equality = {"set_link_filter_cols:1824 0xDB00"};

TEST_F(link_analysis, each_condition_is_refused_at_its_place) {
    const refusal refusals[] = {
        // No join condition, or too few.
        {"a.S='x'", {}},
        {"a.N=5", {}},
        {"a.N=5 AND b.N=6", {}},
        // A column that is not of the form table.column.
        {"K=b.K", {}},
        {"a.K.L=b.K", {}},
        {".K=b.K", {}},
        {"a.=b.K", {}},
        {"a.K=b.K AND S='x'", {}},
        {"a.K=b.K AND a. ='x'", {}},
        // A value that is neither quoted nor a number nor a column.
        {"a.K=b.K AND a.N=x", {}},
        {"a.K=b.K AND a.N=-5", {}},
        {"a.K=b.K AND a.N=5 6", {}},
        {"a.K=b", {}},
        {"a.K=b.K.L", {"set_link_filter_cols:1816 0xDB00"}},
        {"a.K=1.2.3", {"set_link_filter_cols:1816 0xDB00"}},
        // Joins that are no equality, or not joined by AND.
        {"a.K!=b.K", not_an_equality},
        {"a.K<b.K", not_an_equality},
        {"a.K<=b.K", not_an_equality},
        {"a.K>b.K", not_an_equality},
        {"a.K>=b.K", not_an_equality},
        {"a.K LIKE b.K%", not_an_equality},
        {"a.K=b.K OR a.N=1", not_an_equality},
        {"a.K IN (b.K)", not_an_equality},
        // Sides that are not in the FROM list, or not of their form.
        {"a.K=1.5", unknown_side},
        {"a.K=c.K", unknown_side},
        {"c.K=b.K", unknown_side},
        {"a.K=A.K", unknown_side},
        {"a.K=b.", {"set_link_filter_cols:1831 0xDB00"}},
        {"a.K=.K", {"set_link_filter_cols:1831 0xDB00"}},
        {"a.K=.", {"set_link_filter_cols:1831 0xDB00"}},
        {"a.K=b.K AND c.S='x'", {"set_link_filter_cols:1806 0xDB00"}},
        {"c.S='x' AND a.K=b.K", {"set_link_filter_cols:1806 0xDB00"}},
        {"a.K=b.K AND c.N=5", {"set_link_filter_cols:1866 0xDB00"}},
        {"c.N=5 AND a.K=b.K", {"set_link_filter_cols:1866 0xDB00"}},
    };
    for (const refusal &row : refusals) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(split("SELECT a.X FROM a, b WHERE " + row.sql), QRY_LIB_NOT_ACCEPTED);
        texts chain = row.chain;
        chain.push_back("analyze_sql_select_link:376 0xDB00");
        EXPECT_EQ(take_chain(), chain);
        EXPECT_EQ(link_info.get_analyze_info_num(), 0);
    }
}

TEST_F(link_analysis, fewer_conditions_than_joins_are_refused_first) {
    const texts chain = {"set_link_filter_cols:1745 0xDB00", "analyze_sql_select_link:376 0xDB00"};
    EXPECT_EQ(split("SELECT a.X FROM a, b"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), chain);
    EXPECT_EQ(split("SELECT a.X FROM a, b, c WHERE bad=b.K"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), chain);
    EXPECT_EQ(split("SELECT a.X FROM a, b, c WHERE a.K=b.K AND a.N=1"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts{"analyze_sql_select_link:376 0xDB00"});
}

TEST_F(link_analysis, a_single_table_needs_a_condition_but_no_join) {
    EXPECT_EQ(split("SELECT a.X FROM a"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts{"analyze_sql_select_link:376 0xDB00"});
    EXPECT_EQ(split("SELECT a.X FROM a WHERE a.N=1"), 0u);
    EXPECT_EQ(columns_text(per_table(0)), "a.X");
}

TEST_F(link_analysis, what_was_added_before_a_refusal_stays_until_the_model_is_cleared) {
    EXPECT_EQ(split("SELECT a.X FROM a, b WHERE a.K=b.K AND a.N=x"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(select_list_text(link_info), "a.X");
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b.K"}));
}

TEST_F(link_analysis, a_joined_column_beyond_its_capacity_is_refused) {
    const std::string longest(31, 'c');
    EXPECT_EQ(split("SELECT a.X FROM a, b WHERE a.K=b." + longest), 0u);
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b." + longest}));
    EXPECT_EQ(split("SELECT a.X FROM a, b WHERE a.K=b.x" + longest), QRY_LIB_NOT_ACCEPTED);
    const std::vector<std::pair<std::string, std::uint32_t>> codes = {
        {"set_link_filter_val", QRY_LIB_NOT_ACCEPTED},
        {"set_link_filter_cols", QRY_LIB_NOT_ACCEPTED},
        {"analyze_sql_select_link", QRY_LIB_NOT_ACCEPTED}};
    EXPECT_EQ(take_codes(), codes);
}

TEST_F(link_analysis, an_empty_select_list_is_refused_silently) {
    qry_lib_analyze_info info = query_on("a");
    queries per_table(1, query_on("a"));
    EXPECT_EQ(parser.set_link_select_cols(info, per_table, link_info), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(link_analysis, a_query_without_tables_knows_no_column) {
    static constexpr QRY_LIB_COLUMN_VALUE no_value{};
    qry_lib_analyze_info info;
    info.add_cols("a", "a.X", no_value, QRY_LIB_COLUMN_TYPE_STR);
    queries per_table;
    EXPECT_EQ(parser.set_link_select_cols(info, per_table, link_info), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts{"set_link_select_cols:1705 0xDB00"});
}

TEST_F(link_analysis, more_selected_columns_than_16_bits_count_are_refused) {
    static constexpr QRY_LIB_COLUMN_VALUE no_value{};
    for (int i = 0; i < 65534; ++i) {
        link_info.add_cols("b", "Y");
    }
    qry_lib_analyze_info info;
    info.add_table("a");
    info.add_table("a");
    info.add_cols("a", "a.X", no_value, QRY_LIB_COLUMN_TYPE_STR);
    queries per_table(2, query_on("a"));
    EXPECT_EQ(parser.set_link_select_cols(info, per_table, link_info), QRY_LIB_NOT_ACCEPTED);
    const std::vector<std::pair<std::string, std::uint32_t>> codes = {
        {"set_link_select_cols", QRY_LIB_NOT_ACCEPTED}};
    EXPECT_EQ(take_codes(), codes);
    EXPECT_EQ(link_info.get_cols_num(), 65535);
}

TEST_F(link_analysis, more_conditions_over_all_tables_than_16_bits_count_are_refused) {
    qry_lib_analyze_info info;
    queries per_table;
    for (int t = 0; t < 9; ++t) {
        info.add_table("a");
        per_table.push_back(query_on("a"));
    }
    for (int i = 0; i < 7282; ++i) { // nine times 7281 is 65529
        info.add_filter_cols("a.X", "1", QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND, 0);
    }
    EXPECT_EQ(parser.set_link_filter_cols(info, per_table, link_info), QRY_LIB_NOT_ACCEPTED);
    const std::vector<std::pair<std::string, std::uint32_t>> codes = {
        {"set_link_filter_cols", QRY_LIB_NOT_ACCEPTED}};
    EXPECT_EQ(take_codes(), codes);
    EXPECT_EQ(per_table[5].get_filter_cols_num(), 7282);
    EXPECT_EQ(per_table[6].get_filter_cols_num(), 7281);
}

class link_condition : public link_analysis {
  protected:
    link_condition() {
        info.add_table("a");
        info.add_table("b");
        for (const char *table : {"a", "b"}) {
            per_table.push_back(query_on(table));
        }
    }

    std::uint32_t link(const char *col, const char *value) {
        info.add_filter_cols(col, value, QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND, 0);
        return parser.set_link_filter_val(static_cast<unsigned short>(info.get_filter_cols_num() - 1), info,
                                          per_table, link_info);
    }

    qry_lib_analyze_info info;
    queries per_table;
};

TEST_F(link_condition, becomes_a_link_and_two_key_columns) {
    EXPECT_EQ(link("a.K", "b.L"), 0u);
    EXPECT_EQ(links_text(link_info), (texts{"a.K=b.L"}));
    EXPECT_EQ(columns_text(per_table[0]), "a.K");
    EXPECT_EQ(columns_text(per_table[1]), "b.L");
    QRY_LIB_LINK made;
    ASSERT_EQ(link_info.get_link(0, made), 0u);
    EXPECT_EQ(made.left.type, QRY_LIB_COLUMN_TYPE_INT);
    EXPECT_EQ(made.right.value.int_value, 0);
}

TEST_F(link_condition, beyond_the_last_is_refused) {
    EXPECT_EQ(parser.set_link_filter_val(0, info, per_table, link_info), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts{"set_link_filter_val:1914 0xDB02"});
}

TEST_F(link_condition, of_another_form_is_refused_with_the_code_of_the_split) {
    EXPECT_EQ(link("K", "b.K"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(link("a.K.L", "b.K"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts(2, "set_link_filter_val:1923 0x0"));
    EXPECT_EQ(link("a.K", "5"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(link("a.K", "b.K.L"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts(2, "set_link_filter_val:1929 0x0"));
    EXPECT_EQ(link("a. ", "b.K"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), texts{});
    EXPECT_EQ(link_info.get_link_num(), 0);
}

TEST_F(link_condition, on_a_query_without_a_table_is_refused) {
    per_table.insert(per_table.begin(), qry_lib_analyze_info());
    EXPECT_EQ(link("c.K", "a.K"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_chain(), (texts{"get_is_table:2069 0xDB02", "set_link_filter_val:1963 0xDB00"}));
}

TEST_F(link_condition, without_room_for_its_key_column_is_refused) {
    static constexpr QRY_LIB_COLUMN_VALUE no_value{};
    for (int i = 0; i < 65535; ++i) {
        per_table[0].add_cols("a", "X", no_value, QRY_LIB_COLUMN_TYPE_STR);
    }
    EXPECT_EQ(link("a.K", "b.K"), QRY_LIB_NOT_ACCEPTED);
    const std::vector<std::pair<std::string, std::uint32_t>> codes = {
        {"set_link_filter_val", QRY_LIB_NOT_ACCEPTED}};
    EXPECT_EQ(take_codes(), codes);
    EXPECT_EQ(per_table[0].get_cols_num(), 65535);
    EXPECT_EQ(link("a.X", "b.K"), 0u);
    EXPECT_EQ(link("b.L", "a.K"), QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(take_codes(), codes);
    EXPECT_EQ(columns_text(per_table[1]), "b.K b.L");
}

TEST_F(link_condition, each_memory_failure_ends_it_at_its_place) {
    info.add_filter_cols("a.K", "b.K", QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND, 0);
    const texts split = {"divide_keyword:1063 0x1"};
    const texts trim = {"trim_space_front_rear:2403 0x1"};
    const texts expected[] = {
        {split[0], "set_link_filter_val:1923 0x1"},
        {split[0], "set_link_filter_val:1929 0x1"},
        trim,
        trim,
        trim,
        trim,
    };
    std::uint32_t code = 0;
    std::uint32_t tried = 0;
    const std::uint32_t blocks = qryhost_pool_blocks();
    test::with_each_block_refused([&] { code = parser.set_link_filter_val(0, info, per_table, link_info); },
                                  [&](std::uint32_t let_through) {
                                      ASSERT_LT(let_through, std::size(expected));
                                      EXPECT_EQ(code, QRY_LIB_NOT_ACCEPTED);
                                      EXPECT_EQ(take_chain(), expected[let_through]);
                                      EXPECT_EQ(qryhost_pool_blocks(), blocks);
                                      ++tried;
                                  });
    EXPECT_EQ(tried, 2 * std::size(expected));
}

TEST_F(link_analysis, each_memory_failure_ends_it_at_its_place) {
    const texts split = {"divide_keyword:1063 0x1"};
    const texts trim = {"trim_space_front_rear:2403 0x1"};
    const std::string in_value = "set_link_filter_cols:1831 0xDB00";
    const std::string in_select = "analyze_sql_select_link:368 0xDB00";
    const std::string in_filter = "analyze_sql_select_link:376 0xDB00";
    const texts expected[] = {
        // The selected column: its split, its two parts.
        {split[0], in_select},
        {trim[0], in_select},
        {trim[0], in_select},
        // The condition: its column; then the join takes both sides apart.
        {split[0], in_filter},
        {trim[0], in_filter},
        {trim[0], in_filter},
        {split[0], "set_link_filter_val:1923 0x1", in_value, in_filter},
        {split[0], "set_link_filter_val:1929 0x1", in_value, in_filter},
        {trim[0], in_value, in_filter},
        {trim[0], in_value, in_filter},
        {trim[0], in_value, in_filter},
        {trim[0], in_value, in_filter},
        // The plain condition behind it.
        {split[0], in_filter},
        {trim[0], in_filter},
        {trim[0], in_filter},
    };
    qry_lib_analyze_info info;
    ASSERT_EQ(parser.analyze_sql_select("d", "SELECT a.X FROM a, b WHERE a.K=b.K AND b.N=5", info), 0u);
    std::uint32_t code = 0;
    std::uint32_t tried = 0;
    const std::uint32_t blocks = qryhost_pool_blocks();
    test::with_each_block_refused(
        [&] {
            link_info.all_clear();
            code = parser.analyze_sql_select_link(info, link_info);
        },
        [&](std::uint32_t let_through) {
            ASSERT_LT(let_through, std::size(expected));
            EXPECT_EQ(code, QRY_LIB_NOT_ACCEPTED);
            EXPECT_EQ(take_chain(), expected[let_through]);
            EXPECT_EQ(qryhost_pool_blocks(), blocks);
            ++tried;
        });
    EXPECT_EQ(tried, 2 * std::size(expected));
}

} // namespace
