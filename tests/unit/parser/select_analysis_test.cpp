// SELECT: the clauses a text is cut into, what they yield, where each refusal is traced.
#include <cstring>

#include "unit/parser/parser_test.h"

namespace {

using test::at;
using test::conditions;
using test::outcome;
using test::refused;
using test::texts;
using test::traces;

class select_analysis : public test::parser_test {
  protected:
    std::uint32_t analyze(const std::string &sql) {
        info.all_clear();
        return parser.analyze_sql_select("adbk_db", sql.c_str(), info);
    }

    std::uint32_t divide(const char *sql) {
        cols = tables_text = where = sort = "untouched";
        return parser.divide_select_reserve_str(sql, cols, tables_text, where, sort);
    }

    std::uint32_t analyze_sort(const char *phrase) {
        column.assign(std::strlen(phrase) + 1, '\0');
        direction = 9;
        return parser.analyze_sort(phrase, column.data(), direction);
    }

    // What a text is refused with that could not be cut into clauses.
    static traces uncut(int line) {
        return {at("divide_select_reserve_str", line), at("analyze_sql_select", 165)};
    }

    static traces uncut(const test::return_trace &helper, int line) {
        return {helper, at("divide_select_reserve_str", line), at("analyze_sql_select", 165)};
    }

    // What a text is refused with whose sort phrase was refused.
    static traces unsorted(int line) {
        return {at("analyze_sort", line), at("set_sort_str", 1604), at("analyze_sql_select", 222)};
    }

