// The smallest id in a range that no row of a table carries.
#include <cinttypes>
#include <cstddef>
#include <cstdio>

#include "api/qry_lib_db_wrapper.h"
#include "util/trace.h"

using norvane::trace_return;

namespace {

constexpr std::size_t query_size = 256;
constexpr std::uint8_t kind_32_bits = 1;
constexpr std::uint8_t kind_16_bits = 2;
constexpr std::uint32_t id_unreadable = UINT32_MAX;

// The query's own statement and rowset, given back on every path.
struct query_records {
    qry_lib_db_stmt_ stmt = {};
    qry_lib_db_rowset_ rowset = {-1, nullptr, 0};

    query_records() = default;
    query_records(const query_records &) = delete;
    query_records &operator=(const query_records &) = delete;
    ~query_records() {
        qry_lib_db_wrapper_rowset_term(&rowset);
        qry_lib_db_wrapper_stmt_term(&stmt);
    }
};

bool within_kind(std::uint8_t kind, std::uint32_t max_id) {
    return (kind == kind_32_bits && max_id <= INT32_MAX) || (kind == kind_16_bits && max_id <= INT16_MAX);
}

bool is_complete(const qry_lib_db_unused_id_param_ *param) {
    return param != nullptr && param->db_name != nullptr && param->table_name != nullptr &&
           param->col_name != nullptr;
}

// Ids are printed as signed numbers, as the device does. False when the text does not fit.
bool format_query(char (&sql)[query_size], const qry_lib_db_unused_id_param_ &param) {
    const char *column = param.col_name;
    const int length = std::snprintf(
        sql, sizeof sql, "SELECT %s FROM %s WHERE %s >= %" PRId32 " AND %s <= %" PRId32 " ORDER BY %s ASC",
        column, param.table_name, column, static_cast<std::int32_t>(param.min_id), column,
        static_cast<std::int32_t>(param.max_id), column);
    return length >= 0 && static_cast<std::size_t>(length) < sizeof sql;
}

// Walks the ids, which are unique and ascending, to the first that the candidate has not caught up with.
std::uint32_t first_gap(qry_lib_db_rowset_ *rowset, std::uint32_t min_id) {
    std::uint32_t candidate = min_id;
    while (qry_lib_db_wrapper_rowset_next(rowset) != 0 &&
           candidate >= qry_lib_db_wrapper_rowset_get_ulong(rowset, 0, id_unreadable)) {
        ++candidate;
    }
    return candidate;
}

// A step's code, and the line of the step when it failed.
struct outcome {
    std::uint32_t code;
    int line;
};

// The statement and the rowset are given back before a failure is traced.
outcome find_unused_id(const qry_lib_db_unused_id_param_ &param, std::uint32_t &id) {
    query_records query;
    if (const auto code = qry_lib_db_wrapper_get_stmt(param.db_name, &query.stmt); code != 0) {
        return {code, __LINE__};
    }
    char sql[query_size] = {};
    if (!format_query(sql, param)) {
        return {QRY_LIB_FAILURE, __LINE__};
    }
    if (const auto code = qry_lib_db_wrapper_exec_query(&query.stmt, sql, &query.rowset); code != 0) {
        return {code, __LINE__};
    }
    const std::uint16_t row_num = qry_lib_db_wrapper_rowset_get_row_num(&query.rowset);
    if (row_num == 0) {
        id = param.min_id;
        return {0, 0};
    }
    if (row_num >= param.max_count) {
        return {QRY_LIB_NO_FREE_ENTRY, __LINE__};
    }
    const std::uint32_t candidate = first_gap(&query.rowset, param.min_id);
    if (candidate > param.max_id) {
        return {QRY_LIB_NO_FREE_ENTRY, __LINE__};
    }
    id = candidate;
    return {0, 0};
}

} // namespace

extern "C" {

std::uint32_t qry_lib_db_wrapper_get_unused_id(const qry_lib_db_unused_id_param_ *param,
                                               std::uint32_t *id_out) {
    if (!is_complete(param) || id_out == nullptr || !within_kind(param->id_kind, param->max_id)) {
        return trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    const outcome found = find_unused_id(*param, *id_out);
    return found.code == 0 ? 0 : trace_return(__func__, found.line, found.code);
}

} // extern "C"
