// The statements that are swept.
#include "fault/statements.h"

#include <gtest/gtest.h>

#include <qrylib/device_data.h>
#include <qrylib/element_table.h>
#include <qrylib/qrylib.h>
#include <qrylib/vector.h>

#include "platform/file_access.h"
#include "platform/host/qryhost.h"
#include "unit/host/host_test.h"
#include "unit/query_support.h"

namespace fault {

namespace {

using value_list = std::vector<std::pair<const char *, const char *>>;

qry_lib_db_stmt_ stmt;
qry_lib_db_rowset_ rowset{0, nullptr, -1};

std::string rows_text() {
    std::string text;
    for (const std::string &row : test::row_texts(rowset)) {
        text += row + "\n";
    }
    return text;
}

void finish_query() {
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
}

void add_select(std::vector<statement> &list, const char *db, const std::string &sql) {
    statement added;
    added.name = sql;
    added.entry = "qry_lib_db_wrapper_exec_query";
    added.prepare = [db] { qry_lib_db_get_stmt(db, &stmt); };
    added.run = [sql] { return qry_lib_db_exec_query(&stmt, sql.c_str(), &rowset); };
    added.answer = rows_text;
    added.state = rows_text; // no half-filled rowset comes back
    added.finish = finish_query;
    list.push_back(added);
}

void add_text(std::vector<statement> &list, const char *db, const std::string &sql) {
    statement added;
    added.name = sql;
    added.entry = "qry_lib_db_wrapper_exec";
    added.prepare = [db] { qry_lib_db_get_stmt(db, &stmt); };
    added.run = [sql] { return qry_lib_db_exec(&stmt, sql.c_str()); };
    added.finish = finish_query;
    list.push_back(added);
}

// The record that a caller builds field by field.
struct record {
    const char *db;
    QRY_LIB_DB_QUERY_TYPE type;
    const char *table;
    value_list values;
    const char *where;
    const char *order;
};

void build(const record &wanted) {
    qry_lib_db_get_stmt(wanted.db, &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, wanted.type);
    qry_lib_db_stmt_set_table_name(&stmt, wanted.table);
    qry_lib_db_stmt_set_col_num(&stmt, static_cast<std::int32_t>(wanted.values.size()));
    std::int32_t index = 0;
    for (const auto &[name, value] : wanted.values) {
        qry_lib_db_stmt_set_col_name(&stmt, index, name);
        qry_lib_db_stmt_set_elem_as_str(&stmt, index++, value);
    }
    if (wanted.where != nullptr) {
        qry_lib_db_stmt_set_where_phrase(&stmt, wanted.where);
    }
    if (wanted.order != nullptr) {
        qry_lib_db_stmt_set_orderby_phrase(&stmt, wanted.order);
    }
}

void add_record(std::vector<statement> &list, const char *name, const record &wanted) {
    const bool is_query = wanted.type == QRY_LIB_DB_QUERY_TYPE_SELECT;
    statement added;
    added.name = std::string("record: ") + name;
    added.entry = is_query ? "qry_lib_db_wrapper_stmt_exec_query" : "qry_lib_db_wrapper_stmt_exec";
    added.prepare = [wanted] { build(wanted); };
    if (is_query) {
        added.run = [] { return qry_lib_db_stmt_exec_query(&stmt, &rowset); };
    } else {
        added.run = [] { return qry_lib_db_stmt_exec(&stmt); };
    }
    added.answer = rows_text;
    added.state = rows_text;
    added.finish = finish_query;
    list.push_back(added);
}

void add_queries(std::vector<statement> &list) {
    add_select(list, "adbk_db", "SELECT PSN_NAME FROM PSN_TBL");
    add_select(list, "adbk_db",
               "SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID > 3 AND PSN_NAME != 'x' "
               "ORDER BY PSN_NAME DESC");
    add_select(list, "adbk_db",
               "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 2 OR INTEG_ID >= 106 ORDER BY PSN_ID");
    add_select(list, "adbk_db", "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (2, 4) ORDER BY INTEG_ID ASC");
    add_select(list, "adbk_db", "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME INLIKE ('Sa%','Anna%')");
    add_select(list, "adbk_db", "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE 'S%'");
    add_select(list, "adbk_db", "SELECT EMAIL_ADDR FROM EMAIL_TBL");
    add_select(list, "adbk_db", "SELECT COUNT(*) FROM PSN_TBL WHERE PSN_ID > 3");
    add_select(list, "department_db", "SELECT COUNT(*) FROM EDIT_CNT_TBL");
    add_select(list, "department_db",
               "SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL "
               "WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID AND DEPT_TBL.ID < 9");
    add_select(list, "log_db",
               "SELECT P_JOB_LOG_TBL.JOB_ID, S_SSFC_LOG_TBL.JOB_ID FROM P_JOB_LOG_TBL, P_SSFC_LOG_TBL, "
               "S_SSFC_LOG_TBL WHERE P_JOB_LOG_TBL.JOB_ID = P_SSFC_LOG_TBL.JOB_ID AND "
               "P_SSFC_LOG_TBL.C_CODE = S_SSFC_LOG_TBL.C_CODE AND P_SSFC_LOG_TBL.C_CODE = 'TYO-01'");
    add_select(list, "log_db",
               "SELECT COUNT(*) FROM P_JOB_LOG_TBL, P_SSFC_LOG_TBL WHERE P_JOB_LOG_TBL.JOB_ID = "
               "P_SSFC_LOG_TBL.JOB_ID");
    add_text(list, "adbk_db", "DELETE FROM PSN_TBL WHERE PSN_ID > 6");
    add_text(list, "adbk_db", "DELETE FROM PSN_TBL");
    add_text(list, "department_db", "DROP TABLE EDIT_CNT_TBL");
    add_text(list, "adbk_db", "CREATE INDEX I ON PSN_TBL (PSN_ID)");
    add_text(list, "adbk_db", "CREATE TABLE PSN_TBL (PSN_ID)");
}

void add_records(std::vector<statement> &list) {
    constexpr auto insert = QRY_LIB_DB_QUERY_TYPE_INSERT;
    constexpr auto update = QRY_LIB_DB_QUERY_TYPE_UPDATE;
    constexpr auto remove = QRY_LIB_DB_QUERY_TYPE_DELETE;
    constexpr auto select = QRY_LIB_DB_QUERY_TYPE_SELECT;
    const value_list person = {{"PSN_ID", "11"}, {"PSN_NAME", "Maeve"}, {"INTEG_ID", "111"}};
    add_record(list, "INSERT of a new key", {"adbk_db", insert, "PSN_TBL", person, nullptr, nullptr});
    add_record(list, "INSERT of a key that exists",
               {"adbk_db", insert, "PSN_TBL", {{"PSN_ID", "4"}, {"PSN_NAME", "Maeve"}}, nullptr, nullptr});
    add_record(list, "INSERT into the edit counters",
               {"department_db", insert, "EDIT_CNT_TBL", {{"ID", "1"}, {"CNT", "5"}}, nullptr, nullptr});
    add_record(list, "UPDATE of some rows",
               {"adbk_db",
                update,
                "PSN_TBL",
                {{"PSN_NAME", "Same"}, {"INTEG_ID", "7"}},
                "PSN_ID IN (1, 2)",
                nullptr});
    add_record(list, "UPDATE of all rows",
               {"adbk_db", update, "PSN_TBL", {{"PSN_ADDR_ID", "9"}}, nullptr, nullptr});
    add_record(list, "DELETE of some rows", {"adbk_db", remove, "PSN_TBL", {}, "PSN_ID < 4", nullptr});
    add_record(list, "DELETE of all rows", {"adbk_db", remove, "PSN_TBL", {}, nullptr, nullptr});
    add_record(list, "SELECT",
               {"adbk_db",
                select,
                "PSN_TBL",
                {{"PSN_ID", ""}, {"PSN_NAME", ""}},
                "PSN_NAME LIKE 'S%'",
                "PSN_ID DESC"});
    add_record(list, "COUNT", {"adbk_db", select, "PSN_TBL", {{"COUNT(*)", ""}}, "PSN_ID >= 2", nullptr});
}

constexpr std::uint32_t id_unset = 4711;
std::uint32_t unused_id = id_unset;

void add_unused_id(std::vector<statement> &list) {
    static const qry_lib_db_unused_id_param_ param = {"adbk_db", "PSN_TBL", "PSN_ID", 1, 100, 50, 2};
    statement added;
    added.name = "qry_lib_db_get_unused_id";
    added.entry = "qry_lib_db_wrapper_get_unused_id";
    added.prepare = [] { unused_id = id_unset; };
    added.run = [] { return qry_lib_db_get_unused_id(&param, &unused_id); };
    added.answer = [] { return std::to_string(unused_id); };
    added.state = added.answer;
    list.push_back(added);
}

void drop_handles() {
    while (dsql_db_handle_delete() == 0) {
    }
}

void add_handle() {
    EXPECT_EQ(dsql_db_handle_add(), 0);
}

std::string has_handle() {
    return qryhost_current_db_handle() != 0 ? "handle" : "no handle";
}

void add_handles(std::vector<statement> &list) {
    const auto call_add = [] { return static_cast<std::uint32_t>(dsql_db_handle_add()); };
    statement first{"dsql_db_handle_add, the process's first", "dsql_db_handle_add"};
    first.run = call_add;
    first.answer = has_handle;
    first.state = has_handle;
    first.finish = drop_handles;
    first.first_in_process = true;
    list.push_back(first);
    statement second{"dsql_db_handle_add, beside another", "dsql_db_handle_add"};
    second.prepare = add_handle;
    second.run = call_add;
    second.answer = has_handle;
    second.state = has_handle;
    second.finish = drop_handles;
    list.push_back(second);
    statement removal{"dsql_db_handle_delete", ""};
    removal.prepare = add_handle;
    removal.run = [] { return static_cast<std::uint32_t>(dsql_db_handle_delete()); };
    removal.answer = has_handle;
    removal.state = has_handle;
    removal.finish = drop_handles;
    list.push_back(removal);
    statement callback{"dsql_db_handle_callback", ""};
    callback.prepare = add_handle;
    callback.run = [] { return std::uint32_t{qryhost_current_db_handle() != 0 ? 0u : 1u}; };
    callback.finish = drop_handles;
    list.push_back(callback);
}

constexpr std::uint32_t area = 1;
constexpr std::uint32_t directory = 77;
constexpr std::uint32_t version = 0x01020304;

// The version file as it lies there.
std::string stored_version() {
    std::uint32_t file = 0;
    if (fsa_fio_fopen(area, directory, "version", 0, &file) != 0) {
        return "no version";
    }
    std::string bytes(4, '\0');
    const std::uint32_t code = fsa_fio_fread(file, bytes.data(), 4);
    fsa_fio_fclose(file);
    return code == 0 ? bytes : "short version";
}

void add_version(std::vector<statement> &list, const std::string &name, bool writes, std::uint32_t before) {
    statement added;
    added.name = name;
    added.entry = writes ? "qry_lib_write_data_version" : "qry_lib_check_data_version";
    added.prepare = [before] {
        fsa_fio_remove(area, directory);
        if (before != 0) {
            EXPECT_EQ(qry_lib_write_data_version(area, directory, before), 0u);
        }
    };
    if (writes) {
        added.run = [] { return qry_lib_write_data_version(area, directory, version); };
    } else {
        added.run = [] { return qry_lib_check_data_version(area, directory, version); };
        added.again = {0, 1};
    }
    added.answer = stored_version;
    list.push_back(added);
}

void add_versions(std::vector<statement> &list) {
    add_version(list, "qry_lib_write_data_version, new directory", true, 0);
    add_version(list, "qry_lib_write_data_version", true, 7);
    add_version(list, "qry_lib_check_data_version, right version", false, version);
    add_version(list, "qry_lib_check_data_version, other version", false, 7);
    add_version(list, "qry_lib_check_data_version, no version", false, 0);
}

qry_lib_vector_ *vector = nullptr;

// Filled to its capacity, so that the next step grows it.
void fill_vector() {
    EXPECT_EQ(qry_lib_vector_init(4, 10, &vector), 0u);
    for (std::uint32_t number = 0; number < 10; ++number) {
        EXPECT_EQ(qry_lib_vector_add_data(vector, &number), 0u);
    }
}

std::string vector_text() {
    std::string text;
    std::uint32_t number = 0;
    for (std::uint32_t i = 0; vector != nullptr && i < vector->count; ++i) {
        EXPECT_EQ(qry_lib_vector_get_data(vector, i, &number), 0u);
        text += std::to_string(number) + " ";
    }
    return vector == nullptr ? "none" : text + "of " + std::to_string(vector->capacity);
}

void free_vector() {
    if (vector != nullptr) {
        EXPECT_EQ(qry_lib_vector_free(vector), 0u);
    }
    vector = nullptr;
}

void add_vector(std::vector<statement> &list, const std::string &name, bool filled, std::uint32_t (*run)()) {
    statement added{name, name};
    if (filled) {
        added.prepare = fill_vector;
    }
    added.run = run;
    added.answer = vector_text;
    added.state = vector_text;
    added.finish = free_vector;
    list.push_back(added);
}

void add_vectors(std::vector<statement> &list) {
    static constexpr std::uint32_t number = 10;
    add_vector(list, "qry_lib_vector_init", false, [] { return qry_lib_vector_init(4, 10, &vector); });
    add_vector(list, "qry_lib_vector_add_data", true,
               [] { return qry_lib_vector_add_data(vector, &number); });
    add_vector(list, "qry_lib_vector_swap_data", true, [] { return qry_lib_vector_swap_data(vector, 1, 8); });
}

std::uint32_t double_count = 0;

// Calls that hand the element tables' code on without a trace.
void add_direct(std::vector<statement> &list, const char *name, std::uint32_t (*run)()) {
    statement added{name, ""};
    added.run = run;
    list.push_back(added);
}

void add_element_calls(std::vector<statement> &list) {
    using namespace test;
    static std::uint8_t buffer[256];
    add_direct(list, "qry_lib_tb_get_stc_table",
               [] { return qry_lib_tb_get_stc_table(persons, 2, person_name, buffer); });
    add_direct(list, "qry_lib_tb_set_stc_table",
               [] { return qry_lib_tb_set_stc_table(requester, persons, 2, person_name, buffer); });
    add_direct(list, "qry_lib_tb_set_stc_default_table",
               [] { return qry_lib_tb_set_stc_default_table(requester, persons, person_name, buffer); });
    add_direct(list, "qry_lib_tb_reset_one_stc_table",
               [] { return qry_lib_tb_reset_one_stc_table(persons, 2); });
    add_direct(list, "qry_lib_tb_reset_all_stc_table",
               [] { return qry_lib_tb_reset_all_stc_table(persons); });
    add_direct(list, "qry_lib_tb_get_stc_status",
               [] { return qry_lib_tb_get_stc_status(settings, setting_ids[0], buffer); });
    add_direct(list, "qry_lib_tb_set_stc_status", [] {
        static constexpr std::uint32_t mode = 2;
        return qry_lib_tb_set_stc_status(requester, settings, setting_ids[0], &mode);
    });
    statement judge{"qry_lib_judge_doublecount", "qry_lib_judge_doublecount"};
    judge.prepare = [] { double_count = 0; };
    judge.run = [] { return qry_lib_judge_doublecount(4000, 2, &double_count); };
    judge.answer = [] { return std::to_string(double_count); };
    judge.state = judge.answer;
    list.push_back(judge);
}

} // namespace

const std::vector<statement> &statements() {
    static const std::vector<statement> all = [] {
        std::vector<statement> list;
        add_queries(list);
        add_records(list);
        add_unused_id(list);
        add_handles(list);
        add_versions(list);
        add_vectors(list);
        add_element_calls(list);
        return list;
    }();
    return all;
}

// The sample device is full; two people leave to make room.
void load_device(const std::string &fixture_path) {
    ASSERT_EQ(qryhost_load(fixture_path.c_str()), 0) << qryhost_error();
    qry_lib_db_get_stmt("adbk_db", &stmt);
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_ID IN (5, 8)"), 0u);
    qry_lib_db_stmt_term(&stmt);
}

} // namespace fault
