// Titles that tell a result's columns apart.
#include "tools/text/column_titles.h"

#include <gtest/gtest.h>

namespace {

using qrytext::column_name;
using qrytext::make_titles;
using titles = std::vector<std::string>;

titles titles_of_text(const std::string &sql) {
    return make_titles(qrytext::select_list(sql));
}

TEST(column_titles, are_the_names_where_these_differ) {
    EXPECT_EQ(make_titles({{"T", "A"}, {"U", "B"}}), (titles{"A", "B"}));
}

TEST(column_titles, carry_the_table_where_names_repeat) {
    EXPECT_EQ(make_titles({{"T", "ID"}, {"T", "NAME"}, {"U", "ID"}}), (titles{"T.ID", "NAME", "U.ID"}));
}

TEST(column_titles, count_a_column_selected_twice) {
    EXPECT_EQ(make_titles({{"T", "A"}, {"T", "A"}, {"T", "A"}}), (titles{"T.A", "T.A (2)", "T.A (3)"}));
}

TEST(column_titles, name_the_count) {
    EXPECT_EQ(make_titles({{"", ""}}), (titles{"COUNT(*)"}));
}

TEST(select_list, is_what_stands_between_select_and_from) {
    EXPECT_EQ(titles_of_text("SELECT A , B FROM T"), (titles{"A", "B"}));
    EXPECT_EQ(titles_of_text("SELECT T.ID,U.ID,U.X FROM T, U WHERE T.ID = U.ID"),
              (titles{"T.ID", "U.ID", "X"}));
}

TEST(select_list, is_empty_without_its_keywords) {
    EXPECT_EQ(titles_of_text("DELETE FROM T"), titles{});
    EXPECT_EQ(titles_of_text("SELECT A"), titles{});
}

} // namespace
