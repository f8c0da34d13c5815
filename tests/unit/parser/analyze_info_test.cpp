// The analyzed query: its lists, its getters, what it is when empty and what a copy owns.
#include <cstring>

#include "unit/parser/parser_test.h"

namespace {

using norvane::qry_lib_analyze_info;

class analyze_info : public test::parser_test {
  protected:
    static QRY_LIB_COLUMN_VALUE text_value(const char *text) {
        QRY_LIB_COLUMN_VALUE value{};
        std::strcpy(value.str_value, text);
        return value;
    }

    static void expect_empty(const qry_lib_analyze_info &query) {
        EXPECT_EQ(query.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_NONE);
        EXPECT_STREQ(query.get_db_name(), "");
        EXPECT_EQ(query.get_table_num(), 0);
        EXPECT_EQ(query.get_cols_num(), 0);
        EXPECT_EQ(query.get_filter_cols_num(), 0);
        char table[QRY_LIB_TABLE_NAME_MAX + 1] = "x";
        char col[QRY_LIB_COLUMN_NAME_MAX + 1] = "x";
        QRY_LIB_ODER_TYPE type = QRY_LIB_ODER_TYPE_DESC;
        query.get_order(table, col, type);
        EXPECT_STREQ(table, "");
        EXPECT_STREQ(col, "");
        EXPECT_EQ(type, QRY_LIB_ODER_TYPE_NOTHING);
    }

    static void fill(qry_lib_analyze_info &query) {
        query.set_exec_type(QRY_LIB_DB_QUERY_TYPE_UPDATE);
        query.set_db_name("adbk_db");
        query.set_table("T");
        query.add_table("U");
        query.add_cols("A", text_value("a"), QRY_LIB_COLUMN_TYPE_STR);
        query.add_filter_cols("B", "b", QRY_LIB_OPERATION_TYPE_LIKE, QRY_LIB_JOIN_TYPE_OR, 1);
        query.set_order("C", QRY_LIB_ODER_TYPE_DESC);
    }

