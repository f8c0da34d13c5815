// A caller to be recorded: does what its argument names, and says what a test wants to know.
#include <qrylib/db_handle.h>
#include <qrylib/qrylib.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/host/qryhost.h"

namespace {

constexpr std::uint32_t dept_category = 0x05080404;
constexpr std::uint32_t dept_code_element = 0x4481F002;

class statement {
  public:
    explicit statement(const char *db_name) { qry_lib_db_get_stmt(db_name, &record_); }
    statement(const statement &) = delete;
    statement &operator=(const statement &) = delete;
    ~statement() { qry_lib_db_stmt_term(&record_); }
    operator qry_lib_db_stmt_ *() { return &record_; }

  private:
    qry_lib_db_stmt_ record_{};
};

std::uint32_t query(const char *db_name, const std::string &sql) {
    statement stmt(db_name);
    qry_lib_db_rowset_ rows{};
    qry_lib_db_rowset_init(&rows);
    const std::uint32_t code = qry_lib_db_exec_query(stmt, sql.c_str(), &rows);
    while (qry_lib_db_rowset_next(&rows) == 1) {
    }
    qry_lib_db_rowset_term(&rows);
    return code;
}

void insert_department(std::uint16_t id, const char *code) {
    statement stmt("department_db");
    qry_lib_db_stmt_set_exec_type(stmt, QRY_LIB_DB_QUERY_TYPE_INSERT);
    qry_lib_db_stmt_set_table_name(stmt, "DEPT_TBL");
    qry_lib_db_stmt_set_col_num(stmt, 3);
    qry_lib_db_stmt_set_elem_as_str(stmt, 2, code); // before its column has a name
    qry_lib_db_stmt_set_col_name(stmt, 0, "ID");
    qry_lib_db_stmt_set_elem_as_ushort(stmt, 0, id);
    qry_lib_db_stmt_set_col_name(stmt, 1, "NAME");
    qry_lib_db_stmt_set_elem_as_str(stmt, 1, "Sales");
    qry_lib_db_stmt_set_col_name(stmt, 2, "DEPT_CODE");
    qry_lib_db_stmt_set_elem_as_str(stmt, 2, code);
    static_cast<void>(qry_lib_db_stmt_exec(stmt));
}

void select_by_code(const char *code) {
    statement stmt("department_db");
    qry_lib_db_stmt_set_exec_type(stmt, QRY_LIB_DB_QUERY_TYPE_SELECT);
    qry_lib_db_stmt_set_table_name(stmt, "DEPT_TBL");
    qry_lib_db_stmt_set_col_num(stmt, 2);
    qry_lib_db_stmt_set_col_name(stmt, 0, "ID");
    qry_lib_db_stmt_set_col_name(stmt, 1, "DEPT_CODE");
    qry_lib_db_stmt_set_where_equal_str(stmt, "DEPT_CODE", code);
    qry_lib_db_stmt_set_orderby_phrase(stmt, "DEPT_CODE DESC");
    qry_lib_db_rowset_ rows{};
    static_cast<void>(qry_lib_db_stmt_exec_query(stmt, &rows));
    qry_lib_db_rowset_term(&rows);
}

void search_by_code(const char *code) {
    qry_lib_tb_list_filter_key_ key{};
    key.category_id = dept_category;
    key.element_id = dept_code_element;
    key.elem_type = 5;
    key.join = QRY_LIB_JOIN_TYPE_AND;
    std::strncpy(key.value, code, sizeof key.value - 1);
    qry_lib_tb_search_id id = 0;
    std::uint16_t hits = 0;
    static_cast<void>(qry_lib_tb_create_search_table_id(dept_category, 1, &key, &id, &hits));
    qry_lib_tb_delete_search_table_id(&id);
}

// Each secret through every way in and out; codes have at most 8 bytes.
void use_secrets(const std::vector<std::string> &secrets) {
    std::uint16_t id = 1;
    for (const std::string &secret : secrets) {
        insert_department(id++, secret.c_str());
        select_by_code(secret.c_str());
        search_by_code(secret.c_str());
        for (const std::string &text :
             {"SELECT ID, DEPT_CODE FROM DEPT_TBL WHERE DEPT_CODE = '" + secret + "'",
              "SELECT ID FROM DEPT_TBL WHERE DEPT_CODE LIKE '" + secret.substr(0, secret.size() - 1) + "%'",
              "SELECT ID FROM DEPT_TBL WHERE DEPT_CODE IN ('x', '" + secret + "') AND ID < 50",
              "UPDATE DEPT_TBL SET DEPT_CODE = '" + secret + "' WHERE ID = 1",
              "SELECT ID FROM DEPT_TBL WHERE DEPT_CODE = '" + secret}) {
            query("department_db", text);
        }
        char value[16] = "";
        qry_lib_tb_get_stc_table_str(dept_category, 1, dept_code_element, value, sizeof value);
        qry_lib_tb_get_stc_table_str(dept_category, 1, dept_code_element, value, 4);
        char element[3008] = "";
        std::strncpy(element, secret.c_str(), 8);
        qry_lib_tb_set_stc_table(0x2301, dept_category, 90, dept_code_element, element);
        qry_lib_tb_set_stc_default_table(0x2301, dept_category, dept_code_element, element);
    }
    query("department_db", "SELECT ID, DEPT_CODE, NAME FROM DEPT_TBL ORDER BY DEPT_CODE");
}

void run_mix() {
    query("adbk_db", "SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID > 2 ORDER BY PSN_NAME DESC");
    query("adbk_db", "SELECT COUNT(*) FROM PSN_TBL");
    query("department_db", "SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL "
                           "WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID AND DEPT_TBL.ID < 9");
    query("department_db", "SELECT NAME FROM DEPT_TBL WHERE ID = 1 AND ID = 2 OR ID = 3");
    insert_department(7, "D7");
    qry_lib_db_unused_id_param_ param{"adbk_db", "PSN_TBL", "PSN_ID", 1, 99, 50, 2};
    std::uint32_t number = 0;
    qry_lib_db_get_unused_id(&param, &number);
    qry_lib_write_data_version(1, 2, 0x01020384);
    qry_lib_check_data_version(1, 2, 0x01020384);
    qry_lib_get_doublecount_mode(1, &number);
    qry_lib_judge_doublecount(3, 2, &number);
    dsql_db_handle_add();
    qry_lib_tb_reset_one_stc_table(dept_category, 7);
    qry_lib_tb_reset_all_stc_table(0x05090400);
    dsql_db_handle_delete();
}

void run_threads() {
    // The mutex of the handles is there before the threads are: a replay, which runs call by call, could not
    // show two threads that both come upon the process's first.
    dsql_db_handle_add();
    dsql_db_handle_delete();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(run_mix);
    }
    for (std::thread &each : threads) {
        each.join();
    }
}

