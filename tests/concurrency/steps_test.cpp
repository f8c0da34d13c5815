// A write is stopped after each of its instructions: the image as it then lies there must open whole.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

#include <fstream>
#include <functional>
#include <string_view>

#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

// A file's bytes as they are now, without a call to the system: they are looked at after every instruction.
class watched_file {
  public:
    explicit watched_file(const std::string &path)
        : size_(static_cast<std::size_t>(std::filesystem::file_size(path))) {
        const int file = open(path.c_str(), O_RDONLY);
        base_ = mmap(nullptr, size_, PROT_READ, MAP_SHARED, file, 0);
        EXPECT_NE(base_, MAP_FAILED);
        close(file);
    }
    watched_file(const watched_file &) = delete;
    watched_file &operator=(const watched_file &) = delete;
    ~watched_file() { munmap(base_, size_); }

    std::string_view content() const { return {static_cast<const char *>(base_), size_}; }

  private:
    std::size_t size_;
    void *base_;
};

class steps : public host_test {
  protected:
    ~steps() override { EXPECT_EQ(qryhost_open(nullptr), 0); }

    // Runs `write` in a child, one instruction at a time, and `check` on what every different state of the
    // image leaves to a process that opens it.
    void stop_everywhere(const std::function<void()> &write, const std::function<void()> &check);

    const temporary_folder folder;
    const std::string path = folder.file("device.img");
    const std::string left = folder.file("left.img");
    int states = 0;
};

bool is_stopped(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFSTOPPED(status);
}

void steps::stop_everywhere(const std::function<void()> &write, const std::function<void()> &check) {
    child_process child([&write] {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            return false;
        }
        raise(SIGSTOP);
        write();
        _exit(0);
    });
    if (!is_stopped(child.id())) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    const watched_file image(path);
    std::string seen;
    long instructions = 0;
    do {
        if (image.content() != seen) {
            ++states;
            seen = image.content();
            std::ofstream(left, std::ios::binary | std::ios::trunc) << seen;
            ASSERT_EQ(qryhost_check(left.c_str(), nullptr, nullptr), 0) << qryhost_error();
            ASSERT_EQ(qryhost_open(left.c_str()), 0) << qryhost_error();
            check();
            ASSERT_EQ(qryhost_open(nullptr), 0);
            ASSERT_FALSE(HasFailure()) << "after " << instructions << " instructions";
        }
        ++instructions;
        ASSERT_EQ(ptrace(PTRACE_SINGLESTEP, child.id(), nullptr, nullptr), 0);
    } while (is_stopped(child.id()));
    std::printf("%ld instructions, %d states of the image\n", instructions, states);
    EXPECT_GT(states, 5) << "the write was not seen in the making";
}

value_buffer value_of(std::uint32_t category, std::uint32_t record, std::uint32_t element) {
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(category, record, element, value.data()), 0u);
    return value;
}

// A long text of one letter, as an element of `size` bytes holds it.
value_buffer letters(char letter, std::size_t size) {
    value_buffer value = empty_buffer();
    std::fill_n(value.begin(), size - 1, static_cast<std::uint8_t>(letter));
    return value;
}

constexpr std::size_t name_size = 193;

bool holds(std::uint32_t category, std::uint32_t record, std::uint32_t element, char letter) {
    return value_of(category, record, element) == letters(letter, name_size);
}

TEST_F(steps, of_a_write_leave_the_old_value_or_the_new) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    const value_buffer before = letters('A', name_size);
    const value_buffer after = letters('B', name_size);
    ASSERT_EQ(tbctSTCSetTable(requester, departments, 1, department_name, before.data()), 0u);
    ASSERT_EQ(tbctSTCSetTable(requester, departments, 2, department_name, before.data()), 0u);
    int old_values = 0;
    int new_values = 0;
    stop_everywhere([&] { tbctSTCSetTable(requester, departments, 1, department_name, after.data()); },
                    [&] {
                        old_values += holds(departments, 1, department_name, 'A') ? 1 : 0;
                        new_values += holds(departments, 1, department_name, 'B') ? 1 : 0;
                        EXPECT_TRUE(holds(departments, 2, department_name, 'A'));
                    });
    if (!IsSkipped()) {
        EXPECT_EQ(old_values + new_values, states);
        EXPECT_GT(old_values, 1);
        EXPECT_GT(new_values, 1);
    }
}

TEST_F(steps, of_a_reset_leave_the_old_values_or_the_default) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    for (std::uint32_t record = 0; record <= 10; ++record) {
        const value_buffer name = letters(record == 0 ? 'B' : 'A', name_size);
        ASSERT_EQ(tbctSTCSetTable(requester, persons, record, person_name, name.data()), 0u);
    }
    int old_values = 0;
    int new_values = 0;
    stop_everywhere([] { tbctResetTable(persons); },
                    [&] {
                        for (std::uint32_t record = 1; record <= 10; ++record) {
                            old_values += holds(persons, record, person_name, 'A') ? 1 : 0;
                            new_values += holds(persons, record, person_name, 'B') ? 1 : 0;
                        }
                    });
    if (!IsSkipped()) {
        EXPECT_EQ(old_values + new_values, 10 * states);
        EXPECT_GT(old_values, 1);
        EXPECT_GT(new_values, 1);
    }
}

} // namespace
