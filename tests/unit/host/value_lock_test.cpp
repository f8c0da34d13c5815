// The lock of a category from inside: holders that are stopped, mutexes that are overwritten, guards that
// change while they are read.
#include <csignal>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "platform/host/image_file.h"
#include "platform/host/moment_copy.h"
#include "platform/host/value_lock.h"
#include "platform/host/write_in_progress.h"
#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;
using qryhost::element_place;
using qryhost::store_layout;
using qryhost::store_memory;
using qryhost::value_guard;
using qryhost::value_lock;
using qryhost::wait_limit;

constexpr std::uint32_t held = 0x5246;
constexpr std::uint32_t usual_wait = 10000;

const element_place &name_place() {
    return *store_layout::get().find(departments, department_name);
}

class value_locks : public host_test {
  protected:
    value_locks() { EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error(); }
    ~value_locks() override {
        qryhost_set_patience(usual_wait);
        EXPECT_EQ(qryhost_open(nullptr), 0);
    }

    static std::uint32_t write(char letter) {
        value_buffer value = empty_buffer();
        value[0] = static_cast<std::uint8_t>(letter);
        return tbctSTCSetTable(requester, departments, 1, department_name, value.data());
    }
    static char read() {
        value_buffer value = empty_buffer();
        EXPECT_EQ(tbctSTCGetTable(departments, 1, department_name, value.data()), 0u);
        return static_cast<char>(value[0]);
    }

    // A child that has the image open, holds the departments' lock, is at its worst place (the new value is
    // half written) and is stopped there.
    child_process stopped_writer() {
        child_process child([this] {
            store_memory memory = qryhost::open_image(path);
            wait_limit limit;
            const value_lock hold(memory, name_place().lock, limit);
            begin_write(memory);
            raise(SIGSTOP);
            return true;
        });
        int status = 0;
        EXPECT_EQ(waitpid(child.id(), &status, WUNTRACED), child.id());
        EXPECT_TRUE(WIFSTOPPED(status));
        return child;
    }

    static void begin_write(store_memory &memory) {
        const std::size_t category = name_place().lock;
        const std::uint32_t offset = name_place().value_offset(1);
        value_guard &guard = memory.guard(category);
        std::memcpy(memory.old_value(category), memory.region() + offset, name_place().size);
        guard.offset = offset;
        guard.size = name_place().size;
        guard.kind = qryhost::write_value;
        ++guard.sequence;
        std::memset(memory.region() + offset, '#', name_place().size / 2u);
    }

    std::vector<std::string> remarks() {
        std::vector<std::string> found;
        const auto collect = [](void *context, int, const char *text) {
            static_cast<std::vector<std::string> *>(context)->emplace_back(text);
        };
        EXPECT_EQ(qryhost_check(path.c_str(), collect, &found), 0) << qryhost_error();
        return found;
    }

    bool is_remarked(const std::string &text) {
        const std::vector<std::string> found = remarks();
        return std::find(found.begin(), found.end(), text) != found.end();
    }

    const temporary_folder folder;
    const std::string path = folder.file("device.img");
};

TEST_F(value_locks, of_a_stopped_writer_keep_no_reader_waiting) {
    ASSERT_EQ(write('a'), 0u);
    child_process writer = stopped_writer();
    qryhost_set_patience(600000);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(read(), 'a');
    tbctListTable list{};
    EXPECT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &list), 0u);
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCListTableGetVal(&list, value.data()), 0u);
    EXPECT_EQ(value[0], 'a');
    EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    EXPECT_EQ(qryhost_save(folder.file("saved.json").c_str()), 0) << qryhost_error();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
}

TEST_F(value_locks, of_a_stopped_writer_let_writers_wait_for_their_time) {
    ASSERT_EQ(write('a'), 0u);
    child_process writer = stopped_writer();
    const std::string name = "process " + std::to_string(writer.id());
    qryhost_set_patience(200);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(write('b'), held);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
    EXPECT_EQ(std::string(qryhost_error()),
              "the records of category 84411396 are held by " + name + "; waited 200 ms");
    EXPECT_EQ(tbSTCInitTable(departments, 1), held);
    EXPECT_EQ(tbctResetTable(departments), held);
    EXPECT_EQ(qryhost_reset(), 1);
    EXPECT_NE(std::string(qryhost_error()).find(name), std::string::npos);
    const std::uint32_t mode = 7;
    EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], &mode), 0u) << "another category";
    EXPECT_TRUE(is_remarked("category 84411396 is held by " + name));
}

TEST_F(value_locks, of_a_dead_writer_are_handed_over) {
    if (!dead_holders_are_told()) {
        GTEST_SKIP() << "the system keeps no list of a thread's locks: one that dies keeps them for good";
    }
    ASSERT_EQ(write('a'), 0u);
    child_process writer = stopped_writer();
    EXPECT_TRUE(writer.kill());
    EXPECT_EQ(read(), 'a');
    EXPECT_EQ(write('b'), 0u) << qryhost_error();
    EXPECT_EQ(read(), 'b');
}

TEST_F(value_locks, wait_for_a_writer_that_ends) {
    if (!dead_holders_are_told()) {
        GTEST_SKIP() << "the system keeps no list of a thread's locks: one that dies keeps them for good";
    }
    child_process writer = stopped_writer();
    std::thread later([&writer] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        kill(writer.id(), SIGKILL);
    });
    EXPECT_EQ(write('b'), 0u);
    later.join();
    EXPECT_EQ(read(), 'b');
}

