// The built-in schema as it is shown to people and tools.
#include <cstring>
#include <map>
#include <set>

#include <qrylib/catalog.h>

#include "unit/query_support.h"

namespace {

using test::texts;

class schema_view : public test::trace_test {
  protected:
    static texts tables_of(const char *db) {
        texts names;
        for (std::uint16_t i = 0; i < qry_lib_catalog_table_num(db); ++i) {
            names.emplace_back(qry_lib_catalog_table(db, i));
        }
        return names;
    }

    // "NAME type size key" of each column.
    static texts columns_of(const char *db, const char *table) {
        texts described;
        for (std::uint16_t i = 0; i < qry_lib_catalog_column_num(db, table); ++i) {
            qry_lib_catalog_column_ column;
            EXPECT_EQ(qry_lib_catalog_column(db, table, i, &column), 0u);
            described.push_back(std::string(column.name) + " " + std::to_string(column.type) + " " +
                                std::to_string(column.size) + (column.is_key == 1 ? " key" : ""));
        }
        return described;
    }
};

const char *const database_names[] = {"adbk_db", "department_db", "usrac_db", "log_db"};

TEST_F(schema_view, there_are_four_databases) {
    ASSERT_EQ(qry_lib_catalog_db_num(), 4);
    for (std::uint16_t i = 0; i < 4; ++i) {
        EXPECT_STREQ(qry_lib_catalog_db(i), database_names[i]);
    }
    EXPECT_EQ(qry_lib_catalog_db(4), nullptr);
    EXPECT_EQ(qry_lib_catalog_db(65535), nullptr);
}

TEST_F(schema_view, tables_stand_in_stored_order) {
    EXPECT_EQ(tables_of("adbk_db"),
              (texts{"EDIT_CNT_TBL", "EMAIL_TBL", "FAX_TBL", "FTP_TBL", "GRPM_TBL", "GRP_TBL", "INTEG_TBL",
                     "ONE_TBL", "PSN_TBL", "SMB_TBL", "SSHEET_TBL", "TMP_ID_TBL"}));
    EXPECT_EQ(tables_of("department_db"), (texts{"DEPT_TBL", "EDIT_CNT_TBL"}));
    EXPECT_EQ(tables_of("usrac_db"), (texts{"ACCOUNT_TBL", "EDIT_CARD_INFO_TBL", "EDIT_CNT_TBL",
                                            "GRP_PRMS_RCD_TBL", "NORM_PRMS_RCD_TBL"}));
    EXPECT_EQ(tables_of("log_db"),
              (texts{"EDIT_CNT_TBL", "P_JOB_LOG_REC_TBL", "P_JOB_LOG_TBL", "P_SSFC_LOG_TBL",
                     "ST_JOB_LOG_REC_TBL", "ST_JOB_LOG_TBL", "ST_SSFC_LOG_TBL", "S_JOB_LOG_REC_TBL",
                     "S_JOB_LOG_SND_TBL", "S_JOB_LOG_TBL", "S_SSFC_LOG_TBL"}));
    EXPECT_EQ(qry_lib_catalog_table("department_db", 2), nullptr);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(schema_view, columns_are_described_as_results_carry_them) {
    EXPECT_EQ(columns_of("department_db", "EDIT_CNT_TBL"), (texts{"CNT 4 4", "ID 4 4 key"}));
    const texts departments = columns_of("department_db", "DEPT_TBL");
    ASSERT_EQ(departments.size(), 20u);
    EXPECT_EQ(departments[2], "DEPT_CODE 5 9");
    EXPECT_EQ(departments[6], "ID 2 2 key");
    EXPECT_EQ(departments[7], "NAME 5 193"); // a name is a string in a result
}

TEST_F(schema_view, every_table_has_columns_keys_and_a_capacity) {
    for (const char *db : database_names) {
        for (const std::string &table : tables_of(db)) {
            SCOPED_TRACE(std::string(db) + "." + table);
            const std::uint16_t column_num = qry_lib_catalog_column_num(db, table.c_str());
            std::set<std::string> names;
            int key_num = 0;
            for (std::uint16_t i = 0; i < column_num; ++i) {
                qry_lib_catalog_column_ column;
                ASSERT_EQ(qry_lib_catalog_column(db, table.c_str(), i, &column), 0u);
                EXPECT_LE(column.type, QRY_LIB_COLUMN_TYPE_STR);
                EXPECT_GT(column.size, 0);
                EXPECT_LE(column.is_key, 1);
                names.insert(column.name);
                key_num += column.is_key;
            }
            EXPECT_GT(key_num, 0);
            EXPECT_EQ(names.size(), column_num);
            std::uint16_t capacity = 4711;
            EXPECT_EQ(qry_lib_catalog_capacity(db, table.c_str(), &capacity), 0u);
            EXPECT_NE(capacity, 4711);
        }
    }
}

TEST_F(schema_view, the_tables_that_hold_records_are_known) {
    std::map<std::string, int> capacities;
    for (const char *db : database_names) {
        for (const std::string &table : tables_of(db)) {
            std::uint16_t capacity = 0;
            EXPECT_EQ(qry_lib_catalog_capacity(db, table.c_str(), &capacity), 0u);
            if (capacity > 0) {
                capacities[std::string(db) + "." + table] = capacity;
            }
        }
    }
    const std::map<std::string, int> expected = {
        {"adbk_db.PSN_TBL", 10},           {"department_db.DEPT_TBL", 101}, {"department_db.EDIT_CNT_TBL", 2},
        {"usrac_db.NORM_PRMS_RCD_TBL", 1}, {"log_db.P_JOB_LOG_TBL", 1},     {"log_db.P_SSFC_LOG_TBL", 1},
        {"log_db.ST_JOB_LOG_TBL", 1},      {"log_db.ST_SSFC_LOG_TBL", 1},   {"log_db.S_JOB_LOG_TBL", 1},
        {"log_db.S_SSFC_LOG_TBL", 1}};
    EXPECT_EQ(capacities, expected);
}

TEST_F(schema_view, a_table_holds_as_many_records_as_it_says) {
    qryhost_reset();
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt("adbk_db", &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_INSERT);
    qry_lib_db_stmt_set_table_name(&stmt, "PSN_TBL");
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "PSN_ID");
    std::uint16_t capacity = 0;
    ASSERT_EQ(qry_lib_catalog_capacity("adbk_db", "PSN_TBL", &capacity), 0u);
    for (std::int32_t id = 1; id <= capacity; ++id) {
        qry_lib_db_stmt_set_elem_as_int(&stmt, 0, id);
        EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), 0u) << id;
    }
    qry_lib_db_stmt_set_elem_as_int(&stmt, 0, capacity + 1);
    EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), QRY_LIB_NO_FREE_ENTRY);
    qry_lib_db_stmt_term(&stmt);
    qryhost_reset();
}

