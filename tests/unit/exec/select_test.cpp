// SELECT and COUNT: from record numbers to the rows of a rowset.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::any_line;
using test::departments;
using test::failure;
using test::injected;
using test::invalid_argument;
using test::query_of;
using test::record_list;
using test::traces;

constexpr auto select_type = QRY_LIB_DB_QUERY_TYPE_SELECT;
constexpr auto count_type = QRY_LIB_DB_QUERY_TYPE_COUNT;
constexpr int not_created = QRY_LIB_ROWSET_NOT_CREATED;

using texts = std::vector<std::string>;

class select_rows : public test::exec_test {
  protected:
    select_rows() {
        EXPECT_EQ(executer.open_catalog("department_db"), 0);
        test::put_department(0, 30, "Sato", 7);
        test::put_department(1, 10, "Abe", 0xFFFFFFFF);
        test::put_department(2, 20, "Ito", 5);
    }

    int select(const norvane::qry_lib_analyze_info &query, const record_list &records) {
        qry_lib_db_rowset_term(&rowset);
        return executer.exec_select(query, records, rowset);
    }

    void expect_no_rows() const {
        EXPECT_EQ(rowset.record_num, 0);
        EXPECT_EQ(rowset.records, nullptr);
        EXPECT_EQ(rowset.current, -1);
    }

    static query_of departments_query() { return query_of(select_type, "department_db", "DEPT_TBL"); }
};

TEST_F(select_rows, come_in_the_order_of_the_records) {
    EXPECT_EQ(select(departments_query().column("NAME").column("ID"), {0, 1, 2}), 0);
    EXPECT_EQ(rows(), (texts{"Sato,30", "Abe,10", "Ito,20"}));
    EXPECT_EQ(select(departments_query().column("ID"), {2, 0, 2}), 0);
    EXPECT_EQ(rows(), (texts{"20", "30", "20"}));
    EXPECT_TRUE(lines.empty());
}

TEST_F(select_rows, columns_come_in_the_order_of_the_list) {
    EXPECT_EQ(select(departments_query().column("TOTAL_M").column("NAME").column("ID").column("NAME"), {1}),
              0);
    EXPECT_EQ(rows(), (texts{"-1,Abe,10,Abe"}));
}

TEST_F(select_rows, a_column_has_the_lists_name_the_querys_table_and_the_elements_type) {
    EXPECT_EQ(
        select(departments_query().column("NAME").column("ID").column("TOTAL_M").column("TOTAL_L"), {1}), 0);
    struct {
        const char *name;
        QRY_LIB_COLUMN_TYPE type;
    } const expected[] = {{"NAME", QRY_LIB_COLUMN_TYPE_STR},
                          {"ID", QRY_LIB_COLUMN_TYPE_USHORT},
                          {"TOTAL_M", QRY_LIB_COLUMN_TYPE_ULONG},
                          {"TOTAL_L", QRY_LIB_COLUMN_TYPE_UCHAR}};
    ASSERT_EQ(rowset.records[0].col_num, 4);
    for (std::size_t i = 0; i < 4; ++i) {
        const QRY_LIB_COLUMN &column = rowset.records[0].cols[i];
        EXPECT_STREQ(column.col_name, expected[i].name);
        EXPECT_STREQ(column.table_name, "DEPT_TBL");
        EXPECT_EQ(column.type, expected[i].type);
    }
    EXPECT_EQ(rowset.records[0].cols[1].value.ushort_value, 10);
    EXPECT_EQ(rowset.records[0].cols[2].value.ulong_value, 0xFFFFFFFFu);
    char text[8];
    qry_lib_db_rowset_get_str(text, sizeof text, &rowset, 1, ""); // a number's raw bytes end behind it
    EXPECT_LE(std::strlen(text), 2u);
}

TEST_F(select_rows, a_value_that_fills_its_element_reads_whole) {
    test::put_text(departments, 0, test::department_code, "123456789");
    test::put_text(departments, 0, test::department_name, std::string(193, 'n'));
    EXPECT_EQ(select(departments_query().column("NAME").column("DEPT_CODE").column("FURIGANA"), {0}), 0);
    EXPECT_EQ(rows(), (texts{std::string(193, 'n') + ",123456789,"}));
}

