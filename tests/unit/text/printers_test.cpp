// Results as tables, comma-separated values and JSON.
#include "tools/text/printers.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using qrytext::cell;
using qrytext::format_csv;
using qrytext::format_json;
using qrytext::format_result;
using qrytext::format_table;
using qrytext::output_mode;
using qrytext::result;

cell number(std::int64_t value) {
    return value;
}
cell text(const std::string &value) {
    return value;
}

result one_text(const std::string &value) {
    return {{"A"}, {{text(value)}}};
}

TEST(printers, modes_are_found_by_name) {
    EXPECT_EQ(qrytext::mode_named("table"), qrytext::output_mode::table);
    EXPECT_EQ(qrytext::mode_named("csv"), qrytext::output_mode::csv);
    EXPECT_EQ(qrytext::mode_named("json"), qrytext::output_mode::json);
    EXPECT_EQ(qrytext::mode_named("CSV"), std::nullopt);
    EXPECT_EQ(qrytext::mode_named(""), std::nullopt);
}

TEST(table_printer, numbers_stand_to_the_right) {
    const result answer{{"ID", "NAME"}, {{number(5), text("Ito")}, {number(123), text("Sato")}}};
    EXPECT_EQ(format_table(answer), " ID  NAME\n"
                                    "---  ----\n"
                                    "  5  Ito\n"
                                    "123  Sato\n"
                                    "(2 rows)\n");
}

TEST(table_printer, one_row_is_called_a_row) {
    EXPECT_EQ(format_table({{"COUNT(*)"}, {{number(0)}}}), "COUNT(*)\n--------\n       0\n(1 row)\n");
}

TEST(table_printer, no_rows_still_show_the_titles) {
    EXPECT_EQ(format_table({{"ID", "NAME"}, {}}), "ID  NAME\n--  ----\n(0 rows)\n");
    EXPECT_EQ(format_table({{}, {}}), "(0 rows)\n");
}

TEST(table_printer, wide_text_is_padded_by_terminal_columns) {
    const result answer{{"NAME", "ID"}, {{text("佐藤"), number(1)}, {text("Tanaka"), number(2)}}};
    EXPECT_EQ(format_table(answer), "NAME    ID\n"
                                    "------  --\n"
                                    "佐藤     1\n"
                                    "Tanaka   2\n"
                                    "(2 rows)\n");
}

TEST(table_printer, control_characters_and_stray_bytes_are_escaped) {
    EXPECT_EQ(format_table(one_text("a\tb\n\x1B[2J\x7F")),
              "A\n---------------------\na\\x09b\\x0A\\x1B[2J\\x7F\n(1 row)\n");
    EXPECT_EQ(format_table(one_text("\xFFz")), "A\n-----\n\\xFFz\n(1 row)\n");
}

TEST(csv_printer, quotes_only_what_needs_it) {
    const result answer{{"ID", "NAME"},
                        {{number(-1), text("plain")},
                         {number(4294967295LL), text("a,b")},
                         {number(0), text("say \"hi\"")},
                         {number(0), text("two\nlines")},
                         {number(0), text("")}}};
    EXPECT_EQ(format_csv(answer), "ID,NAME\r\n-1,plain\r\n4294967295,\"a,b\"\r\n0,\"say \"\"hi\"\"\"\r\n"
                                  "0,\"two\nlines\"\r\n0,\r\n");
}

TEST(csv_printer, no_rows_leave_the_header) {
    EXPECT_EQ(format_csv({{"ID", "NAME"}, {}}), "ID,NAME\r\n");
}

TEST(json_printer, keeps_column_order_and_types) {
    const result answer{{"NAME", "ID"}, {{text("佐藤"), number(1)}, {text("a\"b"), number(-2)}}};
    EXPECT_EQ(format_json(answer),
              "[\n  {\"NAME\":\"佐藤\",\"ID\":1},\n  {\"NAME\":\"a\\\"b\",\"ID\":-2}\n]\n");
}

TEST(json_printer, no_rows_are_an_empty_array) {
    EXPECT_EQ(format_json({{"ID"}, {}}), "[]\n");
}

TEST(json_printer, stray_bytes_become_replacement_characters) {
    const auto parsed = nlohmann::json::parse(format_json(one_text("x\xFFy\xE3\x81")));
    EXPECT_EQ(parsed[0]["A"], "x\xEF\xBF\xBDy\xEF\xBF\xBD");
}

// Titles, rules and the frame fall away as whole lines.
TEST(layout, titles_are_left_out) {
    const result answer{{"ID", "NAME"}, {{number(5), text("Ito")}}};
    const auto bare = [&](output_mode mode) { return format_result(mode, answer, {false, 0}); };
    EXPECT_EQ(bare(output_mode::table), " 5  Ito\n(1 row)\n");
    EXPECT_EQ(bare(output_mode::box), "┌────┬──────┐\n│  5 │ Ito  │\n└────┴──────┘\n(1 row)\n");
    EXPECT_EQ(bare(output_mode::csv), "5,Ito\r\n");
    EXPECT_EQ(bare(output_mode::tabs), "5\tIto\n");
    EXPECT_EQ(bare(output_mode::list), "5|Ito\n");
    EXPECT_EQ(bare(output_mode::json), "[\n  {\"ID\":5,\"NAME\":\"Ito\"}\n]\n");
    EXPECT_EQ(format_result(output_mode::table, {{}, {}}, {false, 0}), "(0 rows)\n");
}

TEST(layout, a_row_is_one_line_of_divided_values) {
    const result answer{{"ID", "NAME"}, {{number(5), text("a\tb\nc|d")}, {number(6), text("")}}};
    EXPECT_EQ(format_result(output_mode::tabs, answer), "ID\tNAME\n5\ta\\x09b\\x0Ac|d\n6\t\n");
    EXPECT_EQ(format_result(output_mode::list, answer), "ID|NAME\n5|a\\x09b\\x0Ac|d\n6|\n");
}

// " ID  NAME" takes nine columns.
TEST(layout, a_table_wider_than_the_terminal_becomes_lines) {
    const result answer{{"ID", "NAME"}, {{number(123), text("佐藤")}, {number(4), text("Ito")}}};
    EXPECT_EQ(format_result(output_mode::table, answer, {true, 9}), format_table(answer));
    EXPECT_EQ(format_result(output_mode::table, answer, {true, 8}),
              "  ID = 123\nNAME = 佐藤\n\n  ID = 4\nNAME = Ito\n(2 rows)\n");
    EXPECT_EQ(format_result(output_mode::csv, answer, {true, 3}), format_csv(answer));
}

// Nine columns are left for a value: a wide character that does not fit goes below whole.
TEST(layout, a_value_wider_than_the_terminal_goes_on_below) {
    const result answer{{"NAME", "A"}, {{text("12345678佐藤xyz"), text("")}}};
    EXPECT_EQ(format_result(output_mode::line, answer, {true, 16}),
              "NAME = 12345678\n       佐藤xyz\n   A = \n");
    EXPECT_EQ(format_result(output_mode::line, answer), "NAME = 12345678佐藤xyz\n   A = \n");
}

} // namespace
