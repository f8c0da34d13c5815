// The rules by which files are read and written.
#include "tools/files/whole_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tools/files/temporary_file.h"

namespace {

using namespace qryfiles;
namespace fs = std::filesystem;

class whole_file : public testing::Test {
  protected:
    whole_file() {
        std::string name = (fs::temp_directory_path() / "whole-file-XXXXXX").string();
        folder_ = mkdtemp(name.data());
    }
    ~whole_file() override { fs::remove_all(folder_); }

    std::string at(const std::string &name) const { return folder_ + "/" + name; }

    std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }

    static std::string content(const std::string &path) { return read_file(path, 1 << 20); }

    static mode_t mode(const std::string &path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    // The sentence that an action ends with.
    template <typename Action>
    static std::string refusal_of(Action action) {
        try {
            action();
        } catch (const file_error &error) {
            return error.what();
        }
        return "";
    }

  private:
    std::string folder_;
};

TEST_F(whole_file, is_created_for_its_owner_alone_and_keeps_the_mode_it_has) {
    const mode_t before = umask(0);
    write_file(at("a"), "first");
    EXPECT_EQ(mode(at("a")), 0600u);
    ASSERT_EQ(chmod(at("a").c_str(), 0640), 0);
    write_file(at("a"), "second");
    EXPECT_EQ(mode(at("a")), 0640u);
    EXPECT_EQ(content(at("a")), "second");
    EXPECT_EQ(entries(), 1u);
    umask(before);
}

TEST_F(whole_file, is_left_as_it_was_when_it_cannot_be_written) {
    EXPECT_EQ(refusal_of([&] { write_file(at("missing/a"), "x"); }),
              at("missing/a") + ": cannot be created: No such file or directory");
    EXPECT_EQ(refusal_of([&] { write_file(at(""), "x"); }), at("") + ": cannot be replaced: it is a folder");
    EXPECT_EQ(entries(), 0u);
}

TEST_F(whole_file, follows_a_link_and_replaces_what_it_leads_to) {
    fs::create_directory(at("deep"));
    std::ofstream(at("deep/real")) << "old";
    fs::create_symlink("deep/real", at("link"));
    fs::create_symlink("link", at("other"));
    write_file(at("other"), "new");
    EXPECT_TRUE(fs::is_symlink(at("other")) && fs::is_symlink(at("link")));
    EXPECT_EQ(content(at("deep/real")), "new");

    fs::create_symlink("deep/made", at("dangling"));
    EXPECT_EQ(what_stands(at("dangling")), standing::nothing);
    write_file(at("dangling"), "made");
    EXPECT_EQ(content(at("deep/made")), "made");

    fs::create_symlink("circle", at("circle"));
    EXPECT_EQ(refusal_of([&] { write_file(at("circle"), "x"); }),
              at("circle") + ": is a link that leads nowhere");
}

// Somebody else's link in a folder like /tmp.
TEST_F(whole_file, does_not_follow_a_link_that_somebody_may_have_planted) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root, to own files as somebody else";
    }
    std::ofstream(at("victim")) << "old";
    fs::create_directory(at("open"));
    ASSERT_EQ(chmod(at("open").c_str(), 01777), 0);
    fs::create_symlink(at("victim"), at("open/planted"));
    ASSERT_EQ(lchown(at("open/planted").c_str(), 65534, 65534), 0);
    const std::string refused =
        at("open/planted") + ": is somebody else's link, in a folder that everybody may write to";
    EXPECT_EQ(refusal_of([&] { write_file(at("open/planted"), "new"); }), refused);
    EXPECT_EQ(refusal_of([&] { what_stands(at("open/planted")); }), refused);
    EXPECT_EQ(content(at("victim")), "old");
}

// The name of the temporary file is drawn; whatever stands there already is neither opened nor followed.
TEST_F(whole_file, goes_around_names_that_are_taken) {
    std::ofstream(at("victim")) << "old";
    std::ofstream(at("a.1.tmp")) << "left";
    fs::create_symlink("victim", at("a.2.tmp"));
    fs::create_symlink("nothing", at("a.3.tmp"));
    int number = 0;
    {
        temporary_file fresh(at("a"), "new", [&] { return std::to_string(++number); });
        EXPECT_EQ(fresh.path(), at("a.4.tmp"));
        EXPECT_EQ(content(fresh.path()), "new");
    }
    EXPECT_EQ(content(at("victim")), "old");
    EXPECT_EQ(content(at("a.1.tmp")), "left");
    EXPECT_FALSE(fs::exists(at("nothing")));
    EXPECT_FALSE(fs::exists(at("a.4.tmp")));

    const auto always = [] { return std::string("1"); };
    EXPECT_EQ(refusal_of([&] { temporary_file(at("a"), "new", always); }),
              at("a") + ": cannot be created: File exists");
    EXPECT_EQ(content(at("a.1.tmp")), "left");
}

