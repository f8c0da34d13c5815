// What a fresh process finds in its environment. Every test runs its work in a child of fork that is the
// first to use the platform there; so this is a program of its own, whose parent never uses it.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/file_access.h"
#include "platform/host/qryhost.h"
#include "platform/os.h"
#include "platform/trace.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

// Runs `work` in a child and ends it as a program does; the child's result is work's answer.
template <typename Work>
bool in_child(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        const bool good = work();
        std::exit(good ? 0 : 1);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string content_of(const std::string &path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

TEST(environment, traces_go_to_the_end_of_the_named_file) {
    const temporary_folder folder;
    const std::string path = folder.file("trace.txt");
    std::ofstream(path) << "before\n";
    const environment_variable trace("QRYLIB_TRACE", path);
    EXPECT_TRUE(in_child([] {
        pfwGENTrcPrintf(0, 258, 2, "%s():[Enter]:(%d) \n", "f", 7);
        return true;
    }));
    EXPECT_EQ(content_of(path), "before\nf():[Enter]:(7) \n");
}

TEST(environment, traces_go_to_stderr) {
    const temporary_folder folder;
    const std::string path = folder.file("stderr.txt");
    const environment_variable trace("QRYLIB_TRACE", "stderr");
    EXPECT_TRUE(in_child([&path] {
        const bool redirected = std::freopen(path.c_str(), "w", stderr) != nullptr;
        pfwGENTrcPrintf(0, 258, 2, "line\n");
        return redirected;
    }));
    EXPECT_EQ(content_of(path), "line\n");
}

TEST(environment, a_sink_takes_over_from_the_environment) {
    const temporary_folder folder;
    const std::string path = folder.file("trace.txt");
    const environment_variable trace("QRYLIB_TRACE", path);
    EXPECT_TRUE(in_child([] {
        pfwGENTrcPrintf(0, 258, 2, "first\n");
        qryhost_set_trace_sink(nullptr, nullptr);
        pfwGENTrcPrintf(0, 258, 2, "second\n");
        return true;
    }));
    EXPECT_EQ(content_of(path), "first\n");
}

TEST(environment, a_trace_file_that_cannot_be_opened_drops_the_traces) {
    const environment_variable trace("QRYLIB_TRACE", "/no/such/folder/trace.txt");
    EXPECT_TRUE(in_child([] {
        pfwGENTrcPrintf(0, 258, 2, "line\n");
        return true;
    }));
}

// Here, since it leaves a process without mutexes.
TEST(environment, mutexes_run_out_with_a_code) {
    EXPECT_TRUE(in_child([] {
        std::uint32_t mutex = 0;
        std::uint32_t created = 0;
        while (created < 1000 && pfwOSWCreateMutexSem(&mutex, 0, 1) == 0) {
            ++created;
        }
        return created == 256 && mutex == 256 && pfwOSWRequestMutexSem(256, -1) == 0 &&
               pfwOSWReleaseMutexSem(256) == 0;
    }));
}

TEST(environment, an_image_is_opened_on_first_use) {
    const temporary_folder folder;
    const environment_variable image("QRYLIB_IMAGE", folder.file("device.img"));
    EXPECT_TRUE(in_child([] {
        const std::uint32_t mode = 7;
        return tbctSTCSetStatus(requester, settings, setting_ids[0], &mode) == 0;
    }));
    EXPECT_TRUE(in_child([] {
        std::uint32_t mode = 0;
        return tbctSTCGetStatus(settings, setting_ids[0], &mode) == 0 && mode == 7;
    }));
}

TEST(environment, an_image_that_cannot_be_opened_is_refused_with_a_sentence) {
    const environment_variable image("QRYLIB_IMAGE", "/no/such/folder/device.img");
    EXPECT_TRUE(in_child([] {
        std::uint32_t mode = 0;
        return tbctSTCGetStatus(settings, setting_ids[0], &mode) == 0x5242 &&
               std::string(qryhost_error()).find("/no/such/folder/device.img") == 0;
    }));
}

TEST(environment, an_empty_image_name_is_private_memory) {
    const environment_variable image("QRYLIB_IMAGE", "");
    EXPECT_TRUE(in_child([] {
        std::uint32_t mode = 7;
        return tbctSTCGetStatus(settings, setting_ids[0], &mode) == 0 && mode == 0;
    }));
}

TEST(environment, the_files_folder_of_a_process_goes_with_it) {
    const temporary_folder folder;
    const environment_variable temporary("TMPDIR", folder.path());
    unsetenv("QRYLIB_FILES");
    EXPECT_TRUE(in_child([&folder] {
        const bool created = fsa_fio_existfile(1, 2, nullptr) == 5 && fsa_fio_mkdir(1, 2) == 0 &&
                             fsa_fio_existfile(1, 2, nullptr) == 0 && folder.entries() == 1;
        // A child has a folder of its own and leaves this one alone.
        return created && in_child([] { return fsa_fio_existfile(1, 2, nullptr) == 5; }) &&
               fsa_fio_existfile(1, 2, nullptr) == 0 && folder.entries() == 1;
    }));
    EXPECT_EQ(folder.entries(), 0);
}

TEST(environment, without_a_place_for_temporary_files_calls_answer_codes) {
    const environment_variable temporary("TMPDIR", "/no/such/folder");
    unsetenv("QRYLIB_FILES");
    EXPECT_TRUE(in_child([] {
        std::uint32_t file = 0;
        return fsa_fio_mkdir(1, 2) != 0 && fsa_fio_fopen(1, 2, "version", 1, &file) != 0;
    }));
}

TEST(environment, is_not_obeyed_by_programs_with_more_rights_than_their_user) {
    const temporary_folder folder;
    const std::string program = folder.file("secure_program");
    ASSERT_TRUE(std::filesystem::copy_file(QRYLIB_SECURE_PROGRAM, program));
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    if (chown(program.c_str(), 65534, 65534) != 0 || chmod(program.c_str(), 04755) != 0) {
        GTEST_SKIP() << "no program can be given to another user here";
    }
    const environment_variable image("QRYLIB_IMAGE", folder.file("device.img"));
    const environment_variable trace("QRYLIB_TRACE", folder.file("trace.txt"));
    const environment_variable files("QRYLIB_FILES", folder.file("files"));
    const int status = std::system(program.c_str());
    if (WIFEXITED(status) && (WEXITSTATUS(status) == 77 || WEXITSTATUS(status) == 126)) {
        GTEST_SKIP() << "programs get no other user's rights here";
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.entries(), 1) << "the program itself";
}

} // namespace
