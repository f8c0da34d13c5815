// Threads on one store: no value is ever seen torn, and a list table shows one moment.
#include <atomic>
#include <thread>

#include "unit/host/host_test.h"

namespace {

using namespace test;

using concurrency = host_test;

constexpr int reads = 20000;

// Two writers repeat their step for as long as two readers run.
template <typename Writer, typename Reader>
void run_together(Writer write_step, Reader reader) {
    std::atomic<int> readers_left{2};
    std::vector<std::thread> threads;
    for (std::uint32_t t = 0; t < 2; ++t) {
        threads.emplace_back([&readers_left, write_step, t] {
            for (std::uint32_t i = t; readers_left != 0; i += 2) {
                write_step(i);
            }
        });
        threads.emplace_back([&readers_left, reader] {
            reader();
            --readers_left;
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

// Values of 193 equal bytes: a torn one would show two of them.
void write_pattern(std::uint32_t i) {
    const value_buffer value = empty_buffer(static_cast<std::uint8_t>(i));
    EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, department_name, value.data()), 0u);
    if (i % 16 == 0) {
        EXPECT_EQ(tbSTCInitTable(departments, 1), 0u);
    }
}

bool is_whole(const value_buffer &value) {
    return std::all_of(value.begin(), value.begin() + 193,
                       [&value](std::uint8_t byte) { return byte == value[0]; });
}

// The schema's longest value, for it takes the longest to copy. Only its ends are compared: reads that follow
// each other closely are the likeliest to meet a write.
TEST_F(concurrency, no_read_sees_a_torn_value) {
    constexpr std::uint32_t servers = 0x05090408;
    constexpr std::uint32_t server_path = 0x4891F003;
    constexpr std::size_t last = 768;
    const auto write = [](std::uint32_t i) {
        static const value_buffer patterns[] = {empty_buffer(0x11), empty_buffer(0x22)};
        EXPECT_EQ(tbctSTCSetTable(requester, servers, 0, server_path, patterns[i / 2 % 2].data()), 0u);
    };
    run_together(write, [] {
        value_buffer value = empty_buffer();
        int torn = 0;
        for (int i = 0; i < 10 * reads; ++i) {
            EXPECT_EQ(tbctSTCGetTable(servers, 0, server_path, value.data()), 0u);
            torn += value[0] == value[last] ? 0 : 1;
        }
        EXPECT_EQ(torn, 0);
    });
}

TEST_F(concurrency, no_list_table_holds_a_torn_value) {
    run_together(write_pattern, [] {
        value_buffer value = empty_buffer();
        for (int i = 0; i < reads / 10; ++i) {
            tbctListTable list{};
            EXPECT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &list), 0u);
            EXPECT_EQ(tbctSTCListTableGetVal(&list, value.data()), 0u);
            EXPECT_TRUE(is_whole(value));
            EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
        }
    });
}

// A reset changes all records of a category at once: a list that saw half of it would hold two values.
TEST_F(concurrency, a_list_table_shows_one_moment) {
    const auto reset = [](std::uint32_t i) {
        const auto id = static_cast<std::uint16_t>(i);
        EXPECT_EQ(tbctSTCSetTable(requester, departments, 0, department_id, &id), 0u);
        EXPECT_EQ(tbctResetTable(departments), 0u);
    };
    run_together(reset, [] {
        for (int i = 0; i < reads / 10; ++i) {
            tbctListTable list{};
            EXPECT_EQ(tbctSTCCreateListTable(departments, department_id, 101, &list), 0u);
            std::uint16_t first = 0;
            std::uint16_t last = 0;
            EXPECT_EQ(tbctSTCListTableGetVal(&list, &first), 0u);
            EXPECT_EQ(tbctSTCListTableSetPos(&list, 100), 0u);
            EXPECT_EQ(tbctSTCListTableGetVal(&list, &last), 0u);
            EXPECT_EQ(first, last);
            EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
        }
    });
}

TEST_F(concurrency, the_store_opens_once_for_all_threads) {
    for (int round = 0; round < 50; ++round) {
        ASSERT_EQ(qryhost_close(), 0);
        std::vector<std::thread> threads;
        for (std::uint32_t t = 0; t < 3; ++t) {
            threads.emplace_back([t] {
                const std::uint32_t mode = t + 1;
                EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[t], &mode), 0u);
            });
        }
        for (std::thread &thread : threads) {
            thread.join();
        }
        for (std::uint32_t t = 0; t < 3; ++t) {
            std::uint32_t mode = 0;
            EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[t], &mode), 0u);
            EXPECT_EQ(mode, t + 1) << "a write went to a store that another thread opened too";
        }
    }
}

TEST_F(concurrency, saves_loads_and_resets_run_beside_writes) {
    const temporary_folder folder;
    run_together(write_pattern, [&folder] {
        const std::string path = folder.file("store.json");
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(qryhost_save(path.c_str()), 0) << qryhost_error();
            EXPECT_EQ(qryhost_load(path.c_str()), 0) << qryhost_error();
            EXPECT_EQ(qryhost_reset(), 0);
        }
    });
    EXPECT_EQ(folder.entries(), 1);
}

} // namespace
