// The sweep: every call that a statement makes fails in turn, first once, then for good.
#include "fault/sweep.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <new>

#include <qrylib/statement.h>
#include <qrylib/types.h>

#include "fault/refused_new.h"
#include "fault/statements.h"
#include "fault/store_journal.h"
#include "fault/trace_chain.h"
#include "unit/exec/exec_test.h"

namespace fault {

namespace {

std::string fixture_path;

constexpr std::uint32_t injected = 0x4711; // a platform code that the library has no name for
constexpr std::uint32_t for_good = UINT32_MAX;
constexpr std::uint32_t no_memory_in_registry = 0xFFFFFFFF;

// Answers of the file store after which stored data must be left alone.
bool says_nothing_about_data(std::uint32_t failure) {
    return failure == 4 || failure == 35 || failure == 36;
}

// What each call is made to answer, and what a statement may answer then.
struct call_row {
    const char *name;
    std::vector<std::uint32_t> failures;
    std::vector<std::uint32_t> codes;
};

const std::array<call_row, QRYHOST_CALL_NUM> call_rows = {{
    {"alloc",
     {injected},
     {QRY_LIB_NO_MEMORY, QRY_LIB_NOT_ACCEPTED, QRY_LIB_ROWSET_NOT_CREATED, QRY_LIB_TABLE_ACCESS,
      QRY_LIB_INVALID_ARGUMENT, no_memory_in_registry}},
    {"create_mutex", {injected}, {injected}},
    {"request_mutex", {injected}, {injected, 1}},
    {"lock_task", {injected}, {injected}},
    {"get_table", {injected}, {injected}},
    {"set_table", {injected}, {injected}},
    {"init_table", {injected}, {injected, QRY_LIB_FAILURE}},
    {"get_status", {injected, QRY_LIB_TABLE_ARGUMENT}, {injected, QRY_LIB_TABLE_ARGUMENT, 1, 2}},
    {"create_list", {injected}, {QRY_LIB_TABLE_ACCESS}},
    {"list_set_pos", {injected}, {QRY_LIB_TABLE_ACCESS}},
    {"list_get_val", {injected}, {}},
    {"sort", {injected}, {QRY_LIB_NOT_ACCEPTED}},
    {"create_handle", {injected}, {injected}},
    {"register_service", {injected}, {injected}},
    {"file_exist", {injected, 4}, {0, 1, 257}},
    {"file_mkdir", {injected, 1, 4, 35, 36}, {257, 5, 2, 3, 4}},
    {"file_remove", {injected, 1, 4, 35, 36}, {257, 5, 2, 3, 4}},
    {"file_open", {injected, 1, 4, 35, 36}, {1, 257, 5, 2, 3, 4}},
    {"file_read", {injected, 1, 4, 35, 36}, {1, 2, 3, 4}},
    {"file_write", {injected, 1, 4, 35, 36}, {257, 5, 2, 3, 4}},
    {"file_close", {injected, 1, 4, 35, 36}, {1, 257, 5, 2, 3, 4}},
}};

// The only leak on purpose that a statement can meet: a search that cannot test a record loses its block.
std::uint32_t blocks_lost(const std::vector<test::return_trace> &chain) {
    return static_cast<std::uint32_t>(std::count_if(chain.begin(), chain.end(), [](const auto &trace) {
        return trace.function == "qry_lib_tb_create_search_table_id" && trace.line == 519;
    }));
}

struct table_row {
    std::uint32_t calls = 0;
    std::uint32_t points = 0;
    std::uint32_t new_points = 0;
    std::uint32_t failures = 0; // sweeps in which a check failed
};
std::map<std::string, table_row> table;
constexpr char setters_name[] = "the setters of a statement record";

struct outcome {
    std::uint32_t code = 0;
    bool threw = false;
    std::string answer;
    std::string state;
    std::vector<store_write> writes;
    std::vector<test::return_trace> chain;
    std::uint32_t blocks_taken = 0;
    std::int32_t new_taken = 0;
};

class sweep : public ::testing::TestWithParam<std::size_t> {
  protected:
    sweep() {
        watch_traces();
        qryhost_fail_clear();
        load_device(fixture_path);
    }
    ~sweep() override {
        qryhost_fail_clear();
        qryhost_set_trace_sink(nullptr, nullptr);
        EXPECT_EQ(qryhost_reset(), 0);
        row().failures += HasFailure() ? 1 : 0;
    }