int run_fork() {
    run_mix();
    const pid_t child = ::fork();
    if (child == 0) {
        query("adbk_db", "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 3");
        std::printf("child %ld\n", static_cast<long>(::getpid()));
        std::fflush(stdout);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    std::printf("parent %ld\n", static_cast<long>(::getpid()));
    return status;
}

// What the platform leaves in errno is what the caller finds, recorded or not.
void tell_errno() {
    errno = 4711;
    query("adbk_db", "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 3");
    std::printf("%d", errno);
    errno = 0;
    qry_lib_write_data_version(1, 2, 3);
    qry_lib_check_data_version(7, 7, 3);
    std::printf(" %d\n", errno);
}

// What a query by key costs, in microseconds: the best of several runs.
void time_point_queries() {
    constexpr int runs = 15;
    constexpr int queries = 2000;
    double best = 0;
    for (int run = 0; run < runs; ++run) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < queries; ++i) {
            query("department_db", "SELECT NAME FROM DEPT_TBL WHERE ID = 57");
        }
        const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
        best = run == 0 || taken.count() < best ? taken.count() : best;
    }
    std::printf("%.2f\n", best / queries);
}

} // namespace

int main(int argc, char **argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "secrets") {
        use_secrets({argv + 2, argv + argc});
        return 0;
    }
    if (argc > 2 && qryhost_load(argv[2]) != 0) {
        std::fprintf(stderr, "%s\n", qryhost_error());
        return 1;
    }
    if (what == "threads") {
        run_threads();
    } else if (what == "fork") {
        return run_fork();
    } else if (what == "errno") {
        tell_errno();
    } else if (what == "point") {
        time_point_queries();
    } else if (what == "forever") {
        std::printf("running\n");
        std::fflush(stdout);
        for (;;) {
            run_mix();
        }
    } else {
        run_mix();
    }
    return 0;
}
