// Fork beside threads that are inside the platform: the child works, on private memory and on an image.
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "platform/os.h"
#include "platform/trace.h"
#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

constexpr int children = 60;

class fork_beside_threads : public host_test {
  protected:
    fork_beside_threads() {
        qryhost_set_trace_sink([](void *, uint32_t, uint32_t, uint32_t, const char *) {}, nullptr);
    }
    ~fork_beside_threads() override {
        qryhost_set_trace_sink(nullptr, nullptr);
        EXPECT_EQ(qryhost_open(nullptr), 0);
    }

    // A child that does not end within its time hangs.
    static bool ends_well(child_process child) {
        for (int waited = 0; waited < 2000; ++waited) {
            int status = 0;
            if (waitpid(child.id(), &status, WNOHANG) == child.id()) {
                child.release();
                return WIFEXITED(status) && WEXITSTATUS(status) == 0;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return false;
    }

    // Forks while `busy_step` runs in other threads; the child runs `work`.
    template <typename Step, typename Work>
    void fork_beside(Step busy_step, Work work) {
        std::atomic<bool> done{false};
        std::vector<std::thread> threads;
        for (int t = 0; t < 2; ++t) {
            threads.emplace_back([&] {
                while (!done) {
                    busy_step();
                }
            });
        }
        int bad = 0;
        for (int i = 0; i < children && bad == 0; ++i) {
            bad += ends_well(child_process(work)) ? 0 : 1;
        }
        done = true;
        for (std::thread &thread : threads) {
            thread.join();
        }
        EXPECT_EQ(bad, 0);
    }

    // The threads take no memory: a sanitizer's allocator would keep its locks in the child.
    static bool write_and_read(std::uint8_t byte) {
        char value[3001] = {};
        char read[3001];
        std::memset(value, byte, 192);
        return tbctSTCSetTable(requester, departments, 1, department_name, value) == 0 &&
               tbctSTCGetTable(departments, 1, department_name, read) == 0;
    }
    static void keep_writing() {
        static std::atomic<std::uint8_t> last{0};
        write_and_read(++last);
    }
    static bool is_whole() {
        char value[3001];
        return tbctSTCGetTable(departments, 1, department_name, value) == 0 &&
               std::all_of(value, value + 192, [&value](char byte) { return byte == value[0]; });
    }
};

TEST_F(fork_beside_threads, leaves_private_memory_whole_and_free) {
    fork_beside(keep_writing, [] {
        return is_whole() && write_and_read(0x77) && tbctResetTable(departments) == 0 && qryhost_reset() == 0;
    });
}

TEST_F(fork_beside_threads, leaves_an_image_free) {
    const temporary_folder folder;
    ASSERT_EQ(qryhost_open(folder.file("device.img").c_str()), 0) << qryhost_error();
    fork_beside(keep_writing,
                [] { return is_whole() && write_and_read(0x77) && tbSTCInitTable(departments, 1) == 0; });
    EXPECT_EQ(qryhost_check(folder.file("device.img").c_str(), nullptr, nullptr), 0) << qryhost_error();
}

TEST_F(fork_beside_threads, leaves_the_services_free) {
    std::uint32_t mutex = 0;
    ASSERT_EQ(pfwOSWCreateMutexSem(&mutex, 0, 1), 0u);
    const auto use_services = [mutex] {
        pfwGENTrcPrintf(0, 258, 2, "%s\n", "line");
        EXPECT_EQ(pfwOSWRequestMutexSem(mutex, -1), 0u);
        qryhost_fail_clear();
        EXPECT_EQ(pfwOSWReleaseMutexSem(mutex), 0u);
        qryhost_pool_blocks();
        qryhost_current_db_handle();
        return !HasFailure();
    };
    fork_beside(use_services, use_services);
}

TEST_F(fork_beside_threads, lets_the_child_open_and_close_stores) {
    fork_beside(keep_writing,
                [] { return qryhost_open(nullptr) == 0 && write_and_read(2) && qryhost_close() == 0; });
}

// The thread that forks may hold what it likes.
TEST_F(fork_beside_threads, keeps_what_the_forking_thread_holds) {
    std::uint32_t mutex = 0;
    ASSERT_EQ(pfwOSWCreateMutexSem(&mutex, 0, 1), 0u);
    ASSERT_EQ(pfwOSWRequestMutexSem(mutex, -1), 0u);
    ASSERT_EQ(pfwOSWLockTask(), 0u);
    EXPECT_TRUE(ends_well(child_process([mutex] {
        return pfwOSWReleaseMutexSem(mutex) == 0 && pfwOSWUnlockTask() == 0 && write_and_read(3);
    })));
    EXPECT_EQ(pfwOSWUnlockTask(), 0u);
    EXPECT_EQ(pfwOSWReleaseMutexSem(mutex), 0u);
}

} // namespace