    static const statement &swept() { return statements()[GetParam()]; }
    static bool works_on_files() { return swept().name.find("_data_version") != std::string::npos; }
    table_row &row() { return table[swept().name]; }

    // A run from the state of the device that the reference run found.
    template <typename Arm, typename Disarm>
    outcome run_prepared(Arm arm, Disarm disarm) {
        if (!images_.empty()) {
            restore_image(category_, images_.front());
        }
        clean_blocks_ = qryhost_pool_blocks();
        swept().prepare();
        before_ = swept().state();
        return run(arm, disarm);
    }

    template <typename Arm, typename Disarm>
    outcome run(Arm arm, Disarm disarm) {
        outcome result;
        forget_traces();
        start_journal();
        qryhost_fail_clear();
        const test::lost_blocks_allowed lost;
        const std::uint32_t blocks = qryhost_pool_blocks();
        const std::int32_t in_use = new_in_use();
        arm();
        try {
            result.code = swept().run();
        } catch (const std::bad_alloc &) {
            result.threw = true;
        }
        disarm();
        result.new_taken = new_in_use() - in_use;
        result.blocks_taken = qryhost_pool_blocks() - blocks;
        EXPECT_EQ(open_lists(), 0);
        result.writes = journal();
        result.chain = seen_traces();
        return result;
    }

    // What the caller sees afterwards; the platform must work again.
    void look(outcome &result) {
        result.answer = swept().answer();
        result.state = swept().state();
    }

    void finish() {
        swept().finish();
        EXPECT_EQ(qryhost_pool_blocks(), clean_blocks_);
    }

    // The run that nothing disturbs, and the tables after each of its writes.
    void make_reference() {
        std::map<std::uint32_t, category_image> before;
        for (const auto &[key, size] : test::element_sizes()) {
            before.emplace(key.first, category_image());
        }
        before.emplace(test::settings, category_image());
        for (auto &[category, image] : before) {
            image = image_of(category);
        }
        reference_ = run_prepared([] { start_recording(); }, [] {});
        std::vector<category_image> after_each = stop_recording();
        look(reference_);
        finish();
        ASSERT_LE(reference_.code, 1u);
        EXPECT_FALSE(reference_.threw);
        if (!reference_.writes.empty()) {
            category_ = reference_.writes.front().category;
            images_ = std::move(after_each);
            images_.insert(images_.begin(), before.at(category_));
        }
        for (const store_write &write : reference_.writes) {
            EXPECT_EQ(write.category, category_);
        }
        for (const auto &[category, image] : before) {
            if (images_.empty() || category != category_) {
                EXPECT_EQ(image_of(category), image);
            }
        }
    }

    // The tables hold the reference run's first writes, as many as were carried out, and nothing else.
    void expect_prefix_of_writes(const outcome &result) {
        ASSERT_LE(result.writes.size(), reference_.writes.size());
        EXPECT_TRUE(std::equal(result.writes.begin(), result.writes.end(), reference_.writes.begin()));
        if (!images_.empty()) {
            EXPECT_EQ(image_of(category_), images_[result.writes.size()]);
        }
    }

    void expect_same_as_reference(const outcome &result) {
        EXPECT_EQ(result.code, reference_.code);
        EXPECT_FALSE(result.threw);
        EXPECT_EQ(result.answer, reference_.answer);
        EXPECT_TRUE(result.writes == reference_.writes);
        EXPECT_EQ(result.new_taken, 0);
    }

    // The statement as it stands, on the tables as the failure left them.
    void expect_success_right_after() {
        outcome result = run([] {}, [] {});
        look(result);
        if (result.code != reference_.code) {
            EXPECT_TRUE(std::count(swept().again.begin(), swept().again.end(), result.code) == 1)
                << "then answers " << result.code;
        }
        EXPECT_EQ(result.answer, reference_.answer);
        if (!images_.empty()) {
            EXPECT_EQ(image_of(category_), images_.back());
        }
    }

    void sweep_call(qryhost_call call, std::uint32_t times, std::uint32_t failure);
    bool fail_one(qryhost_call call, std::uint32_t skip, std::uint32_t times, std::uint32_t failure);
    void check_failed_call(qryhost_call call, std::uint32_t skip, std::uint32_t times, std::uint32_t failure,
                           outcome &result);
    std::vector<test::return_trace> own_part(const std::vector<test::return_trace> &chain) const;
    bool may_go_unnoticed(qryhost_call call, std::uint32_t failure) const;
    void expect_as_if_left_unread(std::uint32_t skip, std::uint32_t times, const outcome &result);
    void sweep_new(std::uint32_t times);
    bool makes_requests();

