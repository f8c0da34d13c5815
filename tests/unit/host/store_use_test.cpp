// Opening and closing the store while other threads use it.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "unit/host/host_test.h"

namespace {

using namespace test;

class store_use : public host_test {
  protected:
    ~store_use() override { EXPECT_EQ(qryhost_open(nullptr), 0); }

    static void expect_refused(int result) {
        EXPECT_EQ(result, 1);
        EXPECT_STREQ(qryhost_error(), "another thread is inside a call or holds a list");
    }

    const temporary_folder folder;
    const std::string path = folder.file("device.img");
};

// Does one thing, then waits until it is let go to do another.
class two_steps {
  public:
    template <typename First, typename Second>
    two_steps(First first, Second second) : thread_([=] { run(first, second); }) {
        std::unique_lock<std::mutex> hold(lock_);
        changed_.wait(hold, [this] { return first_done_; });
    }
    void finish() {
        {
            const std::lock_guard<std::mutex> hold(lock_);
            go_on_ = true;
        }
        changed_.notify_all();
        thread_.join();
    }

  private:
    template <typename First, typename Second>
    void run(First first, Second second) {
        first();
        std::unique_lock<std::mutex> hold(lock_);
        first_done_ = true;
        changed_.notify_all();
        changed_.wait(hold, [this] { return go_on_; });
        second();
    }

    std::mutex lock_;
    std::condition_variable changed_;
    bool first_done_ = false;
    bool go_on_ = false;
    std::thread thread_;
};

TEST_F(store_use, by_a_list_of_another_thread_refuses_to_open_and_close) {
    tbctListTable list{};
    two_steps other(
        [&list] { EXPECT_EQ(tbctSTCCreateListTable(departments, department_id, 101, &list), 0u); },
        [&list] { EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u); });
    expect_refused(qryhost_close());
    expect_refused(qryhost_open(path.c_str()));
    std::uint16_t id = 0;
    EXPECT_EQ(tbctSTCGetTable(departments, 1, department_id, &id), 0u) << "the store stays";
    other.finish();
    EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(qryhost_close(), 0) << qryhost_error();
}

TEST_F(store_use, of_a_list_ends_wherever_it_is_closed) {
    tbctListTable list{};
    std::thread([&list] {
        EXPECT_EQ(tbctSTCCreateListTable(departments, department_id, 101, &list), 0u);
    }).join();
    expect_refused(qryhost_close());
    EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    EXPECT_EQ(qryhost_close(), 0) << qryhost_error();
}

TEST_F(store_use, by_the_own_thread_is_its_own_business) {
    tbctListTable list{};
    EXPECT_EQ(tbctSTCCreateListTable(departments, department_id, 101, &list), 0u);
    EXPECT_EQ(qryhost_close(), 0) << qryhost_error();
    EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
}

TEST_F(store_use, of_calls_that_fail_ends_too) {
    std::thread([] {
        tbctListTable list{};
        value_buffer value = empty_buffer();
        qryhost_fail(QRYHOST_CREATE_LIST, 0, 1, 3);
        qryhost_fail(QRYHOST_GET_TABLE, 0, 1, 3);
        qryhost_fail(QRYHOST_SET_TABLE, 0, 1, 3);
        qryhost_fail(QRYHOST_INIT_TABLE, 0, 1, 3);
        qryhost_fail(QRYHOST_GET_STATUS, 0, 1, 3);
        for (int i = 0; i < 2; ++i) {
            tbctSTCCreateListTable(departments, department_id, static_cast<std::uint16_t>(300 * i), &list);
            tbctSTCGetTable(departments, 300, department_id, value.data());
            tbctSTCSetTable(requester, departments, 300, department_id, value.data());
            tbSTCInitTable(departments, 300);
            tbctResetTable(0);
            tbctSTCGetStatus(settings, 1, value.data());
            tbctSTCSetStatus(requester, settings, 1, value.data());
            tbctSTCGetTable(departments, 1, department_name, value.data());
            EXPECT_EQ(qryhost_load("/no/such/file"), 1);
        }
    }).join();
    EXPECT_EQ(qryhost_close(), 0) << qryhost_error();
}

// Calls meet a store that is opened, closed and refused to be, and never one that is unmapped.
TEST_F(store_use, is_safe_whatever_opens_and_closes) {
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&done] {
            value_buffer value = empty_buffer();
            while (!done) {
                tbctListTable list{};
                EXPECT_EQ(tbctSTCGetTable(departments, 1, department_name, value.data()), 0u);
                EXPECT_EQ(tbctSTCSetTable(requester, departments, 2, department_name, value.data()), 0u);
                EXPECT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &list), 0u);
                EXPECT_EQ(tbctSTCListTableGetVal(&list, value.data()), 0u);
                EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
                std::this_thread::yield();
            }
        });
    }
    int opened = 0;
    int refused = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
    while (std::chrono::steady_clock::now() < end) {
        const bool done_now = (opened + refused) % 3 == 0   ? qryhost_close() == 0
                              : (opened + refused) % 3 == 1 ? qryhost_open(path.c_str()) == 0
                                                            : qryhost_open(nullptr) == 0;
        ++(done_now ? opened : refused);
    }
    done = true;
    for (std::thread &thread : threads) {
        thread.join();
    }
    std::printf("%d times, refused %d times\n", opened, refused);
    EXPECT_GT(opened, 0);
    EXPECT_GT(refused, 0);
}

} // namespace
