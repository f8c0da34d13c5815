// Both engines in one program: the same data, the same statements, every value read.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "allocations.h"
#include "engines.h"
#include "floors.h"
#include "platform/host/qryhost.h"
#include "statements.h"

namespace {

sqlite3 *sqlite = nullptr;

// Adds what one call takes to the result's columns.
class call_counters {
  public:
    call_counters() : allocations_(bench::allocations()), blocks_(qryhost_call_count(QRYHOST_ALLOC)) {}
    void report(benchmark::State &state) const {
        using benchmark::Counter;
        state.counters["allocations"] =
            Counter(static_cast<double>(bench::allocations() - allocations_), Counter::kAvgIterations);
        state.counters["blocks"] = Counter(static_cast<double>(qryhost_call_count(QRYHOST_ALLOC) - blocks_),
                                           Counter::kAvgIterations);
    }

  private:
    std::uint64_t allocations_;
    std::uint32_t blocks_;
};

template <typename Call>
void measure(benchmark::State &state, Call call) {
    const call_counters before;
    for (auto _ : state) {
        benchmark::DoNotOptimize(call());
    }
    before.report(state);
}

void step(sqlite3_stmt *changed) {
    sqlite3_step(changed);
    sqlite3_reset(changed);
}

template <typename Call>
void add(const std::string &name, Call call) {
    benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State &state) { measure(state, call); });
}

void add_select(const bench::select &select, const std::string &suffix) {
    const char *sql = select.sql;
    const std::string name = select.name + suffix;
    add(name + "/sqlite_fresh", [sql] { return bench::query(sqlite, sql); });
    sqlite3_stmt *kept = bench::prepare(sqlite, sql);
    add(name + "/sqlite_kept", [kept] { return bench::query(kept); });
}

constexpr char delete_text[] = "DELETE FROM DEPT_TBL WHERE ID = 57";
constexpr char insert_text[] = "INSERT INTO DEPT_TBL (ID, TOTAL_M) VALUES (57, 57)";

void add_changes() {
    static const char update[] = "UPDATE DEPT_TBL SET TOTAL_M = TOTAL_M + 1 WHERE ID = 57";
    static const char point[] = "SELECT NAME, TOTAL_M FROM DEPT_TBL WHERE ID = 57";
    static const char ids[] = "SELECT ID FROM DEPT_TBL WHERE ID >= 1 AND ID <= 32767 ORDER BY ID ASC";
    add("update_one/sqlite_fresh", [] { return bench::query(sqlite, update); });
    add("delete_insert/sqlite_fresh",
        [] { return bench::query(sqlite, delete_text) + bench::query(sqlite, insert_text); });
    add("record_select/sqlite_fresh", [] { return bench::query(sqlite, point); });
    add("unused_id/sqlite_fresh", [] { return bench::query(sqlite, ids); });

    sqlite3_stmt *kept_update = bench::prepare(sqlite, update);
    sqlite3_stmt *kept_remove = bench::prepare(sqlite, delete_text);
    sqlite3_stmt *kept_insert = bench::prepare(sqlite, insert_text);
    sqlite3_stmt *kept_point = bench::prepare(sqlite, point);
    sqlite3_stmt *kept_ids = bench::prepare(sqlite, ids);
    add("update_one/sqlite_kept", [kept_update] {
        step(kept_update);
        return 0;
    });
    add("delete_insert/sqlite_kept", [kept_remove, kept_insert] {
        step(kept_remove);
        step(kept_insert);
        return 0;
    });
    add("record_select/sqlite_kept", [kept_point] { return bench::query(kept_point); });
    add("unused_id/sqlite_kept", [kept_ids] { return bench::query(kept_ids); });
}

void add_all() {
    for (const bench::call &call : bench::library_calls()) {
        add(call.name + "/qrylib", call.run);
        add(call.name + "/platform_calls", bench::platform_calls_of(call.run));
    }
    add("join/plain_loop", bench::plain_join);
    for (const bench::select &select : bench::selects) {
        add_select(select, "");
    }
    add_changes();
}

// The statements that show how the cost grows with the records.
void add_by_size() {
    const std::string suffix = ":" + std::to_string(bench::department_num());
    for (const std::size_t index : {0u, 2u, 5u}) {
        const bench::select &select = bench::selects[index];
        add(select.name + suffix + "/qrylib", [sql = select.sql] { return bench::query(sql); });
        add_select(select, suffix);
    }
}

bool same_record() {
    static const char changed[] = "SELECT ID, TOTAL_M FROM DEPT_TBL WHERE ID = 57";
    return bench::query(changed) == bench::query(sqlite, changed);
}

// Makes the same changes in both engines, to department 57, and reads them.
bool changes_agree() {
    bool agree = bench::update_one() == 0; // the first time to 1
    bench::query(sqlite, "UPDATE DEPT_TBL SET TOTAL_M = 1 WHERE ID = 57");
    agree = same_record() && agree;
    agree = bench::delete_and_insert() == 0 && agree;
    bench::query(sqlite, delete_text);
    bench::query(sqlite, insert_text);
    agree = same_record() && agree;
    // A row whose total is 57; the id behind the last.
    return agree && bench::record_select() == 1 + 57 && bench::unused_id() == bench::department_num() + 1u;
}

// Both engines must answer alike before their times mean anything.
int compare_answers(bool with_changes) {
    int wrong = 0;
    for (const bench::select &select : bench::selects) {
        if (bench::query(select.sql) != bench::query(sqlite, select.sql)) {
            std::fprintf(stderr, "different answers: %s\n", select.sql);
            ++wrong;
        }
    }
    if (with_changes && !changes_agree()) {
        std::fprintf(stderr, "different answers after the same changes\n");
        ++wrong;
    }
    return wrong;
}

} // namespace

int main(int argc, char **argv) {
    qryhost_set_trace_sink(nullptr, nullptr);
    sqlite = bench::open_database();
    bench::fill(sqlite);
    const bool by_size = argc > 1 && std::strcmp(argv[1], "--by_size") == 0;
    if (compare_answers(!by_size) != 0) {
        return 1;
    }
    if (by_size) {
        --argc;
        std::rotate(argv + 1, argv + 2, argv + argc + 1);
        add_by_size();
    } else {
        add_all();
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
