// File access: directories, files, codes, file numbers and injected failures.
#include "platform/file_access.h"

#include <fstream>

#include "unit/host/host_test.h"

namespace {

using namespace test;

constexpr std::uint32_t not_there = 5;

class file_access : public host_test {
  protected:
    void write(const char *name, const std::string &content) {
        std::uint32_t file = 0;
        ASSERT_EQ(fsa_fio_fopen(1, 2, name, 1, &file), 0u);
        ASSERT_EQ(fsa_fio_fwrite(file, content.data(), static_cast<std::uint32_t>(content.size())), 0u);
        ASSERT_EQ(fsa_fio_fclose(file), 0u);
    }

    std::uint32_t open_to_read(const char *name) {
        std::uint32_t file = 0;
        EXPECT_EQ(fsa_fio_fopen(1, 2, name, 0, &file), 0u);
        EXPECT_NE(file, 0u);
        return file;
    }

    temporary_folder folder;
    environment_variable files{"QRYLIB_FILES", folder.file("root")};
};

TEST_F(file_access, directories_come_and_go) {
    EXPECT_EQ(fsa_fio_existfile(1, 2, nullptr), not_there);
    EXPECT_EQ(fsa_fio_mkdir(1, 2), 0u);
    EXPECT_EQ(fsa_fio_existfile(1, 2, nullptr), 0u);
    EXPECT_EQ(fsa_fio_existfile(2, 1, nullptr), not_there);
    EXPECT_NE(fsa_fio_mkdir(1, 2), 0u);
    write("version", "1234");
    EXPECT_EQ(fsa_fio_remove(1, 2), 0u);
    EXPECT_EQ(fsa_fio_existfile(1, 2, nullptr), not_there);
    EXPECT_EQ(fsa_fio_remove(1, 2), not_there);
}

TEST_F(file_access, areas_and_directories_are_folders_of_numbers) {
    ASSERT_EQ(fsa_fio_mkdir(0xFFFFFFFF, 0), 0u);
    EXPECT_TRUE(std::filesystem::is_directory(folder.file("root/4294967295/0")));
}

TEST_F(file_access, a_file_holds_what_was_written) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    EXPECT_EQ(fsa_fio_existfile(1, 2, "version"), not_there);
    write("version", "12345678");
    EXPECT_EQ(fsa_fio_existfile(1, 2, "version"), 0u);
    const std::uint32_t file = open_to_read("version");
    char content[9] = "";
    EXPECT_EQ(fsa_fio_fread(file, content, 3), 0u);
    EXPECT_EQ(fsa_fio_fread(file, content + 3, 5), 0u);
    EXPECT_STREQ(content, "12345678");
    EXPECT_EQ(fsa_fio_fclose(file), 0u);
}

TEST_F(file_access, writing_starts_afresh) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    write("version", "12345678");
    write("version", "ab");
    EXPECT_EQ(std::filesystem::file_size(folder.file("root/1/2/version")), 2u);
}

TEST_F(file_access, a_short_read_is_a_failure) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    write("version", "123");
    const std::uint32_t file = open_to_read("version");
    char content[4];
    EXPECT_EQ(fsa_fio_fread(file, content, 4), 40u);
    EXPECT_EQ(fsa_fio_fclose(file), 0u);
}

TEST_F(file_access, what_is_missing_answers_5) {
    std::uint32_t file = 77;
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 0, &file), not_there);
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 1, &file), not_there) << "there is no directory yet";
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 0, &file), not_there);
    EXPECT_EQ(file, 77u);
}

TEST_F(file_access, bad_arguments_answer_1) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    std::uint32_t file = 0;
    for (const char *name : {"", ".", "..", "a/b", "/version"}) {
        EXPECT_EQ(fsa_fio_fopen(1, 2, name, 1, &file), 1u) << name;
        EXPECT_EQ(fsa_fio_existfile(1, 2, name), 1u) << name;
    }
    EXPECT_EQ(fsa_fio_fopen(1, 2, nullptr, 1, &file), 1u);
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 2, &file), 1u);
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 1, nullptr), 1u);
    EXPECT_EQ(fsa_fio_fopen(1, 2, std::string(300, 'n').c_str(), 1, &file), 40u);
}

