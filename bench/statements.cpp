// The statements, as text and as records.
#include "statements.h"

#include <qrylib/qrylib.h>

#include "library.h"

namespace bench {

namespace {

constexpr char all_columns[] =
    "SELECT COLOR_PL, COLOR_PM, DEPT_CODE, FCOLOR_CL, FCOLOR_CM, FURIGANA, ID, NAME, OTHER_SL, OTHER_SM, "
    "SEND_FL, "
    "SEND_FM, TOTAL_CL, TOTAL_CM, TOTAL_FL, TOTAL_FM, TOTAL_L, TOTAL_M, TOTAL_PL, TOTAL_PM FROM DEPT_TBL";

} // namespace

const std::vector<select> selects = {
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

namespace {

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

} // namespace

std::uint64_t update_one() {
    static std::uint32_t value = 0;
    qry_lib_db_stmt_ stmt;
    set_total(stmt, QRY_LIB_DB_QUERY_TYPE_UPDATE, ++value);
    qry_lib_db_stmt_set_where_equal_int(&stmt, "ID", 57);
    const std::uint32_t code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

std::uint64_t delete_and_insert() {
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
std::uint64_t unused_id() {
    const qry_lib_db_unused_id_param_ param = {"department_db", "DEPT_TBL", "ID", 1, 32767, 65536, 2};
    std::uint32_t id = 0;
    return qry_lib_db_get_unused_id(&param, &id) + id;
}

std::vector<call> library_calls() {
    std::vector<call> calls;
    for (const select &query : selects) {
        calls.push_back({query.name, [sql = query.sql] { return bench::query(sql); }});
    }
    calls.push_back({"update_one", update_one});
    calls.push_back({"delete_insert", delete_and_insert});
    calls.push_back({"record_select", record_select});
    calls.push_back({"unused_id", unused_id});
    return calls;
}

} // namespace bench
