// Statements that return no rows: CREATE INDEX, CREATE TABLE, DROP TABLE and DELETE FROM.
#include "parser/qry_lib_sql_parser.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

namespace {

constexpr char function_name[] = "analyze_sql";

std::uint32_t set_checked_table(std::string_view table, qry_lib_analyze_info &info) {
    if (table.size() > QRY_LIB_TABLE_NAME_MAX) {
        return refuse(function_name, __LINE__);
    }
    info.set_table(std::string(table).c_str());
    return 0;
}

} // namespace

std::uint32_t qry_lib_sql_parser::analyze_sql(const char *db_name, const char *sql,
                                              qry_lib_analyze_info &info) const {
    info.set_table("");
    // The blank in front lets a keyword match at the very start.
    pool_block scratch;
    if (scratch.take_text(sql, " ") != 0) {
        return trace_return(function_name, 424, QRY_LIB_NO_MEMORY);
    }
    return analyze_statement(db_name, scratch.as<char>(), info);
}

std::uint32_t qry_lib_sql_parser::analyze_statement(const char *db_name, const char *text,
                                                    qry_lib_analyze_info &info) const {
    text_halves parts;
    const found index = find_two_keyword(text, " CREATE ", " INDEX ", parts).outcome;
    if (index == found::no_memory) {
        // The text may be one without effect; what it holds besides must not be carried out.
        return trace_return(function_name, __LINE__, QRY_LIB_NO_MEMORY);
    }
    if (index == found::yes) {
        info.set_exec_type(QRY_LIB_DB_QUERY_TYPE_CREATE);
        return 0;
    }
    const found order = find_two_keyword(text, " ORDER ", " BY ", parts).outcome;
    if (order == found::yes || order == found::no_memory) {
        return refuse_showing_0(function_name, 447);
    }
    info.set_db_name(db_name);
    const found create = find_two_keyword(text, " CREATE ", " TABLE ", parts).outcome;
    if (create == found::repeated || create == found::no_memory) {
        return refuse(function_name, 459);
    }
    if (create == found::yes) {
        info.set_exec_type(QRY_LIB_DB_QUERY_TYPE_CREATE);
        return 0;
    }
    info.set_exec_type(QRY_LIB_DB_QUERY_TYPE_DELETE);
    const found drop = find_two_keyword(text, " DROP ", " TABLE ", parts).outcome;
    if (drop == found::repeated || drop == found::no_memory) {
        return refuse(function_name, 482);
    }
    return drop == found::yes ? analyze_drop(parts, info) : analyze_delete(text, info);
}

// `parts` are the text before DROP and the text after TABLE.
std::uint32_t qry_lib_sql_parser::analyze_drop(text_halves parts, qry_lib_analyze_info &info) const {
    if (trim_space_front_rear(trim_both, parts.before) != 0 || !parts.before.empty()) {
        return refuse(function_name, 493);
    }
    if (keyword_num(parts.after, " WHERE ") > 0) {
        return refuse_showing_0(function_name, 503);
    }
    if (!trimmed(parts.after)) {
        return refuse(function_name, 510);
    }
    return set_checked_table(parts.after, info);
}

std::uint32_t qry_lib_sql_parser::analyze_delete(std::string_view text, qry_lib_analyze_info &info) const {
    text_halves parts;
    const found from = find_two_keyword(text, " DELETE ", " FROM ", parts).outcome;
    if (from == found::repeated) {
        return refuse(function_name, 528);
    }
    if (from != found::yes) {
        return refuse(function_name, 533);
    }
    if (trim_space_front_rear(trim_both, parts.before) != 0 || !parts.before.empty()) {
        return refuse(function_name, 543);
    }
    text_halves clauses;
    const found where = find_where(parts.after, clauses).outcome;
    if (where == found::repeated || where == found::no_memory) {
        return refuse(function_name, 559);
    }
    if (where == found::yes) {
        const std::uint32_t code = set_checked_table(clauses.before, info);
        return code != 0 ? code : set_filter(clauses.after, info);
    }
    if (!trimmed(parts.after)) {
        return refuse(function_name, 579);
    }
    return set_checked_table(parts.after, info);
}

} // namespace norvane
