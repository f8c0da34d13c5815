// What may stand where the cursor is, in a command or in a statement.
#include "tools/qrysh/commands/command_completion.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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

TEST(command_completion, each_command_knows_its_words) {
    EXPECT_EQ(candidates(".timer o"), (words{"off", "on"}));
    EXPECT_EQ(candidates(".mode js"), (words{"json", "jsonl"}));
    EXPECT_EQ(candidates(".fault al"), words{"alloc"});
    EXPECT_EQ(candidates(".fault sw"), words{"sweep"});
    EXPECT_EQ(candidates(".fault sweep SELECT PSN_K"), words{"PSN_KANA"});
    EXPECT_EQ(candidates(".watch 1 DELETE FROM PSN_T"), words{"PSN_TBL"});
    EXPECT_EQ(candidates(".watch PSN_T"), words{});
    EXPECT_EQ(candidates(".quit PSN"), words{});
    EXPECT_EQ(candidates(".schema PSN_TBL PSN"), words{});
    EXPECT_EQ(candidates(".explain "), candidates(""));
}

TEST(command_completion, files_and_folders) {
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "completion_test";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "Lists");
    for (const char *const name : {"lines.sql", "List.csv", ".hidden", "a b"}) {
        std::ofstream(folder / name) << '\n';
    }
    const std::string start = folder.string() + '/';
    EXPECT_EQ(candidates(".read " + start),
              (words{start + "List.csv", start + "Lists/", start + "lines.sql"}));
    EXPECT_EQ(candidates(".read " + start + "lin"), words{start + "lines.sql"});
    EXPECT_EQ(candidates(".load " + start + ".h"), words{start + ".hidden"});
    EXPECT_EQ(candidates(".import " + start + "List.csv PSN"), words{"PSN_TBL"});
    EXPECT_EQ(candidates(".dump PSN_TBL " + start + "Lists"), words{start + "Lists/"});
    EXPECT_EQ(candidates(".read /no/such/folder/x"), words{});
    std::filesystem::remove_all(folder);
}

TEST(command_completion, all_else_is_a_statement) {
    EXPECT_EQ(candidates("SELECT PSN_K"), words{"PSN_KANA"});
    EXPECT_EQ(candidates("DELETE FROM PSN_T"), words{"PSN_TBL"});
}

} // namespace