TEST_F(file_access, a_file_is_closed_once) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    write("version", "1234");
    const std::uint32_t file = open_to_read("version");
    EXPECT_LE(file, 64u);
    EXPECT_EQ(fsa_fio_fclose(file), 0u);
    char content[4];
    for (const std::uint32_t bad : {file, 0u, 65u, 0xFFFFFFFFu}) {
        EXPECT_EQ(fsa_fio_fclose(bad), 1u);
        EXPECT_EQ(fsa_fio_fread(bad, content, 4), 1u);
        EXPECT_EQ(fsa_fio_fwrite(bad, content, 4), 1u);
    }
}

TEST_F(file_access, a_file_is_read_or_written) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    write("version", "1234");
    const std::uint32_t file = open_to_read("version");
    EXPECT_NE(fsa_fio_fwrite(file, "x", 1), 0u);
    EXPECT_EQ(fsa_fio_fread(file, nullptr, 1), 1u);
    EXPECT_EQ(fsa_fio_fclose(file), 0u);
}

TEST_F(file_access, too_many_open_files_answer_35) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    write("version", "1234");
    std::vector<std::uint32_t> open;
    for (int i = 0; i < 64; ++i) {
        open.push_back(open_to_read("version"));
    }
    std::uint32_t file = 0;
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 0, &file), 35u);
    for (const std::uint32_t one : open) {
        EXPECT_EQ(fsa_fio_fclose(one), 0u);
    }
}

TEST_F(file_access, a_root_that_is_a_file_is_no_folder) {
    std::ofstream(folder.file("root")) << "in the way";
    EXPECT_EQ(fsa_fio_existfile(1, 2, nullptr), not_there);
    EXPECT_NE(fsa_fio_mkdir(1, 2), 0u);
}

TEST_F(file_access, every_call_can_be_made_to_fail) {
    for (const qryhost_call call : {QRYHOST_FILE_EXIST, QRYHOST_FILE_MKDIR, QRYHOST_FILE_REMOVE,
                                    QRYHOST_FILE_OPEN, QRYHOST_FILE_READ, QRYHOST_FILE_WRITE}) {
        qryhost_fail(call, 0, 1, 60u + static_cast<std::uint32_t>(call));
    }
    std::uint32_t file = 0;
    char byte = 0;
    EXPECT_EQ(fsa_fio_existfile(1, 2, nullptr), 60u + QRYHOST_FILE_EXIST);
    EXPECT_EQ(fsa_fio_mkdir(1, 2), 60u + QRYHOST_FILE_MKDIR);
    EXPECT_EQ(fsa_fio_remove(1, 2), 60u + QRYHOST_FILE_REMOVE);
    EXPECT_EQ(fsa_fio_fopen(1, 2, "version", 1, &file), 60u + QRYHOST_FILE_OPEN);
    EXPECT_EQ(fsa_fio_fread(1, &byte, 1), 60u + QRYHOST_FILE_READ);
    EXPECT_EQ(fsa_fio_fwrite(1, &byte, 1), 60u + QRYHOST_FILE_WRITE);
    EXPECT_EQ(folder.entries(), 0);
}

TEST_F(file_access, a_close_that_fails_has_closed_the_file) {
    ASSERT_EQ(fsa_fio_mkdir(1, 2), 0u);
    write("version", "1234");
    const std::uint32_t file = open_to_read("version");
    qryhost_fail(QRYHOST_FILE_CLOSE, 0, 1, 36);
    EXPECT_EQ(fsa_fio_fclose(file), 36u);
    EXPECT_EQ(fsa_fio_fclose(file), 1u);
}

} // namespace
