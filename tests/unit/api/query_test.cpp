// Queries end to end: SQL text and statement records against real records.
#include <string>
#include <vector>

#include <qrylib/qrylib.h>

#include "unit/support.h"

namespace {

class query : public test::platform_test {
  protected:
    query() {
        qryhost_reset();
        qry_lib_db_get_stmt("adbk_db", &stmt);
    }
    ~query() override {
        qry_lib_db_rowset_term(&rowset);
        qry_lib_db_stmt_term(&stmt);
        qryhost_reset();
    }

    std::uint32_t put(const char *db, const char *table,
                      const std::vector<std::pair<const char *, std::string>> &values,
                      QRY_LIB_DB_QUERY_TYPE type = QRY_LIB_DB_QUERY_TYPE_INSERT,
                      const char *where = nullptr) {
        qry_lib_db_stmt_ insert;
        qry_lib_db_get_stmt(db, &insert);
        qry_lib_db_stmt_set_exec_type(&insert, type);
        qry_lib_db_stmt_set_table_name(&insert, table);
        qry_lib_db_stmt_set_col_num(&insert, static_cast<std::int32_t>(values.size()));
        std::int32_t i = 0;
        for (const auto &[name, value] : values) {
            qry_lib_db_stmt_set_col_name(&insert, i, name);
            qry_lib_db_stmt_set_elem_as_str(&insert, i++, value.c_str());
        }
        if (where != nullptr) {
            qry_lib_db_stmt_set_where_phrase(&insert, where);
        }
        const std::uint32_t put_code = qry_lib_db_stmt_exec(&insert);
        qry_lib_db_stmt_term(&insert);
        return put_code;
    }

    // Every row of a SELECT as its values joined by commas.
    std::vector<std::string> rows(const char *sql) {
        qry_lib_db_rowset_term(&rowset);
        code = qry_lib_db_exec_query(&stmt, sql, &rowset);
        std::vector<std::string> result;
        while (code == 0 && qry_lib_db_rowset_next(&rowset) == 1) {
            std::string row;
            const QRY_LIB_RECORD &record = rowset.records[rowset.current];
            for (std::int32_t i = 0; i < record.col_num; ++i) {
                const QRY_LIB_COLUMN &column = record.cols[i];
                row += i == 0 ? "" : ",";
                row += column.type == QRY_LIB_COLUMN_TYPE_STR
                           ? std::string(column.value.str_value)
                           : std::to_string(
                                 qry_lib_db_rowset_get_ulong(&rowset, static_cast<std::uint16_t>(i), 999));
            }
            result.push_back(row);
        }
        return result;
    }

    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset{};
    std::uint32_t code = 0;
};

using texts = std::vector<std::string>;

TEST_F(query, the_whole_life_of_a_record) {
    EXPECT_EQ(put("adbk_db", "PSN_TBL", {{"PSN_ID", "2"}, {"PSN_NAME", "Sato"}}), 0u);
    EXPECT_EQ(put("adbk_db", "PSN_TBL", {{"PSN_ID", "1"}, {"PSN_NAME", "Abe"}}), 0u);
    EXPECT_EQ(rows("SELECT PSN_ID, PSN_NAME FROM PSN_TBL"), (texts{"2,Sato", "1,Abe"}));
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL ORDER BY PSN_ID"), (texts{"Abe", "Sato"}));
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE 'Sa%'"), (texts{"2"}));
    EXPECT_EQ(rows("SELECT COUNT(*) FROM PSN_TBL"), (texts{"2"}));
    EXPECT_EQ(rowset.records[0].cols[0].type, QRY_LIB_COLUMN_TYPE_UINT);
    EXPECT_EQ(put("adbk_db", "PSN_TBL", {{"PSN_NAME", "Ito"}}, QRY_LIB_DB_QUERY_TYPE_UPDATE, "PSN_ID = 2"),
              0u);
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID IN (1, 2)"), (texts{"Ito", "Abe"}));
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_ID = 2"), 0u);
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL"), (texts{"Abe"}));
    EXPECT_TRUE(take_traces().empty());
    EXPECT_EQ(qry_lib_db_exec(&stmt, "DROP TABLE PSN_TBL"), 0u);
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL"), texts{});
    EXPECT_EQ(code, 0u);
}

TEST_F(query, two_tables_are_joined) {
    for (const char *id : {"1", "2"}) {
        EXPECT_EQ(put("department_db", "DEPT_TBL", {{"ID", id}, {"NAME", std::string("Dept") + id}}), 0u);
    }
    EXPECT_EQ(put("department_db", "EDIT_CNT_TBL", {{"ID", "1"}, {"CNT", "7"}}), 0u);
    qry_lib_db_get_stmt("department_db", &stmt);
    EXPECT_EQ(rows("SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE "
                   "DEPT_TBL.ID=EDIT_CNT_TBL.ID"),
              (texts{"Dept1,7", "Dept1,7"}));
}

} // namespace
