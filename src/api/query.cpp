// Running queries: analysis, execution, and for several tables the join.
#include <cstring>

#include "api/qry_lib_db_rowset_lib.h"
#include "api/qry_lib_db_wrapper.h"
#include "exec/qry_lib_db_executer.h"
#include "link/qry_lib_db_rowset_link_lib.h"
#include "parser/qry_lib_sql_parser.h"
#include "util/bounded_text.h"
#include "util/trace.h"

using norvane::empty_rowset;
using norvane::fits;
using norvane::qry_lib_analyze_info;
using norvane::qry_lib_analyze_link_info;
using norvane::qry_lib_db_executer;
using norvane::qry_lib_db_rowset_lib;
using norvane::qry_lib_db_rowset_link_lib;
using norvane::qry_lib_sql_parser;
using norvane::rowset_guard;
using norvane::trace_return;

namespace {

bool names_database(const qry_lib_db_stmt_ *stmt) {
    return stmt != nullptr && fits(stmt->db_name, QRY_LIB_DB_NAME_MAX);
}

std::uint32_t run(const qry_lib_analyze_info &info, qry_lib_db_rowset_ &rowset) {
    return static_cast<std::uint32_t>(qry_lib_db_executer().exec(info, rowset));
}

// Runs each table's query into a rowset of its own, which the link model takes over. `info` holds one query
// at a time: the statement's own is of no more use once it was split.
std::uint32_t run_parts(qry_lib_analyze_info &info, qry_lib_analyze_link_info &link_info) {
    for (std::uint16_t i = 0; i < link_info.get_analyze_info_num(); ++i) {
        qry_lib_db_rowset_ part = empty_rowset;
        rowset_guard guard(part);
        info.all_clear();
        std::uint32_t code = link_info.get_analyze_info(i, info);
        if (code == 0) {
            code = run(info, part);
        }
        if (code != 0) {
            return code;
        }
        link_info.add_rowset(part);
        guard.release();
    }
    return 0;
}

std::uint32_t run_linked(const char *function, qry_lib_analyze_info &info, qry_lib_db_rowset_ &target) {
    qry_lib_analyze_link_info link_info;
    if (const std::uint32_t code = qry_lib_sql_parser().analyze_sql_select_link(info, link_info); code != 0) {
        return trace_return(function, __LINE__, code);
    }
    if (link_info.get_analyze_info_num() != info.get_table_num()) {
        return trace_return(function, __LINE__, QRY_LIB_FAILURE);
    }
    std::uint32_t code = run_parts(info, link_info);
    if (code == 0) {
        code = static_cast<std::uint32_t>(qry_lib_db_rowset_link_lib().link_rowset(link_info, target));
    }
    link_info.all_clear();
    return code == 0 ? 0 : trace_return(function, __LINE__, code);
}

// The answer to a COUNT: one row, one column, the number of rows found.
std::uint32_t store_count(const char *function, std::uint16_t row_num, qry_lib_db_rowset_ &rowset) {
    const qry_lib_db_rowset_lib rows;
    QRY_LIB_COLUMN column{};
    if (rows.init_rowset(1, 1, rowset) != 0) {
        return trace_return(function, __LINE__, QRY_LIB_ROWSET_NOT_CREATED);
    }
    rowset_guard unfinished(rowset);
    column.value.uint_value = row_num;
    column.type = QRY_LIB_COLUMN_TYPE_UINT;
    if (rows.next_record_index(rowset) == 0 || rows.set_col(rowset, 0, column) != 0) {
        return trace_return(function, __LINE__, QRY_LIB_ROWSET_NOT_FILLED);
    }
    unfinished.release();
    rows.first_record_index(rowset);
    return 0;
}

// Runs an analyzed query that returns rows. A COUNT's rows go to a rowset of the call's own.
template <typename Runner>
std::uint32_t run_into(const char *function, qry_lib_analyze_info &info, qry_lib_db_rowset_ &rowset,
                       Runner runner) {
    if (info.get_exec_type() != QRY_LIB_DB_QUERY_TYPE_COUNT) {
        return runner(function, info, rowset);
    }
    qry_lib_db_rowset_ counted = empty_rowset;
    const rowset_guard guard(counted);
    if (const std::uint32_t code = runner(function, info, counted); code != 0) {
        return code;
    }
    return store_count(function, qry_lib_db_rowset_lib().get_record_num(counted), rowset);
}

std::uint32_t run_single(const char *function, qry_lib_analyze_info &info, qry_lib_db_rowset_ &target) {
    const std::uint32_t code = run(info, target);
    return code == 0 ? 0 : trace_return(function, __LINE__, code);
}

std::uint32_t copy_name(const char *function, const char *name, char *out) {
    if (name == nullptr || out == nullptr || !fits(name, QRY_LIB_DB_NAME_MAX)) {
        return trace_return(function, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    norvane::copy_bounded<QRY_LIB_DB_NAME_MAX>(out, name);
    return 0;
}

} // namespace

extern "C" {

std::uint32_t qry_lib_db_wrapper_exec_query(qry_lib_db_stmt_ *stmt, const char *sql,
                                            qry_lib_db_rowset_ *rowset) {
    if (!names_database(stmt) || sql == nullptr || rowset == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    qry_lib_analyze_info info;
    if (const std::uint32_t code = qry_lib_sql_parser().analyze_sql_select(stmt->db_name, sql, info);
        code != 0) {
        return trace_return(__func__, __LINE__, code);
    }
    return run_into(__func__, info, *rowset, info.get_table_num() == 1 ? run_single : run_linked);
}

std::uint32_t qry_lib_db_wrapper_exec(qry_lib_db_stmt_ *stmt, const char *sql) {
    if (!names_database(stmt) || sql == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    qry_lib_analyze_info info;
    if (const std::uint32_t code = qry_lib_sql_parser().analyze_sql(stmt->db_name, sql, info); code != 0) {
        return trace_return(__func__, __LINE__, code);
    }
    const auto code = static_cast<std::uint32_t>(qry_lib_db_executer().exec(info));
    return code == 0 ? 0 : trace_return(__func__, __LINE__, code);
}

std::uint32_t qry_lib_db_wrapper_stmt_exec_query(qry_lib_db_stmt_ *stmt, qry_lib_db_rowset_ *rowset) {
    if (!names_database(stmt) || rowset == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    qry_lib_analyze_info info;
    if (const std::uint32_t code = qry_lib_sql_parser().analyze_param(stmt, info); code != 0) {
        return trace_return(__func__, __LINE__, code);
    }
    return run_into(__func__, info, *rowset, run_single);
}

std::uint32_t qry_lib_db_wrapper_stmt_exec(qry_lib_db_stmt_ *stmt) {
    if (!names_database(stmt)) {
        return trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    qry_lib_analyze_info info;
    if (const std::uint32_t code = qry_lib_sql_parser().analyze_param(stmt, info); code != 0) {
        return trace_return(__func__, __LINE__, code);
    }
    const auto code = static_cast<std::uint32_t>(qry_lib_db_executer().exec(info));
    return code == 0 ? 0 : trace_return(__func__, __LINE__, code);
}

std::uint32_t qry_lib_db_wrapper_init_datasource(char *out, std::uint32_t, std::uint32_t, const char *name) {
    return copy_name(__func__, name, out);
}

std::uint32_t qry_lib_db_wrapper_get_connection(const char *db_name, std::uint32_t, char *out) {
    return copy_name(__func__, db_name, out);
}

std::uint32_t qry_lib_db_wrapper_get_connection_keep(const char *db_name, std::uint32_t, char *out) {
    return copy_name(__func__, db_name, out);
}

std::uint32_t qry_lib_db_wrapper_get_connection_keep_start(const char *db_name) {
    char discarded[QRY_LIB_DB_NAME_MAX + 1];
    return qry_lib_db_wrapper_get_connection(db_name, 0, discarded);
}

std::uint32_t qry_lib_db_wrapper_disconnect(std::uint32_t) {
    return 0;
}

std::uint32_t qry_lib_db_wrapper_disconnect_keep(std::uint32_t) {
    return 0;
}

std::uint32_t qry_lib_db_wrapper_disconnect_keep_end(void) {
    return 0;
}

std::uint32_t qry_lib_db_wrapper_commit(void) {
    return 0;
}

std::uint32_t qry_lib_db_wrapper_rollback(void) {
    return 0;
}

} // extern "C"
