// What may stand where the cursor is.
#include "tools/text/completion.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using qrytext::common_start;
using qrytext::complete;
using words = std::vector<std::string>;

words candidates(const std::string &line, const std::string &db_name = "adbk_db") {
    return complete(db_name, line, line.size()).candidates;
}

bool holds(const words &all, const std::string &word) {
    return std::find(all.begin(), all.end(), word) != all.end();
}

TEST(completion, keywords_tables_and_columns) {
    EXPECT_EQ(candidates("SEL"), words{"SELECT"});
    EXPECT_EQ(candidates("SELECT PSN_K"), words{"PSN_KANA"});
    EXPECT_EQ(candidates("DELETE FROM PSN_T"), words{"PSN_TBL"});
    EXPECT_EQ(candidates("SELECT NOTHING_SUCH"), words{});
}

TEST(completion, typed_in_any_case) {
    EXPECT_EQ(candidates("sel"), words{"SELECT"});
    EXPECT_EQ(candidates("SELECT psn_kana"), words{"PSN_KANA"});
}

TEST(completion, only_what_may_stand_there) {
    EXPECT_EQ(candidates(""), (words{"CREATE", "DELETE", "DROP", "INSERT", "SELECT", "UPDATE"}));
    EXPECT_EQ(candidates("DELETE "), words{"FROM"});
    EXPECT_TRUE(holds(candidates("SELECT "), "COUNT(*)"));
    EXPECT_FALSE(holds(candidates("SELECT "), "PSN_TBL"));
    EXPECT_EQ(candidates("SELECT PSN_ID "), words{"FROM"});
    EXPECT_TRUE(holds(candidates("SELECT PSN_ID, "), "PSN_NAME"));
    EXPECT_TRUE(holds(candidates("SELECT PSN_ID FROM "), "PSN_TBL"));
    EXPECT_FALSE(holds(candidates("SELECT PSN_ID FROM "), "PSN_NAME"));
    EXPECT_EQ(candidates("SELECT PSN_ID FROM PSN_TBL "), (words{"ORDER", "WHERE"}));
    EXPECT_EQ(candidates("DELETE FROM PSN_TBL "), words{"WHERE"}) << "only a SELECT is sorted";
    EXPECT_TRUE(holds(candidates("DELETE FROM PSN_TBL WHERE "), "PSN_ID"));
    EXPECT_EQ(candidates("DELETE FROM PSN_TBL WHERE PSN_ID = "), words{});
    EXPECT_EQ(candidates("DELETE FROM PSN_TBL WHERE PSN_NAME = 'A"), words{});
    EXPECT_EQ(candidates("DELETE FROM PSN_TBL WHERE PSN_ID = 1 "),
              (words{"AND", "IN", "INLIKE", "LIKE", "OR"}));
    EXPECT_EQ(candidates("SELECT PSN_ID FROM PSN_TBL ORDER "), words{"BY"});
    EXPECT_EQ(candidates("SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_ID "), (words{"ASC", "DESC"}));
    EXPECT_EQ(candidates("INSERT INTO PSN_TBL "), words{"VALUES"});
    EXPECT_TRUE(holds(candidates("INSERT INTO PSN_TBL (PSN_ID, "), "PSN_NAME"));
    EXPECT_FALSE(holds(candidates("INSERT INTO PSN_TBL (PSN_ID, "), "PSN_TBL"));
    EXPECT_EQ(candidates("INSERT INTO PSN_TBL (PSN_ID) VALUES ("), words{});
    EXPECT_TRUE(holds(candidates("UPDATE PSN_TBL SET "), "PSN_NAME"));
    EXPECT_TRUE(holds(candidates("UPDATE PSN_TBL SET PSN_NAME = 'a, FROM', "), "PSN_ID"));
    EXPECT_EQ(candidates("UPDATE PSN_TBL SET PSN_ID = 1 "), words{"WHERE"});
}

TEST(completion, columns_are_those_of_the_tables_named) {
    const std::string line = "SELECT  FROM PSN_TBL";
    const words named = complete("adbk_db", line, 7).candidates;
    EXPECT_TRUE(holds(named, "PSN_NAME"));
    EXPECT_FALSE(holds(named, "FAX_PHONE"));
    EXPECT_TRUE(holds(candidates("SELECT "), "FAX_PHONE"));
}

TEST(completion, a_joins_columns_carry_their_table) {
    const std::string line = "SELECT DEPT_TBL.NA FROM DEPT_TBL, EDIT_CNT_TBL";
    EXPECT_EQ(complete("department_db", line, 18).candidates, words{"DEPT_TBL.NAME"});
}

TEST(completion, the_word_begins_behind_a_separator) {
    EXPECT_EQ(complete("adbk_db", "SELECT PSN_ID,PSN_K", 19).word_begin, 14U);
    EXPECT_EQ(complete("adbk_db", "SEL", 3).word_begin, 0U);
    EXPECT_EQ(complete("adbk_db", "", 0).word_begin, 0U);
}

TEST(completion, what_all_begin_with) {
    EXPECT_EQ(common_start({"PSN_ID", "PSN_NAME"}), "PSN_");
    EXPECT_EQ(common_start({"A"}), "A");
    EXPECT_EQ(common_start({"A", "B"}), "");
    EXPECT_EQ(common_start({}), "");
}

} // namespace
