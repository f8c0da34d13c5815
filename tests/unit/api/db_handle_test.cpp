// The registry of database handles: every rule, every platform failure, several threads at once.
#include <qrylib/db_handle.h>

#include <cstdlib>
#include <future>
#include <thread>

#include "platform/db_handle.h"
#include "platform/os.h"
#include "unit/support.h"

namespace {

using codes = std::vector<std::pair<std::string, std::uint32_t>>;

constexpr char add_name[] = "dsql_db_handle_add";

// Runs `work` in a thread of its own and hands its result over.
template <typename Work>
auto elsewhere(Work work) {
    return std::async(std::launch::async, work).get();
}

std::uint32_t no_handle(void *) {
    return 0;
}

// Whether the library has registered: the service takes one registration at a time.
bool is_registered() {
    if (sdb_RegisterDBHandleService(no_handle, nullptr) != 0) {
        return true;
    }
    sdb_DeregisterDBHandleService();
    return false;
}

bool process_has_mutex = false; // once a test has run that adds handles in this process

// A process makes the mutex once, so what happens before that is tried in processes of their own. Suites of
// this kind run before all others, but for a repetition.
class handle_registry_DeathTest : public ::testing::Test {
  protected:
    void SetUp() override {
        qryhost_fail_clear();
        if (process_has_mutex) {
            GTEST_SKIP() << "this process has made the mutex (a repetition)";
        }
    }

