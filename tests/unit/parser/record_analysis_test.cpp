// Statement records: the analyzed query that each becomes, and where each refusal is traced.
#include <cstring>

#include "unit/parser/parser_test.h"

namespace {

using test::at;
using test::conditions;
using test::refused;
using test::texts;
using test::traces;

class record_analysis : public test::parser_test {
  protected:
    // A record in the test's own memory; the parser only reads it.
    void set_columns(const texts &names) {
        cols.assign(names.size(), QRY_LIB_COLUMN{});
        for (std::size_t i = 0; i < names.size(); ++i) {
            std::strcpy(cols[i].col_name, names[i].c_str());
            cols[i].type = QRY_LIB_COLUMN_TYPE_USHORT;
            cols[i].value.ushort_value = static_cast<std::uint16_t>(i + 1);
        }
        stmt.record.col_num = static_cast<std::int32_t>(names.size());
        stmt.record.cols = cols.data();
    }

    void set(std::uint32_t type, const std::string &table, const texts &names, const std::string &where = "",
             const std::string &order_by = "") {
        table_ = table;
        where_ = where;
        order_ = order_by;
        stmt = {};
        stmt.exec_type = static_cast<QRY_LIB_DB_QUERY_TYPE>(type);
        stmt.table_name = table_.data();
        stmt.where_phrase = where_.data();
        stmt.orderby_phrase = order_.data();
        std::strcpy(stmt.db_name, "adbk_db");
        set_columns(names);
    }

    std::uint32_t analyze() {
        info.all_clear();
        return parser.analyze_param(&stmt, info);
    }

    void expect_refused(const traces &traced) {
        EXPECT_EQ(analyze(), refused);
        EXPECT_EQ(take_traces(), traced);
    }

    qry_lib_db_stmt_ stmt{};
    std::vector<QRY_LIB_COLUMN> cols;