    std::string cols;
    std::string tables_text;
    std::string where;
    std::string sort;
    std::string column;
    unsigned char direction = 9;
};

TEST_F(select_analysis, texts_become_tables_columns_conditions_and_sort) {
    struct {
        const char *sql;
        texts tables;
        texts columns;
        conditions filters;
        const char *order;
    } const rows[] = {
        {"SELECT * FROM adbk", {"adbk"}, {"*"}, {}, " 0"},
        {"SELECT PSN_ID, NAME FROM adbk WHERE PSN_ID > 3 ORDER BY NAME DESC",
         {"adbk"},
         {"PSN_ID", "NAME"},
         {greater("PSN_ID", "3")},
         "NAME 2"},
        {"SELECT a.X, b.Y FROM a, b WHERE a.K = b.K",
         {"a", "b"},
         {"a.X", "b.Y"},
         {equal("a.K", "b.K")},
         " 0"},
        {"  SELECT   X ,  Y   FROM   t  ", {"t"}, {"X", "Y"}, {}, " 0"},
        {"SELECT  X  FROM  t  WHERE  A = 1  ORDER   BY  X  ASC ", {"t"}, {"X"}, {equal("A", "1")}, "X 1"},
        {"SELECT X Y FROM t", {"t"}, {"XY"}, {}, " 0"},
        {"SELECT X FROM t u", {"t u"}, {"X"}, {}, " 0"},
        {"SELECT X FROM  a , b ,c ", {"a", "b", "c"}, {"X"}, {}, " 0"},
        {"SELECT X FROM a,a", {"a", "a"}, {"X"}, {}, " 0"},
        {"SELECT X FROM t ORDER BY Y", {"t"}, {"X"}, {}, "Y 1"},
        {"SELECT X FROM t ORDER BY NAME DESC xyz", {"t"}, {"X"}, {}, "NAME 2"},
        {"SELECT X FROM t ORDER BY X WHERE A = 1", {"t"}, {"X"}, {}, "X WHERE A = 1 1"},
        {"SELECT X FROM t ORDER BY ", {"t"}, {"X"}, {}, " 0"},
        {"SELECT X FROM t ORDER BY    ", {"t"}, {"X"}, {}, " 0"},
        {"SELECT X FROM t WHERE", {"t WHERE"}, {"X"}, {}, " 0"},
        {"SELECT X FROM t WHERE ", {"t WHERE"}, {"X"}, {}, " 0"},
        {"SELECT X FROM t where A = 1", {"t where A = 1"}, {"X"}, {}, " 0"},
        {"SELECT X\t FROM t\n", {"t\n"}, {"X\t"}, {}, " 0"},
        {"SELECT count(*) FROM t", {"t"}, {"count(*)"}, {}, " 0"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(analyze(row.sql), 0u);
        EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_SELECT);
        EXPECT_STREQ(info.get_db_name(), "adbk_db");
        EXPECT_EQ(tables(info), row.tables);
        EXPECT_EQ(columns(info), row.columns);
        EXPECT_EQ(filters(info), row.filters);
        EXPECT_EQ(order(info), row.order);
        EXPECT_TRUE(take_traces().empty());
    }
}

TEST_F(select_analysis, order_by_without_anything_behind_it_is_part_of_the_table_name) {
    EXPECT_EQ(analyze("SELECT X FROM t ORDER BY"), 0u);
    EXPECT_EQ(tables(info), (texts{"t ORDER BY"}));
    EXPECT_EQ(order(info), " 0");
    EXPECT_EQ(take_traces(), (traces{at("divide_two_keyword", 1158)}));
}

TEST_F(select_analysis, count_records_no_column) {
    struct {
        const char *sql;
        texts tables;
        conditions filters;
    } const rows[] = {
        {"SELECT COUNT(*) FROM adbk WHERE NAME LIKE 'a%'", {"adbk"}, {like("NAME", "a").in_quotes()}},
        {"SELECT COUNT ( * ) FROM adbk", {"adbk"}, {}},
        {"SELECT xCOUNT(*)y FROM adbk", {"adbk"}, {}},
        {"SELECT COUNT(*)COUNT(*) FROM a, b", {"a", "b"}, {}},
        {"SELECT COUNT(*) FROM t ORDER BY  ", {"t"}, {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(analyze(row.sql), 0u);
        EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_COUNT);
        EXPECT_EQ(tables(info), row.tables);
        EXPECT_EQ(info.get_cols_num(), 0);
        EXPECT_EQ(filters(info), row.filters);
        EXPECT_TRUE(take_traces().empty());
    }
}

TEST_F(select_analysis, a_column_has_no_value_yet) {
    EXPECT_EQ(analyze("SELECT X FROM t, u"), 0u);
    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value;
    QRY_LIB_COLUMN_TYPE type;
    std::memset(&value, 0x5A, sizeof value);
    EXPECT_EQ(info.get_cols(0, table, col, &value, type), 0u);
    const QRY_LIB_COLUMN_VALUE zero{};
    EXPECT_EQ(std::memcmp(&value, &zero, sizeof value), 0);
    EXPECT_EQ(type, QRY_LIB_COLUMN_TYPE_STR);
    EXPECT_STREQ(table, "t");
}

TEST_F(select_analysis, refusals_are_traced_where_they_are_found) {
    const auto no_second = at("divide_two_keyword", 1158);
    struct {
        const char *sql;
        traces traced;
    } const rows[] = {
        {"select X from t", uncut(936)},
        {"", uncut(936)},
        {"SELECT", uncut(936)},
        {"SELECT X FROM t, SELECT Y FROM u", uncut(936)},
        {"SELECT\tX FROM t", uncut(936)},
        {"x SELECT X FROM t", uncut(945)},
        {"SELECT FROM t", uncut(957)},
        {"SELECT X FROM", uncut(957)},
        {"SELECT X from t", uncut(957)},
        {"SELECT X FROM t FROM u", uncut(957)},
        {"SELECT  FROM t", uncut(967)},
        {"SELECT     FROM t", uncut(967)},
        {"SELECT X FROM t ORDER BY A ORDER BY B", uncut(985)},
        {"SELECT X FROM t ORDER BY A BY B", uncut(no_second, 985)},
        {"SELECT X FROM t WHERE A = 1 WHERE B = 2", uncut(1007)},
        {"SELECT X FROM ", uncut(1019)},
        {"SELECT X FROM    ", uncut(1019)},
        {"SELECT X FROM  ORDER BY A", uncut(1019)},
        {"SELECT X FROM a,,b", {at("analyze_sql_select", 191)}},
        {"SELECT X FROM a, ", {at("analyze_sql_select", 191)}},
        {"SELECT X FROM ,", {at("analyze_sql_select", 191)}},
        {"SELECT X FROM t WHERE A",
         {at("divide_operate", 1271), at("set_filter_str", 1534), at("analyze_sql_select", 213)}},
        {"SELECT X FROM t WHERE A = 1 AND B = 2 OR C = 3",
         {at("set_filter_str", 1527, 0), at("analyze_sql_select", 213)}},
        {"SELECT X FROM t ORDER BY X, Y", unsorted(2182)},
        {"SELECT X FROM t ORDER BY X ASC DESC", unsorted(2194)},
        {"SELECT X FROM t ORDER BY X DESC DESC", unsorted(2226)},
        {"SELECT X FROM t ORDER BY X ASC ASC", unsorted(2226)},
        {"SELECT X FROM t ORDER BY  DESC", unsorted(2243)},
        {"SELECT COUNT(*), X FROM t", {at("analyze_sql_select", 242, 0)}},
        {"SELECT COUNT(*), X FROM t ORDER BY X", {at("analyze_sql_select", 242, 0)}},
        {"SELECT X, Y, aCOUNT(*) FROM t", {at("analyze_sql_select", 242, 0)}},
        {"SELECT COUNT(*) FROM t ORDER BY X", {at("analyze_sql_select", 249, 0)}},
        {"SELECT X, FROM t", {at("analyze_sql_select", 289)}},
        {"SELECT ,X FROM t", {at("analyze_sql_select", 289)}},
        {"SELECT X, ,Y FROM t", {at("analyze_sql_select", 289)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.sql);
        EXPECT_EQ(analyze(row.sql), refused);
        EXPECT_STREQ(info.get_db_name(), "adbk_db");
        EXPECT_EQ(take_traces(), row.traced);
    }
}

TEST_F(select_analysis, a_refused_column_list_leaves_tables_conditions_and_sort) {
    EXPECT_EQ(analyze("SELECT X, FROM t, u WHERE A = 1 ORDER BY B DESC"), refused);
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_SELECT);
    EXPECT_EQ(tables(info), (texts{"t", "u"}));
    EXPECT_EQ(columns(info), (texts{"X"}));
    EXPECT_EQ(filters(info), (conditions{equal("A", "1")}));
    EXPECT_EQ(order(info), "B 2");

    EXPECT_EQ(analyze("SELECT COUNT(*) FROM t WHERE A = 1 ORDER BY B"), refused);
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_NONE);
    EXPECT_EQ(order(info), "B 1");

    EXPECT_EQ(analyze("SELECT X FROM a,,b WHERE A = 1"), refused);
    EXPECT_EQ(tables(info), (texts{"a"}));
    EXPECT_EQ(info.get_filter_cols_num(), 0);
}

TEST_F(select_analysis, clauses_are_cut_as_written) {
    EXPECT_EQ(divide("SELECT A, B FROM  t  WHERE  A = 1  ORDER BY  B "), 0u);
    EXPECT_EQ(cols, "A,B");
    EXPECT_EQ(tables_text, "t");
    EXPECT_EQ(where, " A = 1 ");
    EXPECT_EQ(sort, " B ");
    EXPECT_EQ(divide("SELECT A FROM t, u ORDER BY   "), 0u);
    EXPECT_EQ(tables_text, "t, u");
    EXPECT_EQ(where, "untouched");
    EXPECT_EQ(sort, "untouched");
    EXPECT_EQ(divide("A FROM t"), refused);
    EXPECT_EQ(cols, "untouched");
    EXPECT_EQ(tables_text, "untouched");
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 77);
    EXPECT_EQ(divide("SELECT A FROM t"), 1u);
    EXPECT_EQ(take_traces(),
              (traces{at("divide_select_reserve_str", 936), at("divide_select_reserve_str", 924, 1)}));
}