// While another process has the image open, so that no opener makes the locks anew.
TEST_F(value_locks, that_are_overwritten_are_refused_or_do_no_harm) {
    qryhost_set_patience(0);
    ASSERT_EQ(write('a'), 0u);
    store_memory memory = qryhost::open_image(path);
    auto *mutex = reinterpret_cast<std::uint8_t *>(&memory.guard(name_place().lock).mutex);
    std::uint8_t sound[sizeof(pthread_mutex_t)];
    std::memcpy(sound, mutex, sizeof sound);
    int refused = 0;
    for (std::size_t at = 0; at < sizeof sound; ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            mutex[at] = static_cast<std::uint8_t>(byte);
            const char letter = static_cast<char>('b' + byte % 20);
            const char before = read();
            const std::uint32_t code = write(letter);
            ASSERT_TRUE(code == 0 || code == held) << at << ", " << byte;
            ASSERT_EQ(read(), code == 0 ? letter : before) << at << ", " << byte;
            refused += code == held ? 1 : 0;
            std::memcpy(mutex, sound, sizeof sound);
            memory.guard(name_place().lock).holder = 0;
        }
    }
    std::printf("%d of %zu refused\n", refused, 256 * sizeof sound);
    EXPECT_GT(refused, 400) << "those of the kind and of the owner";
}

// The lock is held by a process that goes on to hold it: nothing that is written over it lets a second one
// in.
TEST_F(value_locks, that_are_overwritten_while_held_let_nobody_in) {
    qryhost_set_patience(0);
    ASSERT_EQ(write('a'), 0u);
    child_process writer = stopped_writer();
    store_memory memory = qryhost::open_image(path);
    auto *mutex = reinterpret_cast<std::uint8_t *>(&memory.guard(name_place().lock).mutex);
    std::uint8_t sound[sizeof(pthread_mutex_t)];
    std::memcpy(sound, mutex, sizeof sound);
    constexpr std::uint8_t owner_died =
        0x40; // in the lock's highest byte: the system's own word that it is free
    for (std::size_t at = 0; at < sizeof sound; ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            std::memcpy(mutex, sound, sizeof sound);
            mutex[at] = static_cast<std::uint8_t>(byte);
            std::uint32_t word = 0;
            std::memcpy(&word, mutex, sizeof word);
            if ((word >> 24 & owner_died) == 0) {
                ASSERT_EQ(write('b'), held) << at << ", " << byte;
                ASSERT_EQ(read(), 'a');
            }
        }
    }
    std::memset(mutex, 0, sizeof(std::uint32_t)); // all of the lock's word: as if it were free
    EXPECT_EQ(write('b'), held);
    EXPECT_NE(std::strstr(qryhost_error(), "is damaged"), nullptr) << qryhost_error();
    std::memcpy(mutex, sound, sizeof sound);
}

// Whoever shares the image may change a guard between any two looks at it.
TEST_F(value_locks, a_guard_that_changes_while_it_is_read_leads_nowhere_else) {
    store_memory memory = qryhost::open_image(path);
    const std::size_t category = name_place().lock;
    std::atomic<bool> done{false};
    std::thread hostile([&] {
        value_guard &guard = memory.guard(category);
        for (std::uint32_t i = 0; !done; ++i) {
            guard.kind = i % 3;
            guard.first = i % 7 == 0 ? 0xFFFFFFF0u : 1u;
            guard.last = i % 5 == 0 ? 0xFFFFFFF0u : 101u;
            guard.offset = i % 2 == 0 ? name_place().value_offset(1) : 0xFFFFFF00u;
            guard.size = i % 11 == 0 ? 0x7FFFFFFFu : name_place().size;
        }
    });
    memory.guard(category).sequence = 1;
    std::vector<std::uint8_t> copy(name_place().size * 101u);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
    while (std::chrono::steady_clock::now() < end) {
        qryhost::settle_in_copy(memory, category, {copy.data(), name_place().value_offset(1), copy.size()});
    }
    done = true;
    hostile.join();
    memory.guard(category).sequence = 2;
}

TEST_F(value_locks, a_holder_of_another_namespace_is_told_as_such) {
    store_memory memory = qryhost::open_image(path);
    value_guard &guard = memory.guard(name_place().lock);
    guard.holder = 1;
    guard.holder_space = 1;
    EXPECT_TRUE(
        is_remarked("category 84411396 is held by process 1 of another process-number namespace, which "
                    "cannot be seen from here"));
    guard.holder = 0;
}

// The newest writers never pause: a reader must find its turn all the same.
TEST_F(value_locks, beside_writers_that_never_pause_are_not_needed_for_ever) {
    std::atomic<bool> done{false};
    std::vector<std::thread> writers;
    for (int i = 0; i < 3; ++i) {
        writers.emplace_back([&done, i] {
            while (!done) {
                EXPECT_EQ(write(static_cast<char>('a' + i)), 0u);
            }
        });
    }
    for (int i = 0; i < 2000; ++i) {
        tbctListTable list{};
        ASSERT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &list), 0u) << qryhost_error();
        ASSERT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    }
    done = true;
    for (std::thread &writer : writers) {
        writer.join();
    }
}

} // namespace
