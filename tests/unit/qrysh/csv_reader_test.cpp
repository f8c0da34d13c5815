// Comma-separated values with the places of their fields.
#include "tools/qrysh/transfer/csv_reader.h"

#include <gtest/gtest.h>

namespace {

using qrysh::csv_error;
using qrysh::csv_field;
using rows = std::vector<std::vector<std::string>>;

std::vector<std::vector<csv_field>> read_csv(std::string_view csv) {
    qrysh::csv_reader reader(csv);
    std::vector<std::vector<csv_field>> all;
    while (auto row = reader.next()) {
        all.push_back(std::move(*row));
    }
    return all;
}

rows texts(std::string_view csv) {
    rows all;
    for (const std::vector<csv_field> &row : read_csv(csv)) {
        std::vector<std::string> &line = all.emplace_back();
        for (const csv_field &field : row) {
            line.push_back(field.text);
        }
    }
    return all;
}

// "line:column" of the fault.
std::string fault(std::string_view csv) {
    try {
        read_csv(csv);
    } catch (const csv_error &error) {
        return std::to_string(error.place().line) + ':' + std::to_string(error.place().column);
    }
    return "none";
}

TEST(csv_reader, rows_end_in_either_line_end) {
    EXPECT_EQ(texts("A,B\n1,2\r\n3,4"), (rows{{"A", "B"}, {"1", "2"}, {"3", "4"}}));
    EXPECT_EQ(texts("A\n"), (rows{{"A"}}));
    EXPECT_EQ(texts(""), rows{});
}

TEST(csv_reader, fields_may_be_empty) {
    EXPECT_EQ(texts(",\n\n,,"), (rows{{"", ""}, {""}, {"", "", ""}}));
    EXPECT_EQ(texts("\"\""), (rows{{""}}));
}

TEST(csv_reader, quotes_hold_commas_quotes_and_line_ends) {
    EXPECT_EQ(texts("\"a,b\",\"c\"\"d\",\"e\r\nf\"\ng"), (rows{{"a,b", "c\"d", "e\r\nf"}, {"g"}}));
}

TEST(csv_reader, a_byte_order_mark_is_skipped) {
    EXPECT_EQ(texts("\xEF\xBB\xBF\"A\",B"), (rows{{"A", "B"}}));
}

TEST(csv_reader, a_lone_carriage_return_is_text) {
    EXPECT_EQ(texts("a\rb\n"), (rows{{"a\rb"}}));
}

TEST(csv_reader, places_count_characters_and_lines) {
    const auto read = read_csv("鈴木,B\n\"x\ny\",D");
    EXPECT_EQ(read[0][1].place.column, 4U);
    EXPECT_EQ(read[1][0].place.line, 2U);
    EXPECT_EQ(read[1][1].place.line, 3U);
    EXPECT_EQ(read[1][1].place.column, 4U);
}

TEST(csv_reader, what_is_no_csv_is_refused_at_its_place) {
    EXPECT_EQ(fault("A\n1,\"x"), "2:3");
    EXPECT_EQ(fault("A\n\"x\"y"), "2:4");
    EXPECT_EQ(fault("a\"b"), "1:2");
    EXPECT_EQ(fault("\"a\"\rb"), "1:5");
    EXPECT_EQ(fault("\"a\"\"b\""), "none");
}

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

// What no table takes is refused where it goes too far, not when all of it has been read.
TEST(csv_reader, what_goes_beyond_every_table_is_refused_at_its_place) {
    EXPECT_EQ(fault(repeated("\n", 65536)), "none");
    EXPECT_EQ(fault(repeated("\n", 65537)), "65537:1");
    EXPECT_EQ(fault(repeated(",", 1023)), "none");
    EXPECT_EQ(fault("A\n" + repeated(",", 1024)), "2:1025");
    EXPECT_EQ(fault("A\n" + repeated("x", 65536)), "none");
    EXPECT_EQ(fault("A\n" + repeated("x", 65537)), "2:1");
    EXPECT_EQ(fault("A,B\n1,\"" + repeated("\"\"", 65536) + '"'), "none");
    EXPECT_EQ(fault("A,B\n1,\"" + repeated("\"\"", 65537) + '"'), "2:3");
}

} // namespace