TEST_F(whole_file, has_temporary_names_that_nobody_can_tell) {
    EXPECT_EQ(random_digits().size(), 16u);
    EXPECT_NE(random_digits(), random_digits());
}

TEST_F(whole_file, may_have_the_longest_name) {
    const std::string name(255, 'n');
    write_file(at(name), "long");
    EXPECT_EQ(content(at(name)), "long");
}

TEST_F(whole_file, writes_through_what_is_no_file) {
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(what_stands(at("pipe")), standing::stream);
    std::string read(100, '\0');
    std::thread reader([&] {
        const open_file pipe(at("pipe"), O_RDONLY);
        read.resize(static_cast<std::size_t>(::read(pipe.number(), read.data(), read.size())));
    });
    write_file(at("pipe"), "through");
    reader.join();
    EXPECT_EQ(read, "through");
    EXPECT_TRUE(fs::is_fifo(at("pipe")));

    fs::create_symlink("/dev/full", at("full"));
    EXPECT_EQ(refusal_of([&] { write_file(at("full"), "x"); }),
              "/dev/full: cannot be written: No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

// A reader that leaves is a failure and not the end of the program.
TEST_F(whole_file, survives_a_pipe_without_a_reader) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const std::string path = "/dev/fd/" + std::to_string(ends[1]);
    EXPECT_EQ(refusal_of([&] { write_file(path, "x"); }).substr(path.size()),
              ": cannot be written: Broken pipe");
    close(ends[1]);
}

// As /dev/stdout is, where standard output goes to a file.
TEST_F(whole_file, goes_on_in_the_process_own_open_files) {
    const open_file own(at("own"), O_WRONLY | O_CREAT, 0600);
    write_all(own, "begun, ", "own");
    const std::string path = "/dev/fd/" + std::to_string(own.number());
    fs::create_symlink(path, at("link"));
    write_file(path, "continued, ");
    write_file(at("link"), "and linked, ");
    write_all(own, "ended", "own");
    EXPECT_EQ(content(at("own")), "begun, continued, and linked, ended");
}

TEST_F(whole_file, does_not_replace_the_database_of_another_program) {
    std::string head("SQLite format 3\0", 16);
    head.resize(100);
    std::ofstream(at("theirs")) << head;
    fs::create_symlink("theirs", at("link"));
    EXPECT_EQ(what_stands(at("link")), standing::foreign_database);
    EXPECT_EQ(refusal_of([&] { write_file(at("link"), "x"); }),
              at("link") + ": is a SQLite file of another program, which is not replaced");
    EXPECT_EQ(content(at("theirs")), head);
    write_file(at("link"), "forced", care::none);
    EXPECT_EQ(content(at("theirs")), "forced");

    head.replace(68, 4, "QRYS");
    std::ofstream(at("ours")) << head;
    EXPECT_EQ(what_stands(at("ours")), standing::file);
    write_file(at("ours"), "x");
    EXPECT_EQ(content(at("ours")), "x");
}

TEST_F(whole_file, is_created_only_where_nothing_stands) {
    create_file(at("a"), "first");
    create_file(at("a"), "second");
    EXPECT_EQ(content(at("a")), "first");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(whole_file, is_read_within_limits) {
    write_file(at("a"), std::string(1000, 'a'));
    EXPECT_EQ(read_file(at("a"), 1000), std::string(1000, 'a'));
    EXPECT_EQ(refusal_of([&] { read_file(at("a"), 999); }), at("a") + ": is larger than 999 bytes");
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(refusal_of([&] { read_file(at("pipe"), 1000); }), at("pipe") + ": is not a file");
    EXPECT_EQ(refusal_of([&] { read_file("/dev/zero", 1000); }), "/dev/zero: is not a file");
    EXPECT_EQ(refusal_of([&] { read_file(at("b"), 1000); }),
              at("b") + ": cannot be opened: No such file or directory");
}

} // namespace
