/* Statement records and rowsets, each of their functions once: departments and people are written, changed,
 * read and deleted. Prints what the rowsets hold. */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <qrylib/qrylib.h>

/* A statement of a type on a table, to be ended with qry_lib_db_stmt_term(). */
static void begin(qry_lib_db_stmt_ *stmt, const char *database, QRY_LIB_DB_QUERY_TYPE type, const char *table,
                  int32_t columns) {
    qry_lib_db_stmt_init(stmt);
    qry_lib_db_get_stmt(database, stmt);
    qry_lib_db_stmt_set_exec_type(stmt, type);
    qry_lib_db_stmt_set_table_name(stmt, table);
    qry_lib_db_stmt_set_col_num(stmt, columns);
}

static uint32_t insert_department(uint16_t id, const char *name) {
    qry_lib_db_stmt_ stmt;
    uint32_t code;
    begin(&stmt, "department_db", QRY_LIB_DB_QUERY_TYPE_INSERT, "DEPT_TBL", 4);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "ID");
    qry_lib_db_stmt_set_elem_as_ushort(&stmt, 0, id);
    qry_lib_db_stmt_set_col_name(&stmt, 1, "NAME");
    qry_lib_db_stmt_set_elem_as_str(&stmt, 1, name);
    qry_lib_db_stmt_set_col_name(&stmt, 2, "TOTAL_L");
    qry_lib_db_stmt_set_elem_as_uchar(&stmt, 2, 1);
    qry_lib_db_stmt_set_col_name(&stmt, 3, "TOTAL_M");
    qry_lib_db_stmt_set_elem_as_ulong(&stmt, 3, id * 1000u);
    code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

/* Sets two meters of one department; which one, the condition says in three ways, of which the last stays. */
static uint32_t set_meters(uint16_t id) {
    qry_lib_db_stmt_ stmt;
    uint32_t code;
    begin(&stmt, "department_db", QRY_LIB_DB_QUERY_TYPE_UPDATE, "DEPT_TBL", 2);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "TOTAL_CM");
    qry_lib_db_stmt_set_elem_as_int(&stmt, 0, 12);
    qry_lib_db_stmt_set_col_name(&stmt, 1, "TOTAL_PM");
    qry_lib_db_stmt_set_elem_as_uint(&stmt, 1, 30);
    qry_lib_db_stmt_set_where_equal_str(&stmt, "NAME", "Sales");
    qry_lib_db_stmt_set_where_equal_ulong(&stmt, "TOTAL_M", 1000);
    qry_lib_db_stmt_set_where_equal_int(&stmt, "ID", id);
    code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

static void print_department(qry_lib_db_rowset_ *rowset) {
    char name[194];
    qry_lib_db_rowset_get_str(name, (uint32_t)sizeof name, rowset, 1, "(no name)");
    printf("%" PRIu32 " %s %" PRId32 " %" PRIu32 "\n", qry_lib_db_rowset_get_uint(rowset, 0, 0), name,
           qry_lib_db_rowset_get_int(rowset, 2, -1), qry_lib_db_rowset_get_ulong(rowset, 3, 0));
}

static uint32_t print_departments(void) {
    static const char *const columns[] = {"ID", "NAME", "TOTAL_L", "TOTAL_M"};
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset;
    uint32_t code;
    int32_t i;
    begin(&stmt, "department_db", QRY_LIB_DB_QUERY_TYPE_SELECT, "DEPT_TBL", 4);
    for (i = 0; i < 4; ++i) {
        qry_lib_db_stmt_set_col_name(&stmt, i, columns[i]);
    }
    qry_lib_db_stmt_set_where_phrase(&stmt, "ID > 0");
    qry_lib_db_stmt_set_orderby_phrase(&stmt, "NAME DESC");
    qry_lib_db_stmt_set_max_rows(&stmt, 1); /* has no effect: a result has every row */
    memset(&rowset, 0, sizeof rowset);
    qry_lib_db_rowset_init(&rowset);
    code = qry_lib_db_stmt_exec_query(&stmt, &rowset);
    printf("%u rows\n", (unsigned)qry_lib_db_rowset_get_row_num(&rowset));
    while (qry_lib_db_rowset_next(&rowset) == 1) {
        print_department(&rowset);
    }
    qry_lib_db_rowset_init_value(&rowset); /* the cursor is before the first row again */
    if (code == QRY_LIB_OK && qry_lib_db_rowset_next(&rowset) == 1) {
        print_department(&rowset);
    }
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

static uint32_t count(const char *sql, uint32_t *rows) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset = {0, NULL, -1};
    uint32_t code = qry_lib_db_get_stmt("department_db", &stmt);
    if (code == QRY_LIB_OK) {
        code = qry_lib_db_exec_query(&stmt, sql, &rowset);
    }
    *rows = qry_lib_db_rowset_next(&rowset) == 1 ? qry_lib_db_rowset_get_uint(&rowset, 0, 0) : 0;
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

static uint32_t run(const char *sql) {
    qry_lib_db_stmt_ stmt;
    uint32_t code = qry_lib_db_get_stmt("department_db", &stmt);
    if (code == QRY_LIB_OK) {
        code = qry_lib_db_exec(&stmt, sql);
    }
    qry_lib_db_stmt_term(&stmt);
    return code;
}

/* Connections and transactions exist in name only: these calls answer 0, and nothing is taken back. */
static uint32_t use_a_connection(void) {
    char source[256];
    char connection[256];
    uint32_t code = qry_lib_db_init_datasource(source, 0, 0, "department_db");
    code |= qry_lib_db_get_connection("department_db", 0, connection);
    code |= qry_lib_db_get_connection_keep("department_db", 0, connection);
    code |= qry_lib_db_get_connection_keep_start("department_db");
    code |= run("DELETE FROM DEPT_TBL WHERE ID = 2");
    code |= qry_lib_db_rollback();
    code |= qry_lib_db_commit();
    code |= qry_lib_db_disconnect(0);
    code |= qry_lib_db_disconnect_keep(0);
    code |= qry_lib_db_disconnect_keep_end();
    printf("%s\n", connection);
    return code;
}

int main(void) {
    uint32_t rows = 0;
    uint32_t code = insert_department(1, "Sales");
    code |= insert_department(2, "Purchasing");
    code |= set_meters(1);
    code |= print_departments();
    code |= use_a_connection();
    code |= count("SELECT COUNT(*) FROM DEPT_TBL WHERE TOTAL_CM = 12", &rows);
    printf("%" PRIu32 " left\n", rows);
    return code == QRY_LIB_OK && rows == 1 ? 0 : 1;
}
