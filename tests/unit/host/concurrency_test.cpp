// Threads on one store: no value is ever seen torn, and a list table shows one moment.
#include <atomic>
#include <thread>

#include "unit/host/host_test.h"

namespace {

using namespace test;

using concurrency = host_test;

constexpr int writer_num = 2;
constexpr int reader_num = 2;
constexpr int rounds = 2000;

template <typename Writer, typename Reader>
void run_together(Writer writer, Reader reader) {
    std::vector<std::thread> threads;
    for (int t = 0; t < writer_num; ++t) {
        threads.emplace_back([writer, t] { writer(t); });
    }
    for (int t = 0; t < reader_num; ++t) {
        threads.emplace_back(reader);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

// Values of 193 equal bytes: a torn one would show two of them.
void write_patterns(int writer) {
    for (int i = 0; i < rounds; ++i) {
        const value_buffer value = empty_buffer(static_cast<std::uint8_t>(i * writer_num + writer));
        const auto record = static_cast<std::uint32_t>(1 + i % 3);
        EXPECT_EQ(tbctSTCSetTable(requester, departments, record, department_name, value.data()), 0u);
        if (i % 16 == 0) {
            EXPECT_EQ(tbSTCInitTable(departments, record), 0u);
        }
    }
}

bool is_whole(const value_buffer &value) {
    return std::all_of(value.begin(), value.begin() + 193,
                       [&value](std::uint8_t byte) { return byte == value[0]; });
}

TEST_F(concurrency, no_read_sees_a_torn_value) {
    run_together(write_patterns, [] {
        value_buffer value = empty_buffer();
        for (int i = 0; i < rounds; ++i) {
            const auto record = static_cast<std::uint32_t>(1 + i % 3);
            EXPECT_EQ(tbctSTCGetTable(departments, record, department_name, value.data()), 0u);
            ASSERT_TRUE(is_whole(value));
        }
    });
}

TEST_F(concurrency, no_list_table_holds_a_torn_value) {
    run_together(write_patterns, [] {
        value_buffer value = empty_buffer();
        for (int i = 0; i < rounds / 4; ++i) {
            tbctListTable list{};
            ASSERT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &list), 0u);
            for (std::uint16_t position = 0; position < 4; ++position) {
                EXPECT_EQ(tbctSTCListTableSetPos(&list, position), 0u);
                EXPECT_EQ(tbctSTCListTableGetVal(&list, value.data()), 0u);
                EXPECT_TRUE(is_whole(value));
            }
            EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
        }
    });
}

// A reset changes all records of a category at once: a list that saw half of it would hold two values.
TEST_F(concurrency, a_list_table_shows_one_moment) {
    const auto reset_over_and_over = [](int) {
        for (int i = 0; i < rounds / 4; ++i) {
            const auto id = static_cast<std::uint16_t>(i);
            EXPECT_EQ(tbctSTCSetTable(requester, departments, 0, department_id, &id), 0u);
            EXPECT_EQ(tbctResetTable(departments), 0u);
        }
    };
    run_together(reset_over_and_over, [] {
        for (int i = 0; i < rounds / 4; ++i) {
            tbctListTable list{};
            ASSERT_EQ(tbctSTCCreateListTable(departments, department_id, 101, &list), 0u);
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
    run_together(write_patterns, [&folder] {
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
