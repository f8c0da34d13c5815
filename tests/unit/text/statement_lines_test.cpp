// Where a statement over several lines ends, and what has become of its line ends.
#include "tools/text/statement_lines.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace {

using qrytext::statement_lines;
using qrytext::without_semicolon;

// The statements that the lines make; what is unfinished at their end comes last, behind a "...".
std::vector<std::string> statements(std::initializer_list<std::string_view> lines) {
    std::vector<std::string> found;
    statement_lines reader;
    for (const std::string_view line : lines) {
        if (reader.add(line, false)) {
            found.push_back(reader.take());
        }
    }
    if (reader.is_open()) {
        found.push_back("..." + reader.take());
    }
    return found;
}

using texts = std::vector<std::string>;

TEST(statement_lines, a_whole_line_is_a_statement) {
    for (const char *line :
         {"SELECT A FROM T", "SELECT A FROM T ORDER BY ", "SELECT A FROM T WHERE A = 'x", "DELETE FROM T",
          "DROP TABLE T", "CREATE TABLE T", "INSERT INTO T (A) VALUES (1)", "INSERT INTO T (A) VALUES (1) x",
          "UPDATE T SET A = 1", "UPDATE T SET A = 'x' WHERE B = O'Hara", "SELECT A from T", "select A",
          "WHERE", "SELECTION", "DELETE T"}) {
        EXPECT_EQ(statements({line}), texts{line});
    }
}

TEST(statement_lines, an_unfinished_line_goes_on_to_the_semicolon) {
    for (const char *line :
         {"SELECT", "SELECT A", "SELECT A FROM", "SELECT A FROM T,", "SELECT A FROM T WHERE ", "DELETE",
          "DELETE FROM", "DROP TABLE", "DELETE FROM T WHERE A = 1 AND", "DELETE FROM T WHERE A IN (",
          "INSERT", "INSERT INTO T (A)", "INSERT INTO T (A) VALUES (1", "UPDATE T",
          "UPDATE T SET A =", "UPDATE T SET A = 1 WHERE B = 2 OR", "CREATE TABLE T ("}) {
        EXPECT_EQ(statements({line, "x"}).at(0).substr(0, 3), "...") << line;
        EXPECT_EQ(statements({std::string(line) + ";"}), texts{std::string(line) + ";"});
    }
    EXPECT_EQ(statements({"SELECT A", "FROM T", "WHERE A = 1;", "DROP TABLE T"}),
              (texts{"SELECT A FROM T WHERE A = 1;", "DROP TABLE T"}));
}

TEST(statement_lines, a_line_end_and_the_blanks_around_it_are_one_blank) {
    EXPECT_EQ(statements({"  SELECT A,\t ", "\t B\r", "", "  \t", "-- a comment", "FROM T ; "}),
              texts{"  SELECT A, B FROM T ; "});
}

TEST(statement_lines, between_quotes_everything_stays) {
    EXPECT_EQ(
        statements({"INSERT INTO T (A, B) VALUES ('it''s;\r", "", "  -- no comment;", ".quit', ", " 2);\r"}),
        texts{"INSERT INTO T (A, B) VALUES ('it''s;\r\n\n  -- no comment;\n.quit', 2);"});
    EXPECT_EQ(statements({"UPDATE T SET A = 'x", "y'", "WHERE B = 'it's;"}),
              texts{"UPDATE T SET A = 'x\ny' WHERE B = 'it's;"});
}

TEST(statement_lines, another_beginning_cuts_a_statement_off) {
    statement_lines reader;
    EXPECT_FALSE(reader.is_cut_off_by("SELECT A FROM T"));
    ASSERT_FALSE(reader.add("DELETE FROM", false));
    EXPECT_TRUE(reader.is_cut_off_by("  SELECT A FROM T"));
    EXPECT_TRUE(reader.is_cut_off_by("\t.quit"));
    EXPECT_FALSE(reader.is_cut_off_by("SELECTED WHERE A = 1"));
    EXPECT_FALSE(reader.is_cut_off_by(""));
    reader.take();
    ASSERT_FALSE(reader.add("INSERT INTO T (A) VALUES ('x", false));
    EXPECT_FALSE(reader.is_cut_off_by(".quit"));
    EXPECT_FALSE(reader.is_cut_off_by("SELECT A FROM T"));
}