TEST_F(select_rows, without_records_there_are_no_rows) {
    EXPECT_EQ(select(departments_query().column("ID").column("NAME"), {}), 0);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 0u);
    EXPECT_EQ(select(query_of(count_type, "department_db", "DEPT_TBL"), {}), 0);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_TRUE(lines.empty());
}

TEST_F(select_rows, are_sorted_where_the_query_says_so) {
    query_of query = departments_query().column("NAME");
    EXPECT_EQ(select(query.order("ID", QRY_LIB_ODER_TYPE_ASC), {0, 1, 2}), 0);
    EXPECT_EQ(rows(), (texts{"Abe", "Ito", "Sato"}));
    EXPECT_EQ(select(query.order("TOTAL_M", QRY_LIB_ODER_TYPE_DESC), {0, 1, 2}), 0);
    EXPECT_EQ(rows(), (texts{"Abe", "Sato", "Ito"}));
}

TEST_F(select_rows, a_count_reads_the_key_columns) {
    const query_of query(count_type, "department_db", "DEPT_TBL");
    const norvane::qry_lib_analyze_info &info = query;
    qryhost_fail_clear();
    EXPECT_EQ(select(info, {0, 1, 2}), 0);
    EXPECT_EQ(rows(), (texts{"30", "10", "20"}));
    EXPECT_EQ(qryhost_call_count(QRYHOST_GET_TABLE), 3u);
    EXPECT_EQ(info.get_cols_num(), 0); // the caller's query does not change
}

TEST_F(select_rows, a_count_of_edit_counters_reads_the_first_column) {
    test::put(test::edit_counters, 0, test::edit_counter_count, std::uint32_t{8});
    EXPECT_EQ(select(query_of(count_type, "department_db", "EDIT_CNT_TBL"), {0, 1}), 0);
    EXPECT_EQ(rows(), (texts{"8", "0"}));
    EXPECT_STREQ(rowset.records[0].cols[0].col_name, "CNT");
}

TEST_F(select_rows, standard_columns_are_added_behind_those_there_are) {
    struct {
        const char *db;
        const char *table;
        texts names;
    } const rows[] = {{"adbk_db", "GRPM_TBL", {"GRP_ID", "PSN_ID", "SEND_CTGRY"}},
                      {"log_db", "P_JOB_LOG_REC_TBL", {"JOB_ID", "RECV_INFO_ID"}},
                      {"usrac_db", "EDIT_CNT_TBL", {"CNT"}}};
    for (const auto &row : rows) {
        ASSERT_EQ(executer.open_catalog(row.db), 0);
        query_of query(count_type, row.db, row.table);
        query.value("before", "1");
        ASSERT_EQ(executer.add_standard_cols(query.info()), 0);
        ASSERT_EQ(query.info().get_cols_num(), row.names.size() + 1);
        for (std::uint16_t i = 0; i < row.names.size(); ++i) {
            QRY_LIB_COLUMN column{};
            EXPECT_EQ(query.info().get_cols(static_cast<std::uint16_t>(i + 1), column.table_name,
                                            column.col_name, &column.value, column.type),
                      0u);
            EXPECT_EQ(column.col_name, row.names[i]);
            EXPECT_STREQ(column.table_name, row.table);
            EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_STR);
            EXPECT_STREQ(column.value.str_value, "");
        }
    }
}

TEST_F(select_rows, standard_columns_of_an_unknown_table_are_refused) {
    query_of query(count_type, "department_db", "NO_TBL");
    EXPECT_EQ(executer.add_standard_cols(query.info()), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"add_standard_cols", 1505, 0xDB05}}));
    EXPECT_EQ(query.info().get_cols_num(), 0);
    EXPECT_EQ(select(query, {0}), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"add_standard_cols", 1505, 0xDB05}, {"exec_select", 326, 0xDB05}}));
    expect_no_rows();
}

