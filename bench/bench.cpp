// Both engines in one program: the same data, the same statements, every value read.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "allocations.h"
#include "engines.h"
#include "platform/host/qryhost.h"

namespace {

// A statement that both engines understand.
struct statement {
    const char *name;
    const char *sql;
};

constexpr char all_columns[] =
    "SELECT COLOR_PL, COLOR_PM, DEPT_CODE, FCOLOR_CL, FCOLOR_CM, FURIGANA, ID, NAME, OTHER_SL, OTHER_SM, "
    "SEND_FL, "
    "SEND_FM, TOTAL_CL, TOTAL_CM, TOTAL_FL, TOTAL_FM, TOTAL_L, TOTAL_M, TOTAL_PL, TOTAL_PM FROM DEPT_TBL";

constexpr statement selects[] = {
    {"point_by_key", "SELECT NAME, TOTAL_M FROM DEPT_TBL WHERE ID = 57"},
    {"point_by_column", "SELECT ID, TOTAL_M FROM DEPT_TBL WHERE NAME = 'Accounting 56942'"},
    {"filtered_count", "SELECT COUNT(*) FROM DEPT_TBL WHERE TOTAL_M > 30000"},
    {"like_prefix", "SELECT ID, NAME FROM DEPT_TBL WHERE NAME LIKE 'Sales%'"},
    {"in_list", "SELECT ID, NAME FROM DEPT_TBL WHERE ID IN (3, 5, 8, 13, 21, 34, 55, 89, 4, 9)"},
    {"ordered_two_columns", "SELECT ID, NAME FROM DEPT_TBL ORDER BY NAME"},
    {"all_columns", all_columns},
    {"join", "SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = "
             "EDIT_CNT_TBL.ID"},
};

// Those that show how the cost grows with the records.
constexpr statement by_size[] = {selects[0], selects[2], selects[5]};

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

std::uint32_t run(const char *sql) {
    static qry_lib_db_stmt_ stmt;
    static const std::uint32_t bound = qry_lib_db_get_stmt("department_db", &stmt);
    return bound + qry_lib_db_exec(&stmt, sql);
}

void set_total(qry_lib_db_stmt_ &stmt, QRY_LIB_DB_QUERY_TYPE type, std::uint32_t value) {
    qry_lib_db_get_stmt("department_db", &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, type);
    qry_lib_db_stmt_set_table_name(&stmt, "DEPT_TBL");
    qry_lib_db_stmt_set_col_num(&stmt, type == QRY_LIB_DB_QUERY_TYPE_INSERT ? 2 : 1);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "TOTAL_M");
    qry_lib_db_stmt_set_elem_as_ulong(&stmt, 0, value);
}

std::uint32_t update_one() {
    static std::uint32_t value = 0;
    qry_lib_db_stmt_ stmt;
    set_total(stmt, QRY_LIB_DB_QUERY_TYPE_UPDATE, ++value);
    qry_lib_db_stmt_set_where_equal_int(&stmt, "ID", 57);
    const std::uint32_t code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

std::uint32_t delete_and_insert() {
    qry_lib_db_stmt_ stmt;
    std::uint32_t code = run("DELETE FROM DEPT_TBL WHERE ID = 57");
    set_total(stmt, QRY_LIB_DB_QUERY_TYPE_INSERT, 57);
    qry_lib_db_stmt_set_col_name(&stmt, 1, "ID");
    qry_lib_db_stmt_set_elem_as_ulong(&stmt, 1, 57);
    code += qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

std::uint64_t record_select() {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset{};
    qry_lib_db_get_stmt("department_db", &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_SELECT);
    qry_lib_db_stmt_set_table_name(&stmt, "DEPT_TBL");
    qry_lib_db_stmt_set_col_num(&stmt, 2);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "NAME");
    qry_lib_db_stmt_set_col_name(&stmt, 1, "TOTAL_M");
    qry_lib_db_stmt_set_where_equal_int(&stmt, "ID", 57);
    const std::uint32_t code = qry_lib_db_stmt_exec_query(&stmt, &rowset);
    qry_lib_db_stmt_term(&stmt);
    const std::uint64_t read = qry_lib_db_rowset_next(&rowset) + qry_lib_db_rowset_get_ulong(&rowset, 1, 0);
    qry_lib_db_rowset_term(&rowset);
    return read + code;
}

// EDIT_CNT_TBL is searched without keys, so DEPT_TBL has the one id column that finds a gap: none here.
std::uint32_t unused_id() {
    const qry_lib_db_unused_id_param_ param = {"department_db", "DEPT_TBL", "ID", 1, 32767, 65536, 2};
    std::uint32_t id = 0;
    return qry_lib_db_get_unused_id(&param, &id) + id;
}

void step(sqlite3_stmt *changed) {
    sqlite3_step(changed);
    sqlite3_reset(changed);
}

template <typename Call>
void add(const std::string &name, Call call) {
    benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State &state) { measure(state, call); });
}

