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

TEST(Printers, ModesAreFoundByName) {
    EXPECT_EQ(qrytext::mode_named("table"), qrytext::output_mode::table);
    EXPECT_EQ(qrytext::mode_named("csv"), qrytext::output_mode::csv);
    EXPECT_EQ(qrytext::mode_named("json"), qrytext::output_mode::json);
    EXPECT_EQ(qrytext::mode_named("CSV"), std::nullopt);
    EXPECT_EQ(qrytext::mode_named(""), std::nullopt);
}

TEST(TablePrinter, NumbersStandToTheRight) {
    const result answer{{"ID", "NAME"}, {{number(5), text("Ito")}, {number(123), text("Sato")}}};
    EXPECT_EQ(format_table(answer), " ID  NAME\n"
                                    "---  ----\n"
                                    "  5  Ito\n"
                                    "123  Sato\n"
                                    "(2 rows)\n");
}

TEST(TablePrinter, OneRowIsCalledARow) {
    EXPECT_EQ(format_table({{"COUNT(*)"}, {{number(0)}}}), "COUNT(*)\n--------\n       0\n(1 row)\n");
}

TEST(TablePrinter, NoRowsStillShowTheTitles) {
    EXPECT_EQ(format_table({{"ID", "NAME"}, {}}), "ID  NAME\n--  ----\n(0 rows)\n");
    EXPECT_EQ(format_table({{}, {}}), "(0 rows)\n");
}

TEST(TablePrinter, WideTextIsPaddedByTerminalColumns) {
    const result answer{{"NAME", "ID"}, {{text("佐藤"), number(1)}, {text("Tanaka"), number(2)}}};
    EXPECT_EQ(format_table(answer), "NAME    ID\n"
                                    "------  --\n"
                                    "佐藤     1\n"
                                    "Tanaka   2\n"
                                    "(2 rows)\n");
}

TEST(TablePrinter, ControlCharactersAndStrayBytesAreEscaped) {
    EXPECT_EQ(format_table(one_text("a\tb\n\x1B[2J\x7F")),
              "A\n---------------------\na\\x09b\\x0A\\x1B[2J\\x7F\n(1 row)\n");
    EXPECT_EQ(format_table(one_text("\xFFz")), "A\n-----\n\\xFFz\n(1 row)\n");
}

TEST(CsvPrinter, QuotesOnlyWhatNeedsIt) {
    const result answer{{"ID", "NAME"},
                        {{number(-1), text("plain")},
                         {number(4294967295LL), text("a,b")},
                         {number(0), text("say \"hi\"")},
                         {number(0), text("two\nlines")},
                         {number(0), text("")}}};
    EXPECT_EQ(format_csv(answer), "ID,NAME\r\n-1,plain\r\n4294967295,\"a,b\"\r\n0,\"say \"\"hi\"\"\"\r\n"
                                  "0,\"two\nlines\"\r\n0,\r\n");
}

TEST(CsvPrinter, NoRowsLeaveTheHeader) {
    EXPECT_EQ(format_csv({{"ID", "NAME"}, {}}), "ID,NAME\r\n");
}

TEST(JsonPrinter, KeepsColumnOrderAndTypes) {
    const result answer{{"NAME", "ID"}, {{text("佐藤"), number(1)}, {text("a\"b"), number(-2)}}};
    EXPECT_EQ(format_json(answer),
              "[\n  {\"NAME\":\"佐藤\",\"ID\":1},\n  {\"NAME\":\"a\\\"b\",\"ID\":-2}\n]\n");
}

TEST(JsonPrinter, NoRowsAreAnEmptyArray) {
    EXPECT_EQ(format_json({{"ID"}, {}}), "[]\n");
}

TEST(JsonPrinter, StrayBytesBecomeReplacementCharacters) {
    const auto parsed = nlohmann::json::parse(format_json(one_text("x\xFFy\xE3\x81")));
    EXPECT_EQ(parsed[0]["A"], "x\xEF\xBF\xBDy\xEF\xBF\xBD");
}

} // namespace
