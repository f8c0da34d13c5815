// What may stand where the cursor is, in a command or in a statement.
#include "tools/qrysh/commands/command_completion.h"

#include <gtest/gtest.h>

namespace {

using words = std::vector<std::string>;

words candidates(const std::string &line) {
    return qrysh::complete_line("adbk_db", line, line.size()).candidates;
}

TEST(command_completion, commands_and_their_words) {
    EXPECT_EQ(candidates(".dat"), words{".databases"});
    EXPECT_EQ(candidates(".db us"), words{"usrac_db"});
    EXPECT_EQ(candidates(".help .wa"), words{".watch"});
    EXPECT_EQ(candidates(".schema PSN"), words{"PSN_TBL"});
    EXPECT_EQ(candidates(".explain SELECT PSN_K"), words{"PSN_KANA"});
}

TEST(command_completion, all_else_is_a_statement) {
    EXPECT_EQ(candidates("SELECT PSN_K"), words{"PSN_KANA"});
    EXPECT_EQ(candidates("DELETE FROM PSN_T"), words{"PSN_TBL"});
}

} // namespace
