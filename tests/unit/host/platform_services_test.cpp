// Fault injection, handle service, trace sink and the control calls around the store.
#include <atomic>
#include <cstddef>
#include <cstring>
#include <thread>

#include "platform/db_handle.h"
#include "platform/os.h"
#include "platform/trace.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

using faults = host_test;
using host_db_handle = host_test;
using trace_sink = host_test;
using control = host_test;

std::uint32_t lock_and_unlock() {
    const std::uint32_t code = pfwOSWLockTask();
    if (code == 0) {
        EXPECT_EQ(pfwOSWUnlockTask(), 0u);
    }
    return code;
}

TEST_F(faults, skip_some_calls_and_fail_the_next) {
    qryhost_fail(QRYHOST_LOCK_TASK, 2, 3, 9);
    for (const std::uint32_t expected : {0u, 0u, 9u, 9u, 9u, 0u, 0u}) {
        EXPECT_EQ(lock_and_unlock(), expected);
    }
    EXPECT_EQ(qryhost_call_count(QRYHOST_LOCK_TASK), 7u);
}

TEST_F(faults, a_new_order_replaces_the_old_one) {
    qryhost_fail(QRYHOST_LOCK_TASK, 0, 5, 9);
    EXPECT_EQ(lock_and_unlock(), 9u);
    qryhost_fail(QRYHOST_LOCK_TASK, 1, 1, 8);
    EXPECT_EQ(lock_and_unlock(), 0u);
    EXPECT_EQ(lock_and_unlock(), 8u);
    EXPECT_EQ(lock_and_unlock(), 0u);
}

TEST_F(faults, an_order_for_no_failures_is_none) {
    qryhost_fail(QRYHOST_LOCK_TASK, 1, 0, 9);
    EXPECT_EQ(lock_and_unlock(), 0u);
    qryhost_fail(QRYHOST_LOCK_TASK, 0, 1, 9);
    EXPECT_EQ(lock_and_unlock(), 9u);
}

TEST_F(faults, clear_ends_them_and_the_counts) {
    qryhost_fail(QRYHOST_LOCK_TASK, 0, 5, 9);
    EXPECT_EQ(lock_and_unlock(), 9u);
    qryhost_fail_clear();
    EXPECT_EQ(qryhost_call_count(QRYHOST_LOCK_TASK), 0u);
    EXPECT_EQ(lock_and_unlock(), 0u);
}

TEST_F(faults, kinds_of_calls_that_do_not_exist_are_ignored) {
    for (const int call : {static_cast<int>(QRYHOST_CALL_NUM), 31}) {
        qryhost_fail(static_cast<qryhost_call>(call), 0, 1, 9);
        EXPECT_EQ(qryhost_call_count(static_cast<qryhost_call>(call)), 0u);
    }
}