void add_select(const statement &select, const std::string &suffix) {
    const char *sql = select.sql;
    const std::string name = select.name + suffix;
    add(name + "/qrylib", [sql] { return bench::query(sql); });
    add(name + "/sqlite_fresh", [sql] { return bench::query(sqlite, sql); });
    sqlite3_stmt *kept = bench::prepare(sqlite, sql);
    add(name + "/sqlite_kept", [kept] { return bench::query(kept); });
}

void add_changes() {
    add("update_one/qrylib", update_one);
    add("delete_insert/qrylib", delete_and_insert);
    add("record_select/qrylib", record_select);
    add("unused_id/qrylib", unused_id);

    static const char update[] = "UPDATE DEPT_TBL SET TOTAL_M = TOTAL_M + 1 WHERE ID = 57";
    static const char remove[] = "DELETE FROM DEPT_TBL WHERE ID = 57";
    static const char insert[] = "INSERT INTO DEPT_TBL (ID, TOTAL_M) VALUES (57, 57)";
    static const char point[] = "SELECT NAME, TOTAL_M FROM DEPT_TBL WHERE ID = 57";
    static const char ids[] = "SELECT ID FROM DEPT_TBL WHERE ID >= 1 AND ID <= 32767 ORDER BY ID ASC";
    add("update_one/sqlite_fresh", [] { return bench::query(sqlite, update); });
    add("delete_insert/sqlite_fresh",
        [] { return bench::query(sqlite, remove) + bench::query(sqlite, insert); });
    add("record_select/sqlite_fresh", [] { return bench::query(sqlite, point); });
    add("unused_id/sqlite_fresh", [] { return bench::query(sqlite, ids); });

    sqlite3_stmt *kept_update = bench::prepare(sqlite, update);
    sqlite3_stmt *kept_remove = bench::prepare(sqlite, remove);
    sqlite3_stmt *kept_insert = bench::prepare(sqlite, insert);
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

// Both engines must answer alike before their times mean anything.
int compare_answers() {
    int wrong = 0;
    for (const statement &select : selects) {
        if (bench::query(select.sql) != bench::query(sqlite, select.sql)) {
            std::fprintf(stderr, "different answers: %s\n", select.sql);
            ++wrong;
        }
    }
    if (update_one() != 0 || delete_and_insert() != 0 || unused_id() == 0) {
        std::fprintf(stderr, "a change fails\n");
        ++wrong;
    }
    return wrong;
}

} // namespace

int main(int argc, char **argv) {
    qryhost_set_trace_sink(nullptr, nullptr);
    sqlite = bench::open_database();
    bench::fill(sqlite);
    if (compare_answers() != 0) {
        return 1;
    }
    if (QRYLIB_BENCH_BY_SIZE) {
        for (const statement &select : by_size) {
            add_select(select, ":" + std::to_string(bench::department_num()));
        }
    } else {
        for (const statement &select : selects) {
            add_select(select, "");
        }
        add_changes();
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
