// Mutexes and the task lock.
#include <thread>

#include "platform/os.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

using mutexes = host_test;

std::uint32_t fresh_mutex() {
    std::uint32_t mutex = 0;
    EXPECT_EQ(pfwOSWCreateMutexSem(&mutex, 0, 1), 0u);
    return mutex;
}

TEST_F(mutexes, identifiers_are_small_and_never_zero) {
    const std::uint32_t first = fresh_mutex();
    const std::uint32_t second = fresh_mutex();
    EXPECT_NE(first, 0u);
    EXPECT_EQ(second, first + 1);
    EXPECT_LT(second, 256u);
}

TEST_F(mutexes, unknown_identifiers_are_refused) {
    for (const std::uint32_t mutex : {0u, 257u, 0xFFFFFFFFu}) {
        EXPECT_NE(pfwOSWRequestMutexSem(mutex, -1), 0u);
        EXPECT_NE(pfwOSWReleaseMutexSem(mutex), 0u);
    }
}

TEST_F(mutexes, other_options_and_time_limits_are_refused) {
    std::uint32_t mutex = 77;
    EXPECT_NE(pfwOSWCreateMutexSem(nullptr, 0, 1), 0u);
    EXPECT_NE(pfwOSWCreateMutexSem(&mutex, 1, 1), 0u);
    EXPECT_NE(pfwOSWCreateMutexSem(&mutex, 0, 0), 0u);
    EXPECT_NE(pfwOSWCreateMutexSem(&mutex, 0, 2), 0u);
    EXPECT_EQ(mutex, 77u);
    EXPECT_NE(pfwOSWRequestMutexSem(fresh_mutex(), 0), 0u);
}

TEST_F(mutexes, the_holder_cannot_take_it_again_nor_anyone_else_release_it) {
    const std::uint32_t mutex = fresh_mutex();
    ASSERT_EQ(pfwOSWRequestMutexSem(mutex, -1), 0u);
    EXPECT_NE(pfwOSWRequestMutexSem(mutex, -1), 0u);
    std::thread([mutex] { EXPECT_NE(pfwOSWReleaseMutexSem(mutex), 0u); }).join();
    EXPECT_EQ(pfwOSWReleaseMutexSem(mutex), 0u);
    EXPECT_NE(pfwOSWReleaseMutexSem(mutex), 0u);
}

// Adds to a plain number in `threads` threads: only a working lock keeps every addition.
template <typename Lock, typename Unlock>
int count_under(Lock lock, Unlock unlock) {
    constexpr int thread_num = 4;
    constexpr int rounds = 2000;
    int sum = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_num; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < rounds; ++i) {
                EXPECT_EQ(lock(), 0u);
                ++sum;
                EXPECT_EQ(unlock(), 0u);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    return sum - thread_num * rounds;
}

TEST_F(mutexes, one_thread_at_a_time) {
    const std::uint32_t mutex = fresh_mutex();
    EXPECT_EQ(count_under([mutex] { return pfwOSWRequestMutexSem(mutex, -1); },
                          [mutex] { return pfwOSWReleaseMutexSem(mutex); }),
              0);
}

TEST_F(mutexes, the_task_lock_admits_one_thread_at_a_time) {
    EXPECT_EQ(count_under(pfwOSWLockTask, pfwOSWUnlockTask), 0);
    EXPECT_NE(pfwOSWUnlockTask(), 0u);
}

TEST_F(mutexes, every_call_can_be_made_to_fail) {
    const std::uint32_t mutex = fresh_mutex();
    std::uint32_t other = 77;
    qryhost_fail(QRYHOST_CREATE_MUTEX, 0, 1, 11);
    EXPECT_EQ(pfwOSWCreateMutexSem(&other, 0, 1), 11u);
    EXPECT_EQ(other, 77u);
    qryhost_fail(QRYHOST_REQUEST_MUTEX, 0, 1, 12);
    EXPECT_EQ(pfwOSWRequestMutexSem(mutex, -1), 12u);
    EXPECT_NE(pfwOSWReleaseMutexSem(mutex), 0u) << "a failed request holds nothing";
    qryhost_fail(QRYHOST_LOCK_TASK, 0, 1, 13);
    EXPECT_EQ(pfwOSWLockTask(), 13u);
    EXPECT_NE(pfwOSWUnlockTask(), 0u);
}

} // namespace