TEST(statement_lines, one_semicolon_belongs_to_the_shell) {
    EXPECT_EQ(without_semicolon("A; "), "A");
    EXPECT_EQ(without_semicolon("A ;;"), "A ;");
    EXPECT_EQ(without_semicolon("A; B "), "A; B ");
    EXPECT_EQ(without_semicolon(""), "");
}

TEST(StatementLines, AChangeOfEveryRecordWaitsForAWhere) {
    for (const char *const first : {"DELETE FROM PSN_TBL", "UPDATE PSN_TBL SET PSN_ID = 1"}) {
        statement_lines reader;
        EXPECT_FALSE(reader.add(first, true)) << first;
        EXPECT_TRUE(reader.is_held_before("SELECT X FROM T"));
        EXPECT_TRUE(reader.is_held_before(".quit"));
        for (const char *const more : {"", "  ", "-- a comment", "WHERE X = 1", "  where x = 1"}) {
            EXPECT_FALSE(reader.is_held_before(more)) << more;
        }
        EXPECT_FALSE(reader.add("-- a comment", true));
        EXPECT_TRUE(reader.add("  WHERE PSN_ID = 1", true));
        EXPECT_EQ(reader.take(), std::string(first) + " WHERE PSN_ID = 1");
        EXPECT_FALSE(reader.is_held_before("SELECT X FROM T"));
    }
}

TEST(StatementLines, WhatSaysWhichRecordsDoesNotWait) {
    for (const char *const line :
         {"DELETE FROM PSN_TBL;", "DELETE FROM PSN_TBL WHERE PSN_ID = 1", "DROP TABLE PSN_TBL",
          "SELECT X FROM T", "UPDATE T SET A = 1 WHERE B = 2"}) {
        statement_lines reader;
        EXPECT_TRUE(reader.add(line, true)) << line;
    }
    statement_lines reader;
    EXPECT_TRUE(reader.add("DELETE FROM PSN_TBL", false)) << "at a prompt it is asked for";
}

TEST(statement_lines, several_statements_on_a_line) {
    using pieces = std::vector<std::string_view>;
    using qrytext::statements_in;
    EXPECT_EQ(statements_in("SELECT A FROM T; DROP TABLE T"), (pieces{"SELECT A FROM T;", " DROP TABLE T"}));
    EXPECT_EQ(statements_in("DROP TABLE T;DROP TABLE U; -- done"),
              (pieces{"DROP TABLE T;", "DROP TABLE U;", " -- done"}));
    EXPECT_EQ(statements_in("DELETE FROM T WHERE A = 'x;y'; DROP TABLE T"),
              (pieces{"DELETE FROM T WHERE A = 'x;y';", " DROP TABLE T"}));
    EXPECT_EQ(statements_in("INSERT INTO T (A) VALUES ('it''s; x'); DROP TABLE T").size(), 2U);
    for (const char *const whole :
         {"SELECT A FROM T;", "SELECT A FROM T; x", "SELECT A FROM T; WHERE A = 1",
          "SELECT A FROM T; drop table T", "SELECT A FROM T WHERE A = 'x; DROP TABLE T'",
          "SELECT A FROM T WHERE A = 'x; DROP TABLE T", "SELECT A FROM T WHERE A = 'O'Hara'; DROP TABLE T",
          "SELECT A FROM T WHERE A = 'it's; DROP TABLE T'",
          "SELECT A FROM T WHERE A = 'it's; DELETE FROM T WHERE A = 'x'",
          "SELECT A FROM T WHERE A = O'; DROP TABLE T", ".watch 1 DROP TABLE T; DROP TABLE U",
          "-- DROP TABLE T; DROP TABLE U", ""}) {
        EXPECT_EQ(statements_in(whole), pieces{whole});
    }
}

TEST(statement_lines, a_line_between_quotes_is_not_cut) {
    statement_lines reader;
    EXPECT_FALSE(reader.add("INSERT INTO T (A) VALUES ('x", false));
    EXPECT_EQ(reader.pieces_of("y; DROP TABLE T").size(), 1U);
}

} // namespace
