// Prints what each kind of query takes from the memory partition at its peak, over a full table of
// departments: its blocks and the bytes asked for. The partition's two calls are this program's own, which
// the library then uses.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>

#include <qrylib/qrylib.h>

#include "platform/os.h"

namespace {

struct partition {
    std::unordered_map<void *, std::uint32_t> blocks;
    std::uint64_t bytes = 0;
    std::size_t peak_blocks = 0;
    std::uint64_t peak_bytes = 0;

    void start_measuring() {
        peak_blocks = blocks.size();
        peak_bytes = bytes;
    }
};

partition &pool() {
    static partition the_partition;
    return the_partition;
}

} // namespace

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t, void **block, std::uint32_t size) {
    *block = std::malloc(size);
    if (*block == nullptr) {
        return 1;
    }
    partition &p = pool();
    p.blocks[*block] = size;
    p.bytes += size;
    p.peak_blocks = std::max(p.peak_blocks, p.blocks.size());
    p.peak_bytes = std::max(p.peak_bytes, p.bytes);
    return 0;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t, void *block) {
    partition &p = pool();
    const auto found = p.blocks.find(block);
    if (found == p.blocks.end()) {
        return 1;
    }
    p.bytes -= found->second;
    p.blocks.erase(found);
    std::free(block);
    return 0;
}

} // extern "C"

namespace {

bool all_good = true;

// Runs one query between an empty and an empty partition and prints its line.
template <typename Query>
void measure(const char *kind, Query query) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset = {};
    qry_lib_db_rowset_init(&rowset);
    qry_lib_db_get_stmt("department_db", &stmt);
    pool().start_measuring();
    const std::uint32_t code = query(stmt, rowset);
    const unsigned rows = qry_lib_db_rowset_get_row_num(&rowset);
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    if (code != QRY_LIB_OK || !pool().blocks.empty()) {
        std::fprintf(stderr, "%s: 0x%04lX, %lu blocks left\n", kind, static_cast<unsigned long>(code),
                     static_cast<unsigned long>(pool().blocks.size()));
        all_good = false;
    }
    std::printf("| %s | %u | %lu | %llu |\n", kind, rows, static_cast<unsigned long>(pool().peak_blocks),
                static_cast<unsigned long long>(pool().peak_bytes));
}

void measure_text(const char *kind, const char *sql) {
    measure(kind, [sql](qry_lib_db_stmt_ &stmt, qry_lib_db_rowset_ &rowset) {
        return std::strncmp(sql, "SELECT", 6) == 0 ? qry_lib_db_exec_query(&stmt, sql, &rowset)
                                                   : qry_lib_db_exec(&stmt, sql);
    });
}

void set_department(qry_lib_db_stmt_ &stmt, QRY_LIB_DB_QUERY_TYPE type, std::uint16_t id, const char *name) {
    qry_lib_db_stmt_set_exec_type(&stmt, type);
    qry_lib_db_stmt_set_table_name(&stmt, "DEPT_TBL");
    qry_lib_db_stmt_set_col_num(&stmt, 2);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "ID");
    qry_lib_db_stmt_set_elem_as_ushort(&stmt, 0, id);
    qry_lib_db_stmt_set_col_name(&stmt, 1, "NAME");
    qry_lib_db_stmt_set_elem_as_str(&stmt, 1, name);
}

bool insert_department(std::uint16_t id) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt("department_db", &stmt);
    set_department(stmt, QRY_LIB_DB_QUERY_TYPE_INSERT, id, ("Department " + std::to_string(id)).c_str());
    const std::uint32_t code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code == QRY_LIB_OK;
}

// Every edit counter belongs to department 7, so that a join has rows.
bool fill_edit_counters() {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt("department_db", &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_INSERT);
    qry_lib_db_stmt_set_table_name(&stmt, "EDIT_CNT_TBL");
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_col_name(&stmt, 0, "ID");
    qry_lib_db_stmt_set_elem_as_ulong(&stmt, 0, 7);
    const std::uint32_t code = qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
    return code == QRY_LIB_OK;
}

// Leaves one record free, which the measured INSERT takes.
bool fill_departments() {
    std::uint16_t capacity = 0;
    bool filled = qry_lib_catalog_capacity("department_db", "DEPT_TBL", &capacity) == QRY_LIB_OK;
    for (std::uint16_t id = 1; filled && id < capacity; ++id) {
        filled = insert_department(id);
    }
    return filled;
}

void measure_records() {
    measure("INSERT, a record of 2 columns", [](qry_lib_db_stmt_ &stmt, qry_lib_db_rowset_ &) {
        set_department(stmt, QRY_LIB_DB_QUERY_TYPE_INSERT, 30000, "Last");
        return qry_lib_db_stmt_exec(&stmt);
    });
    measure("UPDATE, a record of 2 columns", [](qry_lib_db_stmt_ &stmt, qry_lib_db_rowset_ &) {
        set_department(stmt, QRY_LIB_DB_QUERY_TYPE_UPDATE, 30000, "Changed");
        qry_lib_db_stmt_set_where_phrase(&stmt, "ID = 30000");
        return qry_lib_db_stmt_exec(&stmt);
    });
    measure("SELECT, a record of 2 columns", [](qry_lib_db_stmt_ &stmt, qry_lib_db_rowset_ &rowset) {
        set_department(stmt, QRY_LIB_DB_QUERY_TYPE_SELECT, 0, "");
        qry_lib_db_stmt_set_where_phrase(&stmt, "ID = 30000");
        return qry_lib_db_stmt_exec_query(&stmt, &rowset);
    });
    measure("unused id", [](qry_lib_db_stmt_ &, qry_lib_db_rowset_ &) {
        const qry_lib_db_unused_id_param_ param = {"department_db", "DEPT_TBL", "ID", 1, 32767, 32767, 2};
        std::uint32_t id = 0;
        return qry_lib_db_get_unused_id(&param, &id);
    });
}

} // namespace

int main() {
    if (!fill_departments() || !fill_edit_counters()) {
        std::fputs("the tables could not be filled\n", stderr);
        return 1;
    }
    std::puts("| query | rows | blocks | bytes |\n|---|---|---|---|");
    measure_records();
    measure_text("SELECT 1 row by its key", "SELECT ID, NAME FROM DEPT_TBL WHERE ID = 7");
    measure_text("SELECT with LIKE", "SELECT ID, NAME FROM DEPT_TBL WHERE NAME LIKE 'Department 1%'");
    measure_text("SELECT every row, 1 column", "SELECT ID FROM DEPT_TBL");
    measure_text("SELECT every row, 2 columns", "SELECT ID, NAME FROM DEPT_TBL");
    measure_text("SELECT every row, ORDER BY", "SELECT ID, NAME FROM DEPT_TBL ORDER BY NAME");
    measure_text("SELECT COUNT(*) of every row", "SELECT COUNT(*) FROM DEPT_TBL");
    measure_text("SELECT over 2 tables", "SELECT DEPT_TBL.ID, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL "
                                         "WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID");
    measure_text("DELETE 1 row by its key", "DELETE FROM DEPT_TBL WHERE ID = 7");
    measure_text("DELETE every row", "DELETE FROM DEPT_TBL");
    return all_good ? 0 : 1;
}
