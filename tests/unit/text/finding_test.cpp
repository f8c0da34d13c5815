// Carets under texts, and words found in them.
#include "tools/text/finding.h"

#include <gtest/gtest.h>

namespace {

using qrytext::find_word;
using qrytext::point_at;

TEST(point_at, the_caret_stands_under_the_place) {
    EXPECT_EQ(point_at("SELECT X", {7, 1, "no"}), "  SELECT X\n         ^ no\n");
    EXPECT_EQ(point_at("ABC", {0, 3, "all"}), "  ABC\n  ^^^ all\n");
}

TEST(point_at, the_hint_stands_behind_a_colon) {
    EXPECT_EQ(point_at("ABC", {0, 1, "no", "write B"}), "  ABC\n  ^ no: write B\n");
    EXPECT_EQ(qrytext::with_hint({0, 1, "no", "write B"}, "; "), "no; write B");
    EXPECT_EQ(qrytext::with_hint({0, 1, "no"}, "; "), "no");
}

TEST(point_at, behind_the_end_there_is_one_caret) {
    EXPECT_EQ(point_at("AB", {2, 0, "more"}), "  AB\n    ^ more\n");
    EXPECT_EQ(point_at("AB", {9, 4, "more"}), "  AB\n    ^ more\n");
}

TEST(point_at, columns_are_those_of_a_terminal) {
    EXPECT_EQ(point_at("鈴木 X", {7, 1, ""}), "  鈴木 X\n       ^\n");
    EXPECT_EQ(point_at("鈴木", {0, 6, ""}), "  鈴木\n  ^^^^\n");
    EXPECT_EQ(point_at("\tX", {1, 1, ""}), "  \\x09X\n      ^\n");
}

TEST(find_word, words_stand_between_separators) {
    EXPECT_EQ(find_word("SELECT ID,IDX FROM T", "ID"), 7U);
    EXPECT_EQ(find_word("SELECT IDX FROM T", "ID"), std::nullopt);
    EXPECT_EQ(find_word("T.ID = 1", "ID"), std::nullopt);
    EXPECT_EQ(find_word("T.ID=1", "T.ID"), 0U);
    EXPECT_EQ(find_word("A ID", "ID"), 2U);
}

TEST(find_word, the_search_begins_where_asked) {
    EXPECT_EQ(find_word("ID ID", "ID", 1), 3U);
    EXPECT_EQ(find_word("ID", "ID", 5), std::nullopt);
    EXPECT_EQ(find_word("", "", 0), std::nullopt);
}

} // namespace
