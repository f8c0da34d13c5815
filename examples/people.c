/* Writes three people into the address book, reads them back in order, and shows a refusal. */
#include <inttypes.h>
#include <stdio.h>

#include <qrylib/qrylib.h>

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

/* Prints the rows of a query whose columns are an id and a name; returns the query's code. */
static uint32_t print_people(const char *sql) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset = {0, NULL, -1};
    uint32_t code;
    qry_lib_db_get_stmt("adbk_db", &stmt);
    code = qry_lib_db_exec_query(&stmt, sql, &rowset);
    if (code != QRY_LIB_OK) {
        printf("0x%04" PRIX32 ": %s\n", code, qry_lib_code_text(code));
    }
    while (qry_lib_db_rowset_next(&rowset) == 1) {
        char name[200];
        qry_lib_db_rowset_get_str(name, (uint32_t)sizeof name, &rowset, 1, "");
        printf("%" PRIu32 " %s\n", qry_lib_db_rowset_get_ulong(&rowset, 0, 0), name);
    }
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

int main(void) {
    if (insert_person(3, "Sato") != QRY_LIB_OK || insert_person(1, "Abe") != QRY_LIB_OK ||
        insert_person(2, "Becker") != QRY_LIB_OK) {
        return 1;
    }
    if (print_people("SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID > 0 ORDER BY PSN_NAME") !=
        QRY_LIB_OK) {
        return 1;
    }
    return print_people("SELECT PSN_ID, NICKNAME FROM PSN_TBL") == QRY_LIB_INVALID_ARGUMENT ? 0 : 1;
}