    // Ends the process, with 0 when `held`.
    [[noreturn]] static void finish(bool held) { std::exit(held ? 0 : 1); }
};

TEST_F(handle_registry_DeathTest, before_any_add_there_is_no_entry_and_no_mutex) {
    EXPECT_EXIT(
        {
            int cell = 0;
            const bool held = dsql_db_handle_delete() == 1 && dsql_db_handle_callback(&cell) == 0 &&
                              dsql_db_handle_callback(nullptr) == 0;
            finish(held && qryhost_call_count(QRYHOST_REQUEST_MUTEX) == 0 &&
                   qryhost_call_count(QRYHOST_LOCK_TASK) == 0 && !is_registered());
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(handle_registry_DeathTest, a_failing_task_lock_changes_nothing) {
    EXPECT_EXIT(
        {
            qryhost_fail(QRYHOST_LOCK_TASK, 0, 1, 0x31);
            bool held = dsql_db_handle_add() == 0x31 && qryhost_call_count(QRYHOST_CREATE_MUTEX) == 0;
            held = held && dsql_db_handle_delete() == 1 && !is_registered() && qryhost_pool_blocks() == 0;
            held = held && dsql_db_handle_add() == 0 && qryhost_call_count(QRYHOST_CREATE_MUTEX) == 1;
            finish(held && dsql_db_handle_delete() == 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(handle_registry_DeathTest, a_mutex_that_cannot_be_created_is_tried_again) {
    EXPECT_EXIT(
        {
            qryhost_fail(QRYHOST_CREATE_MUTEX, 0, 1, 0x32);
            bool held = dsql_db_handle_add() == 0x32 && dsql_db_handle_delete() == 1 && !is_registered();
            held = held && qryhost_call_count(QRYHOST_REQUEST_MUTEX) == 0 && qryhost_pool_blocks() == 0;
            // Another thread: the task lock was released.
            held = held && elsewhere([] { return dsql_db_handle_add() == 0; });
            finish(held && qryhost_call_count(QRYHOST_CREATE_MUTEX) == 2);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(handle_registry_DeathTest, threads_that_arrive_first_at_once_create_one_mutex) {
    EXPECT_EXIT(
        {
            // The task lock stays taken until every thread has seen that there is no mutex.
            constexpr std::uint32_t thread_num = 8;
            pfwOSWLockTask();
            std::vector<std::thread> threads;
            for (std::uint32_t i = 0; i < thread_num; ++i) {
                threads.emplace_back([] {
                    dsql_db_handle_add();
                    dsql_db_handle_delete();
                });
            }
            while (qryhost_call_count(QRYHOST_LOCK_TASK) != 1 + thread_num) {
                std::this_thread::yield();
            }
            pfwOSWUnlockTask();
            for (std::thread &thread : threads) {
                thread.join();
            }
            finish(qryhost_call_count(QRYHOST_CREATE_MUTEX) == 1 && !is_registered());
        },
        testing::ExitedWithCode(0), "");
}

class handle_registry : public test::platform_test {
  protected:
    handle_registry() {
        process_has_mutex = true;
        EXPECT_FALSE(is_registered());
        qryhost_fail_clear(); // the question itself was counted
    }
    ~handle_registry() override {
        qryhost_fail_clear();
        while (dsql_db_handle_delete() == 0) {
        }
        EXPECT_FALSE(is_registered());
    }
};

TEST_F(handle_registry, add_gives_the_thread_a_handle) {
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    EXPECT_EQ(dsql_db_handle_add(), 0);
    EXPECT_NE(qryhost_current_db_handle(), 0u);
    EXPECT_TRUE(is_registered());
    EXPECT_EQ(dsql_db_handle_delete(), 0);
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    EXPECT_TRUE(lines.empty());
}

TEST_F(handle_registry, the_last_delete_deregisters_and_the_next_add_registers_again) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(dsql_db_handle_add(), 0);
        EXPECT_TRUE(is_registered());
        EXPECT_EQ(dsql_db_handle_delete(), 0);
        EXPECT_FALSE(is_registered());
    }
}

TEST_F(handle_registry, delete_without_an_entry_is_1) {
    EXPECT_EQ(dsql_db_handle_delete(), 1);
    EXPECT_EQ(dsql_db_handle_add(), 0);
    EXPECT_EQ(elsewhere(dsql_db_handle_delete), 1);
    EXPECT_TRUE(is_registered());
    EXPECT_NE(qryhost_current_db_handle(), 0u);
}

TEST_F(handle_registry, a_second_add_hides_the_first_entry) {
    EXPECT_EQ(dsql_db_handle_add(), 0);
    const std::uint32_t first = qryhost_current_db_handle();
    EXPECT_EQ(dsql_db_handle_add(), 0);
    EXPECT_NE(qryhost_current_db_handle(), first);
    EXPECT_EQ(dsql_db_handle_delete(), 0);
    EXPECT_EQ(qryhost_current_db_handle(), first);
    EXPECT_EQ(dsql_db_handle_delete(), 0);
    EXPECT_EQ(dsql_db_handle_delete(), 1);
}

TEST_F(handle_registry, each_thread_has_its_own) {
    EXPECT_EQ(dsql_db_handle_add(), 0);
    const std::uint32_t mine = qryhost_current_db_handle();
    EXPECT_EQ(elsewhere(qryhost_current_db_handle), 0u);
    const auto [other, left] = elsewhere([] {
        EXPECT_EQ(dsql_db_handle_add(), 0);
        const std::uint32_t handle = qryhost_current_db_handle();
        EXPECT_EQ(dsql_db_handle_delete(), 0);
        return std::pair{handle, qryhost_current_db_handle()};
    });
    EXPECT_NE(other, 0u);
    EXPECT_NE(other, mine);
    EXPECT_EQ(left, 0u);
    EXPECT_EQ(qryhost_current_db_handle(), mine);
}

TEST_F(handle_registry, an_entry_behind_others_can_be_deleted) {
    EXPECT_EQ(dsql_db_handle_add(), 0);
    std::promise<void> added;
    std::promise<void> deleted;
    auto other = std::async(std::launch::async, [&] {
        EXPECT_EQ(dsql_db_handle_add(), 0);
        const std::uint32_t before = qryhost_current_db_handle();
        added.set_value();
        deleted.get_future().wait();
        EXPECT_EQ(qryhost_current_db_handle(), before);
        EXPECT_EQ(dsql_db_handle_delete(), 0);
    });
    added.get_future().wait();
    EXPECT_EQ(dsql_db_handle_delete(), 0);
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    EXPECT_TRUE(is_registered());
    deleted.set_value();
    other.get();
}

TEST_F(handle_registry, the_callback_answers_only_for_the_registered_list) {
    EXPECT_EQ(dsql_db_handle_add(), 0);
    int stale = 0;
    EXPECT_EQ(dsql_db_handle_callback(&stale), 0u);
    EXPECT_EQ(dsql_db_handle_callback(nullptr), 0u);
}

TEST_F(handle_registry, without_memory_for_the_cell_nothing_is_registered) {
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 0x77);
    EXPECT_EQ(dsql_db_handle_add(), -1);
    EXPECT_EQ(qryhost_call_count(QRYHOST_REGISTER_SERVICE), 0u);
    EXPECT_FALSE(is_registered());
    EXPECT_EQ(take_codes(), (codes{{add_name, UINT32_MAX}}));
    EXPECT_EQ(dsql_db_handle_add(), 0);
}

TEST_F(handle_registry, without_memory_for_the_first_node_nothing_stays_registered) {
    qryhost_fail(QRYHOST_ALLOC, 1, 1, 0x77);
    EXPECT_EQ(dsql_db_handle_add(), -1);
    EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_HANDLE), 0u);
    EXPECT_FALSE(is_registered());
    EXPECT_EQ(dsql_db_handle_delete(), 1);
}

TEST_F(handle_registry, without_memory_for_a_further_node_the_others_stay) {
    EXPECT_EQ(dsql_db_handle_add(), 0);
    const std::uint32_t mine = qryhost_current_db_handle();
    qryhost_fail(QRYHOST_ALLOC, 0, 1, 0x77);
    EXPECT_EQ(elsewhere(dsql_db_handle_add), -1);
    EXPECT_TRUE(is_registered());
    EXPECT_EQ(qryhost_current_db_handle(), mine);
}

TEST_F(handle_registry, a_refused_registration_leaves_nothing) {
    qryhost_fail(QRYHOST_REGISTER_SERVICE, 0, 1, 0x21);
    const std::uint32_t blocks = qryhost_pool_blocks();
    EXPECT_EQ(dsql_db_handle_add(), 0x21);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_HANDLE), 0u);
    EXPECT_FALSE(is_registered());
    EXPECT_EQ(dsql_db_handle_delete(), 1);
    EXPECT_EQ(take_codes(), (codes{{add_name, 0x21}}));
    EXPECT_EQ(dsql_db_handle_add(), 0);
}

TEST_F(handle_registry, a_handle_that_cannot_be_created_drops_every_entry) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    EXPECT_EQ(dsql_db_handle_add(), 0);
    EXPECT_EQ(dsql_db_handle_add(), 0);
    qryhost_fail(QRYHOST_CREATE_HANDLE, 0, 1, 0x22);
    EXPECT_EQ(elsewhere(dsql_db_handle_add), 0x22);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    EXPECT_FALSE(is_registered());
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    EXPECT_EQ(dsql_db_handle_delete(), 1);
    EXPECT_EQ(take_codes(), (codes{{add_name, 0x22}}));
    EXPECT_EQ(dsql_db_handle_add(), 0);
    EXPECT_NE(qryhost_current_db_handle(), 0u);
}

TEST_F(handle_registry, a_mutex_that_cannot_be_had_changes_nothing) {
    EXPECT_EQ(dsql_db_handle_add(), 0);
    const std::uint32_t mine = qryhost_current_db_handle();
    qryhost_fail(QRYHOST_REQUEST_MUTEX, 0, 3, 0x33);
    EXPECT_EQ(dsql_db_handle_add(), 0x33);
    EXPECT_EQ(dsql_db_handle_delete(), 1);
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    EXPECT_EQ(take_codes(), (codes{{add_name, 0x33}}));
    EXPECT_EQ(qryhost_current_db_handle(), mine);
}

TEST_F(handle_registry, threads_add_ask_and_delete_at_once) {
    constexpr int rounds = 200;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < rounds; ++round) {
                ASSERT_EQ(dsql_db_handle_add(), 0);
                const std::uint32_t mine = qryhost_current_db_handle();
                ASSERT_NE(mine, 0u);
                ASSERT_EQ(dsql_db_handle_add(), 0);
                ASSERT_GT(qryhost_current_db_handle(), mine);
                ASSERT_EQ(dsql_db_handle_delete(), 0);
                ASSERT_EQ(qryhost_current_db_handle(), mine);
                ASSERT_EQ(dsql_db_handle_delete(), 0);
            }
        });
    }
    // A thread without an entry keeps asking while the list comes and goes.
    threads.emplace_back([] {
        for (int round = 0; round < 4 * rounds; ++round) {
            ASSERT_EQ(qryhost_current_db_handle(), 0u);
            ASSERT_EQ(dsql_db_handle_delete(), 1);
        }
    });
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_LE(qryhost_call_count(QRYHOST_CREATE_MUTEX), 1u);
    EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_HANDLE), 4u * 2 * rounds);
}

} // namespace