TEST_F(select_analysis, sort_phrases_name_a_column_and_a_direction) {
    struct {
        const char *phrase;
        const char *column;
        int direction;
    } const rows[] = {
        {"X", "X", 1},          {" X ", "X", 1},          {"X ASC", "X", 1},      {"X DESC", "X", 2},
        {" X   DESC ", "X", 2}, {"X DESCENDING", "X", 2}, {"X ASCII", "X", 1},    {"X asc", "X asc", 1},
        {"DESC", "DESC", 1},    {"T.X DESC", "T.X", 2},   {"X DESC y z", "X", 2}, {"X Y ASC", "X Y", 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.phrase);
        EXPECT_EQ(analyze_sort(row.phrase), 0u);
        EXPECT_STREQ(column.c_str(), row.column);
        EXPECT_EQ(direction, row.direction);
        info.set_table("T");
        EXPECT_EQ(parser.set_sort_str(row.phrase, info), 0u);
        EXPECT_EQ(order(info), std::string(row.column) + " " + std::to_string(row.direction));
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(select_analysis, a_blank_sort_phrase_is_accepted_and_leaves_the_direction) {
    for (const char *phrase : {"", "   "}) {
        SCOPED_TRACE(phrase);
        EXPECT_EQ(analyze_sort(phrase), 0u);
        EXPECT_STREQ(column.c_str(), "");
        EXPECT_EQ(direction, 9);
        EXPECT_EQ(parser.set_sort_str(phrase, info), 0u);
        EXPECT_EQ(order(info), " 0");
        EXPECT_EQ(take_traces(), (traces{at("analyze_sort", 2203, 0), at("analyze_sort", 2203, 0)}));
    }
}

TEST_F(select_analysis, refused_sort_phrases_store_no_sort_key) {
    const std::pair<const char *, int> rows[] = {
        {"X, Y", 2182}, {",", 2182},       {"X ASC DESC", 2194},  {"X DESC ASC", 2194},
        {" ASC", 2243}, {"   DESC", 2243}, {"X DESC DESC", 2226}, {" ASC ASC", 2226}};
    for (const auto &[phrase, line] : rows) {
        SCOPED_TRACE(phrase);
        EXPECT_EQ(parser.set_sort_str(phrase, info), refused);
        EXPECT_EQ(order(info), " 0");
        EXPECT_EQ(take_traces(), (traces{at("analyze_sort", line), at("set_sort_str", 1604)}));
    }
}

TEST_F(select_analysis, each_allocation_of_a_sort_phrase_may_fail) {
    const auto passed_on = [](std::uint32_t code) { return at("set_sort_str", 1604, code); };
    const auto in_place = test::no_trim_block_in_place();
    expect_outcomes(
        {{1, {at("set_sort_str", 1597, 1)}}, {1, {in_place, at("analyze_sort", 2203, 1), passed_on(1)}}},
        [this] { return parser.set_sort_str(" X", info); });
    expect_outcomes({{1, {at("set_sort_str", 1597, 1)}},
                     {refused, {test::no_split_block(), at("analyze_sort", 2226), passed_on(refused)}},
                     {1, {at("analyze_sort", 2234, 1), passed_on(1)}},
                     {refused, {in_place, at("analyze_sort", 2243), passed_on(refused)}}},
                    [this] { return parser.set_sort_str("X  DESC", info); });
}

TEST_F(select_analysis, each_allocation_of_a_select_may_fail) {
    const auto split = test::no_split_block();
    const auto trim = test::no_trim_block();
    const auto in_place = test::no_trim_block_in_place();
    const auto cut = at("analyze_sql_select", 165);
    const auto unordered = at("divide_select_reserve_str", 985);
    const auto filtered = at("set_filter_str", 1534);
    const auto condition = at("analyze_sql_select", 213);
    const auto sorted = at("analyze_sql_select", 222);
    expect_outcomes({{refused, {at("divide_select_reserve_str", 924, 1), cut}},
                     {refused, uncut(split, 936)},
                     {refused, uncut(trim, 945)},
                     {refused, uncut(split, 957)},
                     {refused, uncut(at("trim_space_all", 2278, 1), 967)},
                     {refused, uncut(split, 985)},
                     {refused, uncut(at("divide_two_keyword", 1145, 1), 985)},
                     {refused, {split, at("divide_two_keyword", 1158), unordered, cut}},
                     {refused, {trim, at("divide_two_keyword", 1170), unordered, cut}},
                     {refused, uncut(split, 1007)},
                     {refused, uncut(at("divide_where_str", 1465, 1), 1007)},
                     {refused, uncut(in_place, 1007)},
                     {refused, uncut(trim, 1007)},
                     {refused, {split, at("analyze_sql_select", 172)}},
                     {1, {at("analyze_sql_select", 180, 1)}},
                     {1, {at("analyze_sql_select", 180, 1)}},
                     {refused, {in_place, at("analyze_sql_select", 191)}},
                     {refused, {at("divide_operate", 1235, 1), filtered, condition}},
                     {refused, {trim, at("divide_operate", 1294), filtered, condition}},
                     {refused, {trim, at("divide_operate", 1300), filtered, condition}},
                     {refused, {at("set_sort_str", 1597, 1), sorted}},
                     {refused, {split, at("analyze_sort", 2226), at("set_sort_str", 1604), sorted}},
                     {refused, {at("analyze_sort", 2234, 1), at("set_sort_str", 1604, 1), sorted}},
                     {refused, {in_place, at("analyze_sort", 2243), at("set_sort_str", 1604), sorted}},
                     {1, {at("analyze_sql_select", 231, 1)}},
                     {refused, {split, at("analyze_sql_select", 269)}}},
                    [this] { return analyze("SELECT A, B FROM t, u WHERE A = 1 ORDER BY B  DESC"); });
}

TEST_F(select_analysis, each_allocation_of_the_shortest_select_may_fail) {
    const auto split = test::no_split_block();
    const auto trim = test::no_trim_block();
    expect_outcomes({{refused, {at("divide_select_reserve_str", 924, 1), at("analyze_sql_select", 165)}},
                     {refused, uncut(split, 936)},
                     {refused, uncut(trim, 945)},
                     {refused, uncut(split, 957)},
                     {refused, uncut(at("trim_space_all", 2278, 1), 967)},
                     {refused, uncut(split, 985)},
                     {refused, uncut(split, 1007)},
                     {refused, uncut(trim, 1019)},
                     {refused, {split, at("analyze_sql_select", 172)}},
                     {1, {at("analyze_sql_select", 231, 1)}},
                     {refused, {split, at("analyze_sql_select", 269)}}},
                    [this] { return analyze("SELECT A FROM t"); });
}

TEST_F(select_analysis, names_are_accepted_up_to_their_capacity) {
    const std::string name(QRY_LIB_COLUMN_NAME_MAX, 'c');
    const std::string table(QRY_LIB_TABLE_NAME_MAX, 't');
    EXPECT_EQ(analyze("SELECT " + name + " FROM " + table + " ORDER BY " + name), 0u);
    EXPECT_EQ(columns(info), (texts{name}));
    EXPECT_EQ(tables(info), (texts{table}));
    EXPECT_EQ(order(info), name + " 1");
    EXPECT_EQ(analyze("SELECT A," + name + " FROM u, " + table), 0u);
    EXPECT_EQ(tables(info), (texts{"u", table}));
    EXPECT_TRUE(take_codes().empty());

    const test::codes once = {{"analyze_sql_select", refused}};
    for (const std::string &sql :
         {"SELECT c" + name + " FROM t", "SELECT A,c" + name + " FROM t", "SELECT t.A,t." + name + " FROM t",
          "SELECT A FROM t" + table, "SELECT A FROM u,t" + table}) {
        SCOPED_TRACE(sql);
        EXPECT_EQ(analyze(sql), refused);
        EXPECT_EQ(take_codes(), once);
    }
    EXPECT_EQ(analyze("SELECT A FROM t ORDER BY c" + name + " DESC"), refused);
    EXPECT_EQ(take_codes(), (test::codes{{"set_sort_str", refused}, {"analyze_sql_select", refused}}));
    EXPECT_EQ(order(info), " 0");
}

TEST_F(select_analysis, no_more_columns_or_tables_than_16_bits_count) {
    std::string list = "A";
    for (int i = 1; i < UINT16_MAX; ++i) {
        list += ",A";
    }
    EXPECT_EQ(analyze("SELECT " + list + " FROM " + list), 0u);
    EXPECT_EQ(info.get_cols_num(), UINT16_MAX);
    EXPECT_EQ(info.get_table_num(), UINT16_MAX);
    EXPECT_TRUE(take_codes().empty());
    const test::codes once = {{"analyze_sql_select", refused}};
    EXPECT_EQ(analyze("SELECT A," + list + " FROM t"), refused);
    EXPECT_EQ(take_codes(), once);
    EXPECT_EQ(info.get_cols_num(), 0);
    EXPECT_EQ(analyze("SELECT A FROM t," + list), refused);
    EXPECT_EQ(take_codes(), once);
    EXPECT_EQ(info.get_table_num(), 0);
}

TEST_F(select_analysis, a_megabyte_of_text_is_handled_like_any_other) {
    const std::string filler(1024 * 1024, 'x');
    const std::string blanks(1024 * 1024, ' ');
    for (const std::string &sql :
         {filler, "SELECT " + filler, "SELECT " + filler + " FROM t", "SELECT A FROM " + filler,
          "SELECT A FROM t WHERE A = " + filler, "SELECT A FROM t ORDER BY " + filler,
          "SELECT A FROM t ORDER BY " + filler + " DESC"}) {
        SCOPED_TRACE(sql.substr(0, 40));
        EXPECT_EQ(analyze(sql), refused);
        EXPECT_FALSE(take_codes().empty());
    }
    EXPECT_EQ(analyze("SELECT" + blanks + "A" + blanks + "FROM" + blanks + "t" + blanks), 0u);
    EXPECT_EQ(columns(info), (texts{"A"}));
    EXPECT_EQ(tables(info), (texts{"t"}));
}

} // namespace
