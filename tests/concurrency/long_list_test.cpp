// Lists over many records beside writers that never pause: a reader gets its turn.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

#include "unit/host/host_test.h"

namespace {

using namespace test;

using long_lists = host_test;

constexpr std::uint16_t records = 20000;
constexpr int lists = 100;

TEST_F(long_lists, do_not_wait_for_a_pause_of_the_writers) {
    std::atomic<bool> done{false};
    std::vector<std::thread> writers;
    for (std::uint16_t t = 0; t < 3; ++t) {
        writers.emplace_back([&done, t] {
            for (std::uint16_t i = t; !done; ++i) {
                EXPECT_EQ(tbctSTCSetTable(requester, departments, 1u + i % records, department_id, &i), 0u);
            }
        });
    }
    std::chrono::duration<double, std::milli> worst{0};
    for (int i = 0; i < lists; ++i) {
        tbctListTable list{};
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(tbctSTCCreateListTable(departments, department_name, records, &list), 0u)
            << qryhost_error();
        worst = std::max<std::chrono::duration<double, std::milli>>(worst,
                                                                    std::chrono::steady_clock::now() - start);
        EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
    }
    done = true;
    for (std::thread &writer : writers) {
        writer.join();
    }
    std::printf("worst of %d lists over %d records: %.1f ms\n", lists, records, worst.count());
    EXPECT_LT(worst.count(), 10000)
        << "as long as a writer would wait; 100 are the aim where nothing else runs";
}

} // namespace
