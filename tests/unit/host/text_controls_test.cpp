// The controls that work on texts, sinks and one thread's counts.
#include "unit/host/host_test.h"

#include "platform/os.h"

#include <string>
#include <thread>

namespace {

void keep(void *context, const char *text) {
    *static_cast<std::string *>(context) = text;
}

void drop(void *, std::uint32_t, std::uint32_t, std::uint32_t, const char *) {}

using text_controls = test::host_test;

TEST_F(text_controls, what_is_saved_as_text_loads_again) {
    const char *const fixture =
        R"({"format":1,"databases":{"adbk_db":{"PSN_TBL":{"records":[{"PSN_ID":7}]}}}})";
    ASSERT_EQ(qryhost_load_text(fixture), 0);
    std::string saved;
    ASSERT_EQ(qryhost_save_text(keep, &saved), 0);
    ASSERT_EQ(qryhost_reset(), 0);
    ASSERT_EQ(qryhost_load_text(saved.c_str()), 0);
    std::string again;
    ASSERT_EQ(qryhost_save_text(keep, &again), 0);
    EXPECT_EQ(again, saved);
    EXPECT_NE(saved.find("\"PSN_ID\": 7"), std::string::npos);
}

TEST_F(text_controls, a_refused_text_changes_nothing) {
    ASSERT_EQ(qryhost_load_text(R"({"format":1,"databases":{}})"), 0);
    EXPECT_NE(qryhost_load_text("{"), 0);
    EXPECT_NE(std::string(qryhost_error()), "");
    EXPECT_NE(qryhost_load_text(nullptr), 0);
}

TEST_F(text_controls, the_sink_is_told) {
    qryhost_trace_sink former = nullptr;
    void *former_context = nullptr;
    qryhost_get_trace_sink(&former, &former_context);
    int own = 0;
    qryhost_set_trace_sink(drop, &own);
    qryhost_trace_sink sink = nullptr;
    void *context = nullptr;
    qryhost_get_trace_sink(&sink, &context);
    EXPECT_EQ(sink, drop);
    EXPECT_EQ(context, &own);
    qryhost_set_trace_sink(former, former_context);
}

TEST_F(text_controls, a_threads_calls_are_its_own) {
    const auto allocate = [] {
        void *block = nullptr;
        pfwOSWOrgAllocMemPart(0, &block, 16);
        pfwOSWOrgFreeMemPart(0, block);
    };
    const std::uint32_t before = qryhost_thread_call_count(QRYHOST_ALLOC);
    std::thread(allocate).join();
    EXPECT_EQ(qryhost_thread_call_count(QRYHOST_ALLOC), before);
    allocate();
    EXPECT_EQ(qryhost_thread_call_count(QRYHOST_ALLOC), before + 1);
    EXPECT_EQ(qryhost_thread_call_count(QRYHOST_CALL_NUM), 0U);
}

} // namespace