    outcome reference_;
    std::uint32_t category_ = 0;
    std::vector<category_image> images_; // before the first write, and after each
    std::uint32_t clean_blocks_ = 0;
    std::string before_;
};

// Calls whose failure the contract passes over, the statement then succeeding as if nothing had happened.
bool sweep::may_go_unnoticed(qryhost_call call, std::uint32_t failure) const {
    switch (call) {
    case QRYHOST_FILE_EXIST: // any answer but "missing" counts as there
        return true;
    case QRYHOST_FILE_OPEN: // a version that cannot be read counts as another one
    case QRYHOST_FILE_READ:
    case QRYHOST_FILE_CLOSE:
        return !says_nothing_about_data(failure);
    case QRYHOST_CREATE_LIST: // shows at the first record; this table has none
        return swept().name.find("EMAIL_TBL") != std::string::npos;
    default:
        return false;
    }
}

// The chain without what the statement traces even where it succeeds.
std::vector<test::return_trace> sweep::own_part(const std::vector<test::return_trace> &chain) const {
    const auto [own, ignored] =
        std::mismatch(chain.begin(), chain.end(), reference_.chain.begin(), reference_.chain.end());
    return {own, chain.end()};
}

// A list value that cannot be read is not noticed: the key is tested with the cleared buffer.
void sweep::expect_as_if_left_unread(std::uint32_t skip, std::uint32_t times, const outcome &result) {
    finish();
    outcome unread = run_prepared([=] { leave_list_values(skip, times); }, [] { leave_list_values(0, 0); });
    look(unread);
    EXPECT_EQ(result.code, unread.code);
    EXPECT_EQ(result.answer, unread.answer);
    EXPECT_TRUE(result.writes == unread.writes);
    EXPECT_TRUE(result.chain == unread.chain);
    EXPECT_EQ(unknown_point(result.chain), "");
}

void sweep::check_failed_call(qryhost_call call, std::uint32_t skip, std::uint32_t times,
                              std::uint32_t failure, outcome &result) {
    EXPECT_EQ(result.new_taken, 0);
    if (call == QRYHOST_LIST_GET_VAL) {
        expect_as_if_left_unread(skip, times, result);
        return;
    }
    if (result.code == reference_.code && may_go_unnoticed(call, failure)) {
        EXPECT_EQ(result.answer, reference_.answer);
        EXPECT_TRUE(result.writes == reference_.writes);
        EXPECT_EQ(unknown_point(result.chain), "");
        return;
    }
    const std::vector<std::uint32_t> &codes = call_rows[call].codes;
    EXPECT_EQ(std::count(codes.begin(), codes.end(), result.code), 1) << "answers " << result.code;
    if (result.code == 1 && reference_.code == 0 && !says_nothing_about_data(failure) &&
        swept().entry == "qry_lib_check_data_version") {
        EXPECT_EQ(result.answer, reference_.answer); // the directory was made anew
    } else if (swept().entry.empty()) {
        EXPECT_TRUE(result.chain.empty());
    } else {
        EXPECT_EQ(chain_fault(own_part(result.chain), call, failure, result.code, swept().entry), "");
    }
    const std::uint32_t lost = blocks_lost(result.chain);
    EXPECT_LE(lost, 1u);
    if (call != QRYHOST_CREATE_HANDLE) { // drops the other threads' entries with its own
        EXPECT_EQ(result.blocks_taken, lost);
        EXPECT_EQ(result.state, before_);
    }
    for (std::uint32_t block = 0; block < lost; ++block) {
        test::settle_lost_block();
    }
    expect_prefix_of_writes(result);
    if (call == QRYHOST_SET_TABLE || call == QRYHOST_INIT_TABLE) {
        EXPECT_EQ(result.writes.size(), skip);
    } else {
        EXPECT_TRUE(result.writes.empty());
    }
    expect_success_right_after();
}

// False when the statement makes no call number `skip`.
bool sweep::fail_one(qryhost_call call, std::uint32_t skip, std::uint32_t times, std::uint32_t failure) {
    SCOPED_TRACE(std::string(call_rows[call].name) + " " + std::to_string(skip) +
                 (times == 1 ? " fails once" : " and every later one fail") + " with " +
                 std::to_string(failure));
    bool reached = false;
    outcome result = run_prepared([=] { qryhost_fail(call, skip, times, failure); },
                                  [&] {
                                      reached = qryhost_call_count(call) > skip;
                                      qryhost_fail_clear();
                                  });
    EXPECT_FALSE(result.threw);
    look(result);
    if (reached) {
        check_failed_call(call, skip, times, failure, result);
    } else {
        expect_same_as_reference(result);
    }
    finish();
    return reached;
}

// Runs `body` in a child process, where what it does for the first time stays without consequence here.
template <typename Body>
bool in_child(Body body) {
    std::fflush(nullptr);
    const ::pid_t child = ::fork();
    if (child == 0) {
        const bool answer = body();
        std::fflush(nullptr);
        ::_exit(::testing::Test::HasFailure() ? 2 : answer ? 1 : 0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 2) << "in the child process, above";
    return WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

void sweep::sweep_call(qryhost_call call, std::uint32_t times, std::uint32_t failure) {
    std::uint32_t skip = 0;
    const auto one = [&] { return fail_one(call, skip, times, failure); };
    while (!HasFailure() && (swept().first_in_process ? in_child(one) : one())) {
        ++skip;
    }
    row().points += skip;
    if (times == 1 && failure == call_rows[call].failures.front()) {
        row().calls += skip;
    }
}

TEST_P(sweep, every_platform_call_fails_in_turn) {
    if (swept().first_in_process) {
        ASSERT_FALSE(in_child([this] {
            make_reference();
            return false;
        }));
        reference_.answer = "handle";
    } else {
        make_reference();
    }
    for (std::uint32_t call = 0; call < QRYHOST_CALL_NUM; ++call) {
        for (const std::uint32_t times : {std::uint32_t{1}, for_good}) {
            for (const std::uint32_t failure : call_rows[call].failures) {
                sweep_call(static_cast<qryhost_call>(call), times, failure);
            }
        }
    }
    EXPECT_GT(row().points + row().new_points, 0u);
}

void sweep::sweep_new(std::uint32_t times) {
    for (std::uint32_t skip = 0; !HasFailure(); ++skip) {
        SCOPED_TRACE("request " + std::to_string(skip) +
                     (times == 1 ? " is refused" : " and every later one are refused"));
        bool reached = false;
        outcome result = run_prepared([=] { refuse_new(skip, times); },
                                      [&] {
                                          reached = new_requests() > skip;
                                          allow_new();
                                      });
        look(result);
        EXPECT_EQ(unknown_point(result.chain), "");
        if (!reached) {
            expect_same_as_reference(result);
            finish();
            row().new_points += skip;
            return;
        }
        if (result.threw) {
            EXPECT_EQ(result.new_taken, 0);
            EXPECT_EQ(result.blocks_taken, 0u);
            EXPECT_EQ(result.state, before_);
            expect_prefix_of_writes(result);
            expect_success_right_after();
        } else if (quiet_request_refused()) {
            expect_same_as_reference(result);
        } else {
            EXPECT_TRUE(works_on_files()) << "nothing was thrown, and " << result.code << " answered";
            EXPECT_LE(result.code, 257u); // the workstation's file store answers in its own way
            expect_success_right_after();
        }
        finish();
    }
}

bool sweep::makes_requests() {
    bool made = false;
    run_prepared([] { refuse_new(0, 0); },
                 [&] {
                     made = new_requests() > 0;
                     allow_new();
                 });
    finish();
    return made;
}

TEST_P(sweep, every_request_of_operator_new_is_refused_in_turn) {
    if (swept().first_in_process) {
        EXPECT_FALSE(in_child([this] { return makes_requests(); })) << "refuse each in a process of its own";
        return;
    }
    make_reference();
    sweep_new(1);
    sweep_new(for_good);
}

// The setters answer nothing: a block that is refused is traced, and the field stays as it was.
struct setter_case {
    const char *name;
    std::uint32_t traced;
    std::uint32_t steps; // traces up to the setter's own
    void (*set)(qry_lib_db_stmt_ *stmt);
};

const setter_case setter_cases[] = {
    {"qry_lib_db_wrapper_stmt_set_table_name", QRY_LIB_NO_MEMORY, 1,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_table_name(stmt, "PSN_TBL"); }},
    {"qry_lib_db_wrapper_stmt_set_col_name", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_col_name(stmt, 0, "PSN_ID"); }},
    {"qry_lib_db_wrapper_stmt_set_elem_as_int", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_elem_as_int(stmt, 0, 1); }},
    {"qry_lib_db_wrapper_stmt_set_elem_as_uchar", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_elem_as_uchar(stmt, 0, 1); }},
    {"qry_lib_db_wrapper_stmt_set_elem_as_ushort", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_elem_as_ushort(stmt, 0, 1); }},
    {"qry_lib_db_wrapper_stmt_set_elem_as_uint", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_elem_as_uint(stmt, 0, 1); }},
    {"qry_lib_db_wrapper_stmt_set_elem_as_ulong", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_elem_as_ulong(stmt, 0, 1); }},
    {"qry_lib_db_wrapper_stmt_set_elem_as_str", QRY_LIB_NO_MEMORY, 2,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_elem_as_str(stmt, 0, "Sato"); }},
    {"qry_lib_db_wrapper_stmt_set_where_phrase", QRY_LIB_NO_MEMORY, 1,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_where_phrase(stmt, "PSN_ID = 1"); }},
    {"qry_lib_db_wrapper_stmt_set_where_equal_int", QRY_LIB_NO_MEMORY, 1,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_where_equal_int(stmt, "PSN_ID", 1); }},
    {"qry_lib_db_wrapper_stmt_set_where_equal_ulong", QRY_LIB_NO_MEMORY, 1,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_where_equal_ulong(stmt, "PSN_ID", 1); }},
    {"qry_lib_db_wrapper_stmt_set_where_equal_str", QRY_LIB_NO_MEMORY, 1,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_where_equal_str(stmt, "PSN_NAME", "Sato"); }},
    {"qry_lib_db_wrapper_stmt_set_orderby_phrase", injected, 1,
     [](qry_lib_db_stmt_ *stmt) { qry_lib_db_stmt_set_orderby_phrase(stmt, "PSN_ID"); }},
};