TEST_F(schema_view, unknown_names_have_nothing) {
    const std::string long_name(1000000, 'x');
    for (const char *name :
         {"", "ADBK_DB", "adbk", "adbk_db ", long_name.c_str(), static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(qry_lib_catalog_table_num(name), 0);
        EXPECT_EQ(qry_lib_catalog_table(name, 0), nullptr);
        EXPECT_EQ(qry_lib_catalog_column_num(name, "PSN_TBL"), 0);
        EXPECT_EQ(qry_lib_catalog_column_num("adbk_db", name), 0);
    }
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(schema_view, refusals_carry_a_code_and_change_nothing) {
    qry_lib_catalog_column_ column{};
    column.size = 4711;
    std::uint16_t capacity = 4711;
    EXPECT_EQ(qry_lib_catalog_column("none", "PSN_TBL", 0, &column), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_column("adbk_db", "none", 0, &column), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_column(nullptr, "PSN_TBL", 0, &column), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_column("adbk_db", nullptr, 0, &column), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_column("adbk_db", "PSN_TBL", 0, nullptr), QRY_LIB_INVALID_ARGUMENT);
    for (const std::uint16_t index :
         {qry_lib_catalog_column_num("adbk_db", "PSN_TBL"), std::uint16_t{65535}}) {
        EXPECT_EQ(qry_lib_catalog_column("adbk_db", "PSN_TBL", index, &column), QRY_LIB_NO_SUCH_ITEM);
    }
    EXPECT_EQ(qry_lib_catalog_capacity("none", "PSN_TBL", &capacity), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_capacity("adbk_db", "none", &capacity), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_capacity(nullptr, nullptr, &capacity), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qry_lib_catalog_capacity("adbk_db", "PSN_TBL", nullptr), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(column.size, 4711);
    EXPECT_EQ(capacity, 4711);
}

} // namespace
