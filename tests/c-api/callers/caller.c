/* A caller in plain C99: fills a table, reads it back, sees a refusal, and gives everything back. */
#include <qrylib/qrylib.h>

#include <stdio.h>
#include <string.h>

#include "platform/host/qryhost.h"

static int failures;

static void check(int holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "does not hold: %s\n", what);
        ++failures;
    }
}
#define CHECK(condition) check(condition, #condition)

static uint32_t insert_person(uint16_t id, const char *name) {
    qry_lib_db_stmt_ stmt;
    uint32_t code;
    qry_lib_db_get_stmt("adbk_db", &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_INSERT);
    qry_lib_db_stmt_set_table_name(&stmt, "PSN_TBL");
    qry_lib_db_stmt_set_col_num(&stmt, 2);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "PSN_ID");
    qry_lib_db_stmt_set_elem_as_ushort(&stmt, 0, id);
    qry_lib_db_stmt_set_col_name(&stmt, 1, "PSN_NAME");
    qry_lib_db_stmt_set_elem_as_str(&stmt, 1, name);
    code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

int main(void) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset;
    char name[16];
    const uint32_t blocks = qryhost_pool_blocks();

    CHECK(insert_person(2, "Sato") == QRY_LIB_OK);
    CHECK(insert_person(1, "Abe") == QRY_LIB_OK);

    memset(&rowset, 0, sizeof rowset);
    qry_lib_db_rowset_init(&rowset);
    CHECK(qry_lib_db_get_stmt("adbk_db", &stmt) == QRY_LIB_OK);
    CHECK(qry_lib_db_exec_query(&stmt, "SELECT PSN_NAME, PSN_ID FROM PSN_TBL ORDER BY PSN_ID", &rowset) ==
          QRY_LIB_OK);
    CHECK(qry_lib_db_rowset_get_row_num(&rowset) == 2);
    CHECK(qry_lib_db_rowset_next(&rowset) == 1);
    qry_lib_db_rowset_get_str(name, (uint32_t)sizeof name, &rowset, 0, "");
    CHECK(strcmp(name, "Abe") == 0);
    CHECK(qry_lib_db_rowset_get_ulong(&rowset, 1, 0) == 1);
    CHECK(qry_lib_db_rowset_next(&rowset) == 1);
    CHECK(qry_lib_db_rowset_next(&rowset) == 0);
    qry_lib_db_rowset_term(&rowset);

    CHECK(qry_lib_db_exec_query(&stmt, "SELECT NOBODY FROM PSN_TBL", &rowset) == QRY_LIB_INVALID_ARGUMENT);
    CHECK(qry_lib_db_exec(&stmt, "DELETE FROM PSN_TBL WHERE PSN_ID = 2") == QRY_LIB_OK);
    CHECK(qry_lib_db_exec_query(&stmt, "SELECT COUNT(*) FROM PSN_TBL", &rowset) == QRY_LIB_OK);
    CHECK(qry_lib_db_rowset_next(&rowset) == 1);
    CHECK(qry_lib_db_rowset_get_uint(&rowset, 0, 9) == 1);
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);

    CHECK(qryhost_pool_blocks() == blocks);
    return failures == 0 ? 0 : 1;
}