bool is_same(const qry_lib_db_stmt_ &a, const qry_lib_db_stmt_ &b) {
    return a.exec_type == b.exec_type && a.table_name == b.table_name &&
           a.record.col_num == b.record.col_num && a.record.cols == b.record.cols &&
           a.where_phrase == b.where_phrase && a.orderby_phrase == b.orderby_phrase;
}

class setter : public ::testing::TestWithParam<setter_case> {};

TEST_P(setter, leaves_the_statement_alone_without_a_block) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt("adbk_db", &stmt);
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    const qry_lib_db_stmt_ before = stmt;
    const std::uint32_t blocks = qryhost_pool_blocks();
    watch_traces();
    forget_traces();
    qryhost_fail_clear();
    qryhost_fail(QRYHOST_ALLOC, 0, 1, injected);
    GetParam().set(&stmt);
    EXPECT_EQ(qryhost_call_count(QRYHOST_ALLOC), 1u);
    qryhost_fail_clear();
    const std::vector<test::return_trace> chain = seen_traces();
    ASSERT_EQ(chain.size(), GetParam().steps);
    EXPECT_EQ(chain.back().function, GetParam().name);
    EXPECT_EQ(chain.back().code, GetParam().traced);
    EXPECT_EQ(unknown_point(chain), "");
    EXPECT_TRUE(is_same(stmt, before));
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    GetParam().set(&stmt);
    EXPECT_FALSE(is_same(stmt, before));
    EXPECT_EQ(seen_traces().size(), chain.size());
    qry_lib_db_stmt_term(&stmt);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    qryhost_set_trace_sink(nullptr, nullptr);
    ++table[setters_name].calls;
    ++table[setters_name].points;
    table[setters_name].failures += HasFailure() ? 1 : 0;
}

INSTANTIATE_TEST_SUITE_P(, setter, ::testing::ValuesIn(setter_cases));
INSTANTIATE_TEST_SUITE_P(, sweep, ::testing::Range(std::size_t{0}, statements().size()));

} // namespace

void set_fixture(const std::string &path) {
    fixture_path = path;
}

bool write_table(const std::string &path) {
    std::ofstream out(path);
    out << "| statement | calls | points | `new` | failures |\n|---|--:|--:|--:|--:|\n";
    const auto write = [&out](const std::string &name, const table_row &row) {
        out << "| " << name << " | " << row.calls << " | " << row.points << " | " << row.new_points << " | "
            << row.failures << " |\n";
    };
    table_row sum;
    const auto count = [&](const std::string &name) {
        const table_row &row = table[name];
        write(name, row);
        sum.calls += row.calls;
        sum.points += row.points;
        sum.new_points += row.new_points;
        sum.failures += row.failures;
    };
    for (const statement &one : statements()) {
        count(one.name);
    }
    count(setters_name);
    write("together", sum);
    return static_cast<bool>(out.flush());
}

} // namespace fault