TEST_F(select_rows, unknown_columns_leave_no_rowset) {
    for (const std::string &name : {std::string("*"), std::string("DEPT_TBL.ID"), std::string("id"),
                                    std::string(), std::string(1 << 20, 'C')}) {
        for (const record_list &records : {record_list{0, 1}, record_list{}}) {
            qryhost_fail_clear();
            EXPECT_EQ(select(departments_query().column("ID").column(name.c_str()), records),
                      invalid_argument);
            EXPECT_EQ(take_traces(),
                      (traces{{"exec_select_proc", 408, 0xDB05}, {"exec_select", 316, 0xDB05}}));
            EXPECT_EQ(qryhost_call_count(QRYHOST_GET_TABLE), 0u); // nothing is read before
            expect_no_rows();
        }
    }
}

TEST_F(select_rows, no_columns_make_no_rowset) {
    qry_lib_db_rowset_init(&rowset);
    EXPECT_EQ(executer.exec_select_proc(departments_query(), {0}, rowset), not_created);
    EXPECT_EQ(take_traces(), (traces{{"exec_select_proc", 380, 0x2001}}));
    expect_no_rows();
}

TEST_F(select_rows, an_unknown_sort_column_leaves_no_rowset) {
    EXPECT_EQ(select(departments_query().column("ID").order("NO_COL", QRY_LIB_ODER_TYPE_ASC), {0}),
              invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"sort_tbdb_table_id", 1233, 0xDB05},
                                     {"exec_select_proc", 387, 0xDB05},
                                     {"exec_select", 316, 0xDB05}}));
    expect_no_rows();
}

TEST_F(select_rows, a_failing_read_ends_the_select) {
    const failure unread = {injected, {{"exec_select_proc", 436, injected}, {"exec_select", 316, injected}}};
    expect_failures(
        QRYHOST_GET_TABLE, [] {},
        [&] {
            const int code = select(departments_query().column("ID").column("NAME"), {0, 2});
            if (code != 0) {
                expect_no_rows();
            }
            qry_lib_db_rowset_term(&rowset);
            return code;
        },
        std::vector<failure>(4, unread));
}

TEST_F(select_rows, a_record_that_the_platform_does_not_have_ends_the_select) {
    EXPECT_EQ(select(departments_query().column("ID"), {0, 101}), test::table_argument);
    EXPECT_EQ(take_traces(), (traces{{"exec_select_proc", 436, 0x5241}, {"exec_select", 316, 0x5241}}));
    expect_no_rows();
}

TEST_F(select_rows, a_failing_read_ends_a_count_with_its_own_trace) {
    const failure unread = {injected, {{"exec_select_proc", 436, injected}, {"exec_select", 332, injected}}};
    expect_failures(
        QRYHOST_GET_TABLE, [] {},
        [&] {
            const int code = select(query_of(count_type, "department_db", "DEPT_TBL"), {0, 1});
            qry_lib_db_rowset_term(&rowset);
            return code;
        },
        std::vector<failure>(2, unread));
}

TEST_F(select_rows, every_block_can_fail) {
    const failure rowset_block = {
        not_created,
        {{"init_rowset", any_line, 1}, {"exec_select_proc", 380, 0x2001}, {"exec_select", 316, 0x2001}}};
    const auto sort_block = [](const char *function, int line) {
        return failure{test::no_memory,
                       {{function, line, 1}, {"exec_select_proc", 387, 1}, {"exec_select", 316, 1}}};
    };
    expect_failures(
        QRYHOST_ALLOC, [] {},
        [&] {
            const int code =
                select(departments_query().column("ID").order("ID", QRY_LIB_ODER_TYPE_ASC), {0, 1});
            if (code != 0) {
                expect_no_rows();
            }
            qry_lib_db_rowset_term(&rowset);
            return code;
        },
        {rowset_block, rowset_block, rowset_block, sort_block("sort_tbdb_table_id", 1243),
         sort_block("sort_tbdb_table_id_internal", 1286)});
}

TEST_F(select_rows, a_count_without_memory_has_its_own_trace) {
    const failure rowset_block = {
        not_created,
        {{"init_rowset", any_line, 1}, {"exec_select_proc", 380, 0x2001}, {"exec_select", 332, 0x2001}}};
    expect_failures(
        QRYHOST_ALLOC, [] {},
        [&] {
            const int code = select(query_of(count_type, "department_db", "DEPT_TBL"), {0});
            qry_lib_db_rowset_term(&rowset);
            return code;
        },
        {rowset_block, rowset_block});
}

} // namespace