  private:
    std::string table_;
    std::string where_;
    std::string order_;
};

constexpr std::uint32_t insert = QRY_LIB_DB_QUERY_TYPE_INSERT;
constexpr std::uint32_t update = QRY_LIB_DB_QUERY_TYPE_UPDATE;
constexpr std::uint32_t remove_rows = QRY_LIB_DB_QUERY_TYPE_DELETE;
constexpr std::uint32_t select_rows = QRY_LIB_DB_QUERY_TYPE_SELECT;

TEST_F(record_analysis, other_types_are_refused_in_silence) {
    for (const std::uint32_t type : {0u, 5u, 6u, 7u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(type);
        set(type, "T", {"A"});
        expect_refused({});
        EXPECT_EQ(info.get_table_num(), 0);
        EXPECT_STREQ(info.get_db_name(), "");
    }
}

TEST_F(record_analysis, insert_and_update_and_select_take_columns_with_their_values) {
    for (const std::uint32_t type : {insert, update, select_rows}) {
        SCOPED_TRACE(type);
        set(type, "T", {"A", "B"});
        std::memset(&cols[1].value, 0x5A, sizeof cols[1].value);
        cols[1].type = QRY_LIB_COLUMN_TYPE_ULONG;
        EXPECT_EQ(analyze(), 0u);
        EXPECT_EQ(info.get_exec_type(), type);
        EXPECT_STREQ(info.get_db_name(), "adbk_db");
        EXPECT_EQ(tables(info), (texts{"T"}));
        EXPECT_EQ(columns(info), (texts{"A", "B"}));
        EXPECT_EQ(info.get_filter_cols_num(), 0);
        EXPECT_EQ(order(info), " 0");

        char table[QRY_LIB_TABLE_NAME_MAX + 1];
        char col[QRY_LIB_COLUMN_NAME_MAX + 1];
        QRY_LIB_COLUMN_VALUE value;
        QRY_LIB_COLUMN_TYPE value_type;
        EXPECT_EQ(info.get_cols(0, table, col, &value, value_type), 0u);
        EXPECT_STREQ(table, "T");
        EXPECT_EQ(value.ushort_value, 1);
        EXPECT_EQ(value_type, QRY_LIB_COLUMN_TYPE_USHORT);
        EXPECT_EQ(info.get_cols(1, table, col, &value, value_type), 0u);
        EXPECT_EQ(std::memcmp(&value, &cols[1].value, sizeof value), 0);
        EXPECT_EQ(value_type, QRY_LIB_COLUMN_TYPE_ULONG);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(record_analysis, each_type_reads_its_own_fields) {
    struct {
        std::uint32_t type;
        texts columns;
        conditions filters;
        const char *order;
    } const rows[] = {
        {insert, {"A"}, {}, " 0"},
        {update, {"A"}, {equal("B", "2")}, " 0"},
        {remove_rows, {}, {equal("B", "2")}, " 0"},
        {select_rows, {"A"}, {equal("B", "2")}, "C 2"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type);
        set(row.type, "T", {"A"}, "B = 2", "C DESC");
        EXPECT_EQ(analyze(), 0u);
        EXPECT_EQ(info.get_exec_type(), row.type);
        EXPECT_STREQ(info.get_db_name(), "adbk_db");
        EXPECT_EQ(tables(info), (texts{"T"}));
        EXPECT_EQ(columns(info), row.columns);
        EXPECT_EQ(filters(info), row.filters);
        EXPECT_EQ(order(info), row.order);
    }
}

TEST_F(record_analysis, null_phrases_are_absent_phrases) {
    for (const std::uint32_t type : {update, remove_rows, select_rows}) {
        SCOPED_TRACE(type);
        set(type, "T", {"A"});
        stmt.where_phrase = nullptr;
        stmt.orderby_phrase = nullptr;
        EXPECT_EQ(analyze(), 0u);
        EXPECT_EQ(info.get_filter_cols_num(), 0);
        EXPECT_EQ(order(info), " 0");
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(record_analysis, an_empty_or_unset_table_name_is_refused) {
    const std::pair<std::uint32_t, test::return_trace> rows[] = {
        {insert, at("analyze_param_insert", 757)},
        {update, at("analyze_param_update", 812)},
        {remove_rows, at("analyze_param_delete", 872)},
        {select_rows, at("analyze_param_select", 668)}};
    for (const auto &[type, traced] : rows) {
        SCOPED_TRACE(type);
        set(type, "", {"A"});
        expect_refused({traced});
        stmt.table_name = nullptr;
        expect_refused({traced});
        EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_NONE);
        EXPECT_STREQ(info.get_db_name(), "");
    }
}

TEST_F(record_analysis, a_record_without_columns_is_refused) {
    const std::pair<std::uint32_t, test::return_trace> rows[] = {
        {insert, at("analyze_param_insert", 757)},
        {update, at("analyze_param_update", 812)},
        {select_rows, at("analyze_param_select", 668)}};
    for (const auto &[type, traced] : rows) {
        SCOPED_TRACE(type);
        set(type, "T", {});
        expect_refused({traced});
    }
    set(remove_rows, "T", {});
    EXPECT_EQ(analyze(), 0u);
}

TEST_F(record_analysis, a_column_without_a_name_is_refused_behind_the_columns_before_it) {
    const std::pair<std::uint32_t, test::return_trace> rows[] = {
        {insert, at("analyze_param_insert", 774)},
        {update, at("analyze_param_update", 829)},
        {select_rows, at("analyze_param_select", 699)}};
    for (const auto &[type, traced] : rows) {
        SCOPED_TRACE(type);
        set(type, "T", {"A", "", "C"}, "B = 2");
        expect_refused({traced});
        EXPECT_EQ(columns(info), (texts{"A"}));
        EXPECT_EQ(info.get_exec_type(), type);
        EXPECT_EQ(info.get_filter_cols_num(), 0);
    }
}

TEST_F(record_analysis, columns_that_were_counted_but_never_set_have_no_names) {
    const std::pair<std::uint32_t, test::return_trace> rows[] = {
        {insert, at("analyze_param_insert", 774)},
        {update, at("analyze_param_update", 829)},
        {select_rows, at("analyze_param_select", 699)}};
    for (const auto &[type, traced] : rows) {
        SCOPED_TRACE(type);
        for (const std::int32_t count : {1, UINT16_MAX}) {
            set(type, "T", {});
            stmt.record = {count, nullptr};
            expect_refused({traced});
        }
    }
}

TEST_F(record_analysis, a_negative_column_count_selects_nothing) {
    for (const std::int32_t count : {-1, INT32_MIN}) {
        for (const texts &uncounted : {texts{}, texts{"COUNT(*)"}}) {
            set(select_rows, "T", uncounted);
            stmt.record.col_num = count;
            expect_refused({at("analyze_param_select", 668)});
        }
    }
}

TEST_F(record_analysis, a_negative_column_count_changes_no_columns) {
    for (const std::uint32_t type : {insert, update}) {
        for (const std::int32_t count : {-1, INT32_MIN}) {
            SCOPED_TRACE(type);
            // A name that is not counted is not looked at either.
            for (const texts &uncounted : {texts{}, texts{"COUNT(*)"}}) {
                set(type, "T", uncounted);
                stmt.record.col_num = count;
                EXPECT_EQ(analyze(), 0u);
                EXPECT_EQ(info.get_exec_type(), type);
                EXPECT_EQ(info.get_cols_num(), 0);
            }
        }
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(record_analysis, a_refused_condition_ends_the_statement) {
    const traces filter = {at("divide_operate", 1271), at("set_filter_str", 1534)};
    for (const std::uint32_t type : {update, remove_rows, select_rows}) {
        SCOPED_TRACE(type);
        set(type, "T", {"A"}, "B", "C, D");
        traces expected = filter;
        if (type == select_rows) {
            expected.push_back(at("analyze_param_select", 713));
        }
        expect_refused(expected);
    }
    // A condition of blanks only is a condition.
    set(update, "T", {"A"}, "  ");
    expect_refused(filter);
}

TEST_F(record_analysis, a_refused_sort_phrase_ends_a_select) {
    set(select_rows, "T", {"A"}, "B = 2", "C, D");
    expect_refused({at("analyze_sort", 2182), at("set_sort_str", 1604), at("analyze_param_select", 724)});
    EXPECT_EQ(filters(info), (conditions{equal("B", "2")}));
    EXPECT_EQ(order(info), " 0");
}

TEST_F(record_analysis, a_blank_sort_phrase_sorts_nothing_but_leaves_a_trace) {
    set(select_rows, "T", {"A"}, "", "  ");
    EXPECT_EQ(analyze(), 0u);
    EXPECT_EQ(take_traces(), (traces{at("analyze_sort", 2203, 0)}));
    EXPECT_EQ(order(info), " 0");
}

TEST_F(record_analysis, a_first_column_of_count_counts) {
    for (const char *name : {"COUNT(*)", "COUNT ( * )", " C O U N T(*)", "xCOUNT(*)y"}) {
        SCOPED_TRACE(name);
        set(select_rows, "T", {name, ""}, "B = 2", "C DESC");
        EXPECT_EQ(analyze(), 0u);
        EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_COUNT);
        EXPECT_EQ(info.get_cols_num(), 0);
        EXPECT_EQ(filters(info), (conditions{equal("B", "2")}));
        EXPECT_EQ(order(info), "C 2");
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(record_analysis, count_elsewhere_is_a_column_name) {
    set(select_rows, "T", {"A", "COUNT(*)"});
    EXPECT_EQ(analyze(), 0u);
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_SELECT);
    EXPECT_EQ(columns(info), (texts{"A", "COUNT(*)"}));
    set(select_rows, "T", {"count(*)"});
    EXPECT_EQ(analyze(), 0u);
    EXPECT_EQ(columns(info), (texts{"count(*)"}));
    set(update, "T", {"COUNT(*)"});
    EXPECT_EQ(analyze(), 0u);
    EXPECT_EQ(info.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_UPDATE);
}

TEST_F(record_analysis, column_names_are_recorded_as_written) {
    set(select_rows, "T", {" A B "});
    EXPECT_EQ(analyze(), 0u);
    EXPECT_EQ(columns(info), (texts{" A B "}));
}

TEST_F(record_analysis, each_allocation_of_a_select_may_fail) {
    const auto where = at("set_filter_str", 1534);
    const auto filtered = at("analyze_param_select", 713);
    const auto sorted = at("analyze_param_select", 724);
    const auto trim = test::no_trim_block();
    expect_outcomes({{1, {at("trim_space_all", 2278, 1), at("analyze_param_select", 685, 1)}},
                     {refused, {at("divide_operate", 1235, 1), where, filtered}},
                     {refused, {trim, at("divide_operate", 1294), where, filtered}},
                     {refused, {trim, at("divide_operate", 1300), where, filtered}},
                     {refused, {at("set_sort_str", 1597, 1), sorted}},
                     {refused,
                      {test::no_trim_block_in_place(), at("analyze_sort", 2203, 1),
                       at("set_sort_str", 1604, 1), sorted}}},
                    [this] {
                        set(select_rows, "T", {"A"}, "B = 2", " C");
                        return analyze();
                    });
}

TEST_F(record_analysis, each_allocation_of_a_condition_may_fail) {
    const auto where = at("set_filter_str", 1534);
    const auto trim = test::no_trim_block();
    for (const std::uint32_t type : {update, remove_rows}) {
        SCOPED_TRACE(type);
        expect_outcomes({{refused, {at("divide_operate", 1235, 1), where}},
                         {refused, {trim, at("divide_operate", 1294), where}},
                         {refused, {trim, at("divide_operate", 1300), where}}},
                        [this, type] {
                            set(type, "T", {"A"}, "B = 2");
                            return analyze();
                        });
    }
    expect_outcomes({}, [this] {
        set(insert, "T", {"A"});
        return analyze();
    });
}

TEST_F(record_analysis, table_names_are_accepted_up_to_their_capacity) {
    const std::string longest(QRY_LIB_TABLE_NAME_MAX, 't');
    const std::pair<std::uint32_t, const char *> rows[] = {{insert, "analyze_param_insert"},
                                                           {update, "analyze_param_update"},
                                                           {remove_rows, "analyze_param_delete"},
                                                           {select_rows, "analyze_param_select"}};
    for (const auto &[type, function] : rows) {
        SCOPED_TRACE(type);
        set(type, longest, {"A"});
        EXPECT_EQ(analyze(), 0u);
        EXPECT_EQ(tables(info), (texts{longest}));
        set(type, longest + "t", {"A"});
        EXPECT_EQ(analyze(), refused);
        EXPECT_EQ(take_codes(), (test::codes{{function, refused}}));
    }
}

TEST_F(record_analysis, names_and_values_without_a_terminator_are_refused) {
    set(insert, "T", {"A", "B"});
    cols[1].type = QRY_LIB_COLUMN_TYPE_STR;
    std::memset(cols[1].col_name, 'c', QRY_LIB_COLUMN_NAME_MAX);
    std::memset(cols[1].value.str_value, 'v', QRY_LIB_STRING_MAX);
    EXPECT_EQ(analyze(), 0u);
    EXPECT_TRUE(take_codes().empty());
    for (const std::uint32_t string_type : {5u, 6u}) {
        SCOPED_TRACE(string_type);
        cols[1].type = static_cast<QRY_LIB_COLUMN_TYPE>(string_type);
        cols[1].value.str_value[QRY_LIB_STRING_MAX] = 'v';
        EXPECT_EQ(analyze(), refused);
        EXPECT_EQ(columns(info), (texts{"A"}));
        EXPECT_EQ(take_codes(), (test::codes{{"analyze_param_insert", refused}}));
    }
    cols[1].type = QRY_LIB_COLUMN_TYPE_INT;
    EXPECT_EQ(analyze(), 0u);
    cols[1].col_name[QRY_LIB_COLUMN_NAME_MAX] = 'c';
    EXPECT_EQ(analyze(), refused);
    EXPECT_EQ(take_codes(), (test::codes{{"analyze_param_insert", refused}}));
}

TEST_F(record_analysis, an_unterminated_first_name_is_no_danger_to_a_select) {
    set(select_rows, "T", {"A"});
    std::memset(cols[0].col_name, 'c', sizeof cols[0].col_name);
    EXPECT_EQ(analyze(), refused);
    EXPECT_EQ(take_codes(), (test::codes{{"analyze_param_select", refused}}));
}

TEST_F(record_analysis, no_more_columns_than_16_bits_count) {
    for (const std::uint32_t type : {insert, update, select_rows}) {
        SCOPED_TRACE(type);
        set(type, "T", {"A"});
        stmt.record.col_num = UINT16_MAX + 1;
        EXPECT_EQ(analyze(), refused);
        EXPECT_EQ(info.get_cols_num(), 0);
        EXPECT_EQ(take_codes().size(), 1u);
    }
}

TEST_F(record_analysis, a_megabyte_of_phrase_is_refused) {
    const std::string filler(1024 * 1024, 'x');
    set(select_rows, "T", {"A"}, "B = " + filler);
    EXPECT_EQ(analyze(), refused);
    set(select_rows, "T", {"A"}, "", filler);
    EXPECT_EQ(analyze(), refused);
    set(select_rows, "T", {"A"}, "", filler + " DESC");
    EXPECT_EQ(analyze(), refused);
    EXPECT_EQ(order(info), " 0");
}

} // namespace
