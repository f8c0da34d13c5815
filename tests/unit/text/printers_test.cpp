// Results as tables, comma-separated values and JSON.
#include "tools/text/printers.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using qrytext::cell;
using qrytext::format_csv;
using qrytext::format_json;
using qrytext::format_table;
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

} // namespace
