// The grammar of the shell's own INSERT and UPDATE.
#include "tools/text/statement_text.h"

#include <gtest/gtest.h>

namespace {

using qrytext::cell;
using qrytext::parse_write_statement;
using qrytext::syntax_error;
using qrytext::write_statement;

std::string complaint(const std::string &text) {
    try {
        parse_write_statement(text);
    } catch (const syntax_error &error) {
        return error.what();
    }
    return "accepted";
}

std::string hint(const std::string &text) {
    try {
        parse_write_statement(text);
    } catch (const syntax_error &error) {
        return error.hint();
    }
    return "accepted";
}

cell number(std::int64_t value) {
    return value;
}
cell text(const std::string &value) {
    return value;
}

cell value_of(const std::string &written) {
    return parse_write_statement("UPDATE T SET A = " + written).values.at(0).value;
}

TEST(statement_text, insert_gives_table_columns_and_values) {
    const write_statement parsed =
        parse_write_statement("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (11, 'Sato')");
    EXPECT_TRUE(parsed.is_insert);
    EXPECT_EQ(parsed.table, "PSN_TBL");
    ASSERT_EQ(parsed.values.size(), 2U);
    EXPECT_EQ(parsed.values[0].column, "PSN_ID");
    EXPECT_EQ(parsed.values[0].value, number(11));
    EXPECT_EQ(parsed.values[1].column, "PSN_NAME");
    EXPECT_EQ(parsed.values[1].value, text("Sato"));
    EXPECT_EQ(parsed.where, "");
}

TEST(statement_text, blanks_are_needed_only_between_words) {
    const write_statement parsed = parse_write_statement("  INSERT  INTO T(A,B)VALUES( 1 ,'x' )  ");
    EXPECT_EQ(parsed.table, "T");
    ASSERT_EQ(parsed.values.size(), 2U);
    EXPECT_EQ(parsed.values[1].value, text("x"));
    EXPECT_EQ(parse_write_statement("UPDATE T SET A=1,B='x'").values.size(), 2U);
}

TEST(statement_text, update_passes_its_condition_through) {
    const write_statement parsed =
        parse_write_statement("UPDATE T SET A = 1, B = 'x WHERE y' WHERE C = 'it''s'  AND D = 2 ");
    EXPECT_FALSE(parsed.is_insert);
    EXPECT_EQ(parsed.values[1].value, text("x WHERE y"));
    EXPECT_EQ(parsed.where, "C = 'it''s'  AND D = 2");
}

TEST(statement_text, update_without_condition_concerns_every_row) {
    EXPECT_EQ(parse_write_statement("UPDATE T SET A = 1").where, "");
}

TEST(statement_text, doubled_quote_is_one_quote) {
    EXPECT_EQ(value_of("'O''Hara'"), text("O'Hara"));
    EXPECT_EQ(value_of("''"), text(""));
    EXPECT_EQ(value_of("''''"), text("'"));
}

TEST(statement_text, numbers_have_thirty_two_bits) {
    EXPECT_EQ(value_of("0"), number(0));
    EXPECT_EQ(value_of("+7"), number(7));
    EXPECT_EQ(value_of("-2147483648"), number(-2147483648LL));
    EXPECT_EQ(value_of("4294967295"), number(4294967295LL));
    const std::string range = "at character 18: a number lies between -2147483648 and 4294967295";
    EXPECT_EQ(complaint("UPDATE T SET A = 4294967296"), range);
    EXPECT_EQ(complaint("UPDATE T SET A = -2147483649"), range);
    EXPECT_EQ(complaint("UPDATE T SET A = 99999999999999999999"), range);
}

TEST(statement_text, what_is_neither_number_nor_text_is_refused) {
    const std::string expected = "at character 18: expected a number or a text between single quotes";
    for (const char *const word : {"", "abc", "1x", "--1", "+-1", "-", "+", "\"x\"", "1.5", "NULL"}) {
        EXPECT_EQ(complaint(std::string("UPDATE T SET A = ") + word), expected) << word;
    }
}

TEST(statement_text, tells_what_to_write_instead) {
    EXPECT_EQ(hint("insert INTO T (A) VALUES (1)"), "keywords are upper case");
    EXPECT_EQ(hint("INSERT INTO T (A) values (1)"), "keywords are upper case: write VALUES");
    EXPECT_EQ(hint("INSERT INTO T (A, B) VALUES (1)"), "write 2 values, one for each column");
    EXPECT_EQ(hint("INSERT INTO T VALUES (1)"), "write INSERT INTO TABLE (COLUMN, ...) VALUES (VALUE, ...)");
    EXPECT_EQ(hint("UPDATE T SET A = x"), "write 1 or 'TEXT'");
    EXPECT_EQ(hint("UPDATE T SET A = 1 WHERE"), "write WHERE COLUMN = 1");
}

TEST(statement_text, capacities_of_the_record_are_kept) {
    EXPECT_EQ(value_of("'" + std::string(2999, 'x') + "'"), text(std::string(2999, 'x')));
    EXPECT_EQ(complaint("UPDATE T SET A = '" + std::string(3000, 'x') + "'"),
              "at character 18: a value has at most 2999 characters");
    EXPECT_EQ(complaint("UPDATE T SET " + std::string(31, 'C') + " = 1"), "accepted");
    EXPECT_EQ(complaint("UPDATE T SET " + std::string(32, 'C') + " = 1"),
              "at character 14: a column name has at most 31 characters");
    EXPECT_EQ(complaint("UPDATE " + std::string(127, 'T') + " SET A = 1"), "accepted");
    EXPECT_EQ(complaint("UPDATE " + std::string(128, 'T') + " SET A = 1"),
              "at character 8: a table name has at most 127 characters");
}

struct refused_text {
    const char *text;
    const char *complaint;
};

// What a failure prints of the row that it happened in.
void PrintTo(const refused_text &row, std::ostream *out) {
    *out << row.text;
}

class statement_text_refusal : public testing::TestWithParam<refused_text> {};

TEST_P(statement_text_refusal, names_the_place_and_the_reason) {
    EXPECT_EQ(complaint(GetParam().text), GetParam().complaint);
}

INSTANTIATE_TEST_SUITE_P(
    insert, statement_text_refusal,
    testing::Values(
        refused_text{"insert INTO T (A) VALUES (1)", "at character 1: expected INSERT or UPDATE"},
        refused_text{"INSERT T (A) VALUES (1)", "at character 8: expected INTO"},
        refused_text{"INSERT INTO (A) VALUES (1)", "at character 13: expected a table name"},
        refused_text{"INSERT INTO T VALUES (1)", "at character 15: expected \"(\" and the columns to write"},
        refused_text{"INSERT INTO T () VALUES (1)", "at character 16: expected a column name"},
        refused_text{"INSERT INTO T (A B) VALUES (1)", "at character 18: expected \")\""},
        refused_text{"INSERT INTO T (A) (1)", "at character 19: expected VALUES"},
        refused_text{"INSERT INTO T (A, B) VALUES (1)", "at character 31: expected \",\" and a value"},
        refused_text{"INSERT INTO T (A) VALUES (1, 2)",
                     "at character 28: expected \")\" after the last column's value"},
        refused_text{"INSERT INTO T (A) VALUES ('x)", "at character 27: the quote is not closed"},
        refused_text{"INSERT INTO T (A) VALUES (1) WHERE B = 1",
                     "at character 30: expected the end of the statement"}));

INSTANTIATE_TEST_SUITE_P(
    update, statement_text_refusal,
    testing::Values(refused_text{"UPDATE", "at character 7: expected a table name"},
                    refused_text{"UPDATE T A = 1", "at character 10: expected SET"},
                    refused_text{"UPDATE T SET = 1", "at character 14: expected a column name"},
                    refused_text{"UPDATE T SET A 1", "at character 16: expected \"=\""},
                    refused_text{"UPDATE T SET A = 1 B = 2",
                                 "at character 20: expected \",\", WHERE or the end of the statement"},
                    refused_text{"UPDATE T SET A = 1 where B = 2",
                                 "at character 20: expected \",\", WHERE or the end of the statement"},
                    refused_text{"UPDATE T SET A = 1 WHERE ",
                                 "at character 26: expected a condition after WHERE"}));

} // namespace