    static void expect_filled(const qry_lib_analyze_info &query) {
        EXPECT_EQ(query.get_exec_type(), QRY_LIB_DB_QUERY_TYPE_UPDATE);
        EXPECT_STREQ(query.get_db_name(), "adbk_db");
        EXPECT_EQ(tables(query), (test::texts{"T", "U"}));
        EXPECT_EQ(columns(query), (test::texts{"A"}));
        EXPECT_EQ(filters(query), (test::conditions{like("B", "b").in_quotes().joined_by_or()}));
        EXPECT_EQ(order(query), "C 2");
    }
};

TEST_F(analyze_info, a_fresh_object_is_empty) {
    expect_empty(info);
    EXPECT_STREQ(info.get_table(), "");
}

TEST_F(analyze_info, set_table_replaces_only_the_first) {
    info.set_table("A");
    EXPECT_EQ(tables(info), (test::texts{"A"}));
    info.add_table("B");
    info.add_table("C");
    info.set_table("D");
    EXPECT_EQ(tables(info), (test::texts{"D", "B", "C"}));
    EXPECT_STREQ(info.get_table(), "D");
}

TEST_F(analyze_info, add_table_takes_a_name_twice) {
    info.add_table("A");
    info.add_table("A");
    EXPECT_EQ(tables(info), (test::texts{"A", "A"}));
}

TEST_F(analyze_info, columns_keep_table_name_whole_value_and_type) {
    QRY_LIB_COLUMN_VALUE stored;
    std::memset(&stored, 0x5A, sizeof stored);
    info.set_table("MAIN");
    info.add_cols("OTHER", "A", stored, QRY_LIB_COLUMN_TYPE_USHORT);
    info.add_cols("B", text_value("b"), QRY_LIB_COLUMN_TYPE_STR);

    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value{};
    QRY_LIB_COLUMN_TYPE type;
    EXPECT_EQ(info.get_cols(0, table, col, &value, type), 0u);
    EXPECT_STREQ(table, "OTHER");
    EXPECT_STREQ(col, "A");
    EXPECT_EQ(std::memcmp(&value, &stored, sizeof value), 0);
    EXPECT_EQ(type, QRY_LIB_COLUMN_TYPE_USHORT);
    EXPECT_EQ(info.get_cols(1, table, col, &value, type), 0u);
    EXPECT_STREQ(table, "MAIN");
    EXPECT_STREQ(col, "B");
    EXPECT_STREQ(value.str_value, "b");
    EXPECT_EQ(type, QRY_LIB_COLUMN_TYPE_STR);
}

TEST_F(analyze_info, conditions_keep_every_field) {
    info.set_table("MAIN");
    info.add_filter_cols("OTHER", "A", "1", QRY_LIB_OPERATION_TYPE_GREATER, QRY_LIB_JOIN_TYPE_AND, 0);
    info.add_filter_cols("B", "b", QRY_LIB_OPERATION_TYPE_NOT_EQUAL, QRY_LIB_JOIN_TYPE_OR, 1);
    EXPECT_EQ(filters(info),
              (test::conditions{greater("A", "1"), not_equal("B", "b").in_quotes().joined_by_or()}));

    const char *const expected[] = {"OTHER", "MAIN"};
    for (std::uint16_t i = 0; i < 2; ++i) {
        char table[QRY_LIB_TABLE_NAME_MAX + 1];
        char col[QRY_LIB_COLUMN_NAME_MAX + 1];
        char value[QRY_LIB_STRING_MAX + 1];
        QRY_LIB_OPERATION_TYPE operation;
        QRY_LIB_JOIN_TYPE join;
        std::int32_t quoted;
        EXPECT_EQ(info.get_filter_cols(i, table, col, value, operation, join, quoted), 0u);
        EXPECT_STREQ(table, expected[i]);
    }
}

TEST_F(analyze_info, the_sort_key_names_its_table_or_the_first_one) {
    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_ODER_TYPE type;
    info.set_table("MAIN");
    info.set_order("OTHER", "A", QRY_LIB_ODER_TYPE_ASC);
    info.get_order(table, col, type);
    EXPECT_STREQ(table, "OTHER");
    EXPECT_EQ(order(info), "A 1");
    info.set_order("B", QRY_LIB_ODER_TYPE_DESC);
    info.get_order(table, col, type);
    EXPECT_STREQ(table, "MAIN");
    EXPECT_EQ(order(info), "B 2");
}

TEST_F(analyze_info, indexed_getters_refuse_the_end_and_copy_nothing) {
    fill(info);
    for (const std::uint16_t index : {std::uint16_t{2}, std::uint16_t{65535}}) {
        char table[QRY_LIB_TABLE_NAME_MAX + 1] = "kept";
        EXPECT_EQ(info.get_table(index, table), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_STREQ(table, "kept");
    }
    for (const std::uint16_t index : {std::uint16_t{1}, std::uint16_t{65535}}) {
        char table[QRY_LIB_TABLE_NAME_MAX + 1] = "kept";
        char col[QRY_LIB_COLUMN_NAME_MAX + 1] = "kept";
        QRY_LIB_COLUMN_VALUE value = text_value("kept");
        auto type = QRY_LIB_COLUMN_TYPE_ULONG;
        auto operation = QRY_LIB_OPERATION_TYPE_LESS;
        auto join = QRY_LIB_JOIN_TYPE_AND;
        std::int32_t quoted = 5;
        EXPECT_EQ(info.get_cols(index, table, col, &value, type), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_EQ(info.get_cols(index, col, &value, type), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_EQ(info.get_filter_cols(index, table, col, value.str_value, operation, join, quoted),
                  QRY_LIB_NO_SUCH_ITEM);
        EXPECT_EQ(info.get_filter_cols(index, col, value.str_value, operation, join, quoted),
                  QRY_LIB_NO_SUCH_ITEM);
        EXPECT_STREQ(table, "kept");
        EXPECT_STREQ(col, "kept");
        EXPECT_STREQ(value.str_value, "kept");
        EXPECT_EQ(type, QRY_LIB_COLUMN_TYPE_ULONG);
        EXPECT_EQ(operation, QRY_LIB_OPERATION_TYPE_LESS);
        EXPECT_EQ(join, QRY_LIB_JOIN_TYPE_AND);
        EXPECT_EQ(quoted, 5);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(analyze_info, all_clear_empties_for_reuse) {
    fill(info);
    expect_filled(info);
    info.all_clear();
    expect_empty(info);
    fill(info);
    expect_filled(info);
}

TEST_F(analyze_info, copies_are_independent) {
    fill(info);
    qry_lib_analyze_info copy(info);
    info.all_clear();
    expect_filled(copy);
    info = copy;
    copy.set_table("X");
    copy.set_order("X", QRY_LIB_ODER_TYPE_ASC);
    copy.add_cols("X", text_value("x"), QRY_LIB_COLUMN_TYPE_STR);
    expect_filled(info);
}

TEST_F(analyze_info, names_and_values_are_kept_to_their_capacity) {
    const std::string table_name(QRY_LIB_TABLE_NAME_MAX, 't');
    const std::string col_name(QRY_LIB_COLUMN_NAME_MAX, 'c');
    const std::string text(QRY_LIB_STRING_MAX, 'v');
    info.set_table(table_name.c_str());
    info.add_cols(col_name.c_str(), text_value(text.c_str()), QRY_LIB_COLUMN_TYPE_STR);
    info.add_filter_cols(col_name.c_str(), text.c_str(), QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND,
                         0);
    info.set_order(col_name.c_str(), QRY_LIB_ODER_TYPE_ASC);
    EXPECT_EQ(tables(info), (test::texts{table_name}));
    EXPECT_EQ(columns(info), (test::texts{col_name}));
    EXPECT_EQ(filters(info), (test::conditions{equal(col_name, text)}));
    EXPECT_EQ(order(info), col_name + " 1");

    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value;
    QRY_LIB_COLUMN_TYPE type;
    EXPECT_EQ(info.get_cols(0, table, col, &value, type), 0u);
    EXPECT_EQ(table, table_name);
    EXPECT_EQ(value.str_value, text);
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    std::int32_t quoted;
    table[0] = '\0';
    EXPECT_EQ(info.get_filter_cols(0, table, col, value.str_value, operation, join, quoted), 0u);
    EXPECT_EQ(table, table_name);
    table[0] = '\0';
    QRY_LIB_ODER_TYPE order_type;
    info.get_order(table, col, order_type);
    EXPECT_EQ(table, table_name);
}

TEST_F(analyze_info, longer_names_and_values_never_leave_their_buffers) {
    const std::string endless(5000, 'x');
    info.set_table(endless.c_str());
    info.add_cols(endless.c_str(), QRY_LIB_COLUMN_VALUE{}, QRY_LIB_COLUMN_TYPE_STR);
    info.add_filter_cols(endless.c_str(), endless.c_str(), QRY_LIB_OPERATION_TYPE_EQUAL,
                         QRY_LIB_JOIN_TYPE_AND, 0);
    info.set_order(endless.c_str(), QRY_LIB_ODER_TYPE_ASC);
    const std::string col_name = endless.substr(0, QRY_LIB_COLUMN_NAME_MAX);
    EXPECT_EQ(tables(info), (test::texts{endless.substr(0, QRY_LIB_TABLE_NAME_MAX)}));
    EXPECT_EQ(columns(info), (test::texts{col_name}));
    EXPECT_EQ(filters(info), (test::conditions{equal(col_name, endless.substr(0, QRY_LIB_STRING_MAX))}));
    EXPECT_EQ(order(info), col_name + " 1");
}

TEST_F(analyze_info, without_a_table_the_short_forms_name_the_empty_table) {
    info.add_cols("A", QRY_LIB_COLUMN_VALUE{}, QRY_LIB_COLUMN_TYPE_INT);
    char table[QRY_LIB_TABLE_NAME_MAX + 1] = "x";
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value;
    QRY_LIB_COLUMN_TYPE type;
    EXPECT_EQ(info.get_cols(0, table, col, &value, type), 0u);
    EXPECT_STREQ(table, "");
}

} // namespace