TEST_F(faults, counts_are_exact_across_threads) {
    constexpr int thread_num = 4;
    constexpr int rounds = 1000;
    qryhost_fail(QRYHOST_GET_STATUS, 100, 500, 9);
    std::atomic<int> failed{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_num; ++t) {
        threads.emplace_back([&failed] {
            for (int i = 0; i < rounds; ++i) {
                std::uint32_t mode = 0;
                failed += tbctSTCGetStatus(settings, setting_ids[0], &mode) == 9 ? 1 : 0;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failed, 500);
    EXPECT_EQ(qryhost_call_count(QRYHOST_GET_STATUS), 4000u);
}

TEST_F(host_db_handle, handles_increase_and_are_never_zero) {
    std::int32_t code = 77;
    const std::uint32_t first = sdb_CreateDBHandle(&code);
    EXPECT_EQ(code, 0);
    EXPECT_NE(first, 0u);
    EXPECT_GT(sdb_CreateDBHandle(&code), first);
}

std::uint32_t cell_value(void *head_cell) {
    return *static_cast<std::uint32_t *>(head_cell);
}

TEST_F(host_db_handle, the_service_asks_the_registered_callback) {
    std::uint32_t cell = 42;
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    ASSERT_EQ(sdb_RegisterDBHandleService(cell_value, &cell), 0);
    EXPECT_EQ(qryhost_current_db_handle(), 42u);
    std::uint32_t other = 43;
    EXPECT_NE(sdb_RegisterDBHandleService(cell_value, &other), 0) << "one registration at a time";
    EXPECT_EQ(qryhost_current_db_handle(), 42u);
    EXPECT_EQ(sdb_DeregisterDBHandleService(), 0);
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
    EXPECT_NE(sdb_DeregisterDBHandleService(), 0);
    EXPECT_NE(sdb_RegisterDBHandleService(nullptr, &cell), 0);
}

TEST_F(host_db_handle, every_call_can_be_made_to_fail) {
    std::int32_t code = 0;
    qryhost_fail(QRYHOST_CREATE_HANDLE, 0, 1, 0xFFFFFFFF);
    EXPECT_EQ(sdb_CreateDBHandle(&code), 0u);
    EXPECT_EQ(code, -1);
    std::uint32_t cell = 42;
    qryhost_fail(QRYHOST_REGISTER_SERVICE, 0, 1, 6);
    EXPECT_EQ(sdb_RegisterDBHandleService(cell_value, &cell), 6);
    EXPECT_EQ(qryhost_current_db_handle(), 0u);
}

struct traced_line {
    std::uint32_t destination, module, level;
    std::string text;
};

void keep_line(void *context, std::uint32_t destination, std::uint32_t module, std::uint32_t level,
               const char *text) {
    static_cast<std::vector<traced_line> *>(context)->push_back({destination, module, level, text});
}

TEST_F(trace_sink, gets_every_line_as_printf_would_write_it) {
    std::vector<traced_line> kept;
    qryhost_set_trace_sink(keep_line, &kept);
    pfwGENTrcPrintf(0, 258, 2, "%s():[Return]:(%d) (0x%08lX)\n", "analyze_sql", 447, 0xDB00ul);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept[0].text, "analyze_sql():[Return]:(447) (0x0000DB00)\n");
    EXPECT_EQ(kept[0].destination, 0u);
    EXPECT_EQ(kept[0].module, 258u);
    EXPECT_EQ(kept[0].level, 2u);
    qryhost_set_trace_sink(nullptr, nullptr);
    pfwGENTrcPrintf(0, 258, 2, "dropped\n");
    EXPECT_EQ(kept.size(), 1u);
}

TEST_F(trace_sink, is_called_by_one_thread_at_a_time) {
    std::vector<traced_line> kept;
    qryhost_set_trace_sink(keep_line, &kept);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 250; ++i) {
                pfwGENTrcPrintf(0, 258, 2, "%d\n", i);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    qryhost_set_trace_sink(nullptr, nullptr);
    EXPECT_EQ(kept.size(), 1000u);
}

void set_first_person(const char *name) {
    value_buffer value = empty_buffer();
    std::memcpy(value.data(), name, std::strlen(name));
    ASSERT_EQ(tbctSTCSetTable(requester, persons, 1, person_name, value.data()), 0u);
}

bool is_empty(const std::vector<std::uint8_t> &content) {
    return std::all_of(content.begin(), content.end(), [](std::uint8_t byte) { return byte == 0; });
}

TEST_F(control, reset_clears_everything) {
    fill_store([](std::uint16_t size) { return std::vector<std::uint8_t>(size, 0xA5); });
    EXPECT_FALSE(is_empty(store_content()));
    EXPECT_EQ(qryhost_reset(), 0);
    EXPECT_TRUE(is_empty(store_content()));
}

TEST_F(control, opening_private_memory_drops_what_was_there) {
    set_first_person("Sato");
    EXPECT_EQ(qryhost_open(nullptr), 0);
    EXPECT_TRUE(is_empty(store_content()));
}

TEST_F(control, after_close_the_next_call_opens_afresh) {
    set_first_person("Sato");
    EXPECT_EQ(qryhost_close(), 0);
    EXPECT_EQ(qryhost_close(), 0);
    EXPECT_TRUE(is_empty(store_content()));
}

TEST_F(control, what_is_no_image_is_refused_and_the_open_store_stays) {
    set_first_person("Sato");
    EXPECT_NE(qryhost_open("/"), 0);
    EXPECT_STREQ(qryhost_error(), "/: is a folder");
    EXPECT_FALSE(is_empty(store_content()));
    EXPECT_EQ(qryhost_open(nullptr), 0);
    EXPECT_STREQ(qryhost_error(), "");
}

TEST_F(control, each_thread_has_its_own_error) {
    EXPECT_NE(qryhost_open("/"), 0);
    std::thread([] { EXPECT_STREQ(qryhost_error(), ""); }).join();
    EXPECT_STRNE(qryhost_error(), "");
}

TEST_F(control, without_a_store_calls_answer_codes) {
    const environment_variable image("QRYLIB_IMAGE", "/");
    ASSERT_EQ(qryhost_close(), 0);
    value_buffer value = empty_buffer();
    tbctListTable list{};
    EXPECT_EQ(tbctSTCGetTable(persons, 1, person_name, value.data()), 0x5242u);
    EXPECT_STREQ(qryhost_error(), "/: is a folder");
    EXPECT_EQ(tbctSTCSetTable(requester, persons, 1, person_name, value.data()), 0x5242u);
    EXPECT_EQ(tbSTCInitTable(persons, 1), 0x5242u);
    EXPECT_EQ(tbctResetTable(persons), 0x5242u);
    EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[0], value.data()), 0x5242u);
    EXPECT_EQ(tbctSTCCreateListTable(persons, person_name, 1, &list), 0x5242u);
    for (int (*call)(const char *) : {qryhost_load, qryhost_save}) {
        EXPECT_NE(call("unused.json"), 0);
        EXPECT_STREQ(qryhost_error(), "/: is a folder");
    }
    EXPECT_NE(qryhost_reset(), 0);
    EXPECT_EQ(qryhost_open(nullptr), 0) << "private memory can be asked for all the same";
}

} // namespace
