// The tables that say what a chain of traces may look like, and the walk along a chain.
#include "fault/trace_chain.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include <qrylib/types.h>

namespace fault {

namespace {

constexpr int source_line = 0; // a point without a fixed number

struct point {
    const char *function;
    int line;
};

// Where the failure of each call is detected.
constexpr point alloc_points[] = {{"trim_space_front_rear", 2331},
                                  {"trim_space_front_rear", 2403},
                                  {"trim_space_all", 2278},
                                  {"divide_keyword", 1063},
                                  {"divide_two_keyword", 1145},
                                  {"divide_where_str", 1465},
                                  {"trim_single_q_str", 2485},
                                  {"trim_bracket_str", 2584},
                                  {"analyze_sql", 424},
                                  {"divide_select_reserve_str", 924},
                                  {"analyze_sql_select", 180},
                                  {"analyze_sql_select", 231},
                                  {"set_sort_str", 1597},
                                  {"analyze_sort", 2234},
                                  {"divide_operate", 1235},
                                  {"create_search_table_id", 1430},
                                  {"qry_lib_tb_alloc_mem", 690},
                                  {"sort_tbdb_table_id", 1243},
                                  {"sort_tbdb_table_id_internal", 1286},
                                  {"init_rowset", source_line},
                                  {"dsql_db_handle_add", source_line},
                                  {"qry_lib_vector_init", source_line},
                                  {"qry_lib_vector_expand_data", source_line}};
constexpr point create_mutex_points[] = {{"dsql_db_handle_add", source_line}};
constexpr point get_table_points[] = {{"create_primary_filter_key", 861},
                                      {"create_primary_filter_key_chk", 893},
                                      {"exec_select_proc", 436},
                                      {"sort_internal", 1343}};
constexpr point set_table_points[] = {{"set_tb_table", 1183}};
constexpr point init_table_points[] = {{"exec_delete", 680}};
constexpr point get_status_points[] = {{"qryLIBConvertTbRetcode", 199},
                                       {"qry_lib_get_doublecount_mode", 168}};
constexpr point create_list_points[] = {{"qry_lib_tb_create_list_table", 805}};
constexpr point set_pos_points[] = {{"qry_lib_tb_create_search_table_id", 519}};
constexpr point sort_points[] = {{"sort_internal", 1358}};
constexpr point mkdir_points[] = {{"qry_lib_write_data_version", 220}, {"qry_lib_check_data_version", 164}};
constexpr point remove_points[] = {{"qry_lib_check_data_version", 138}, {"qry_lib_check_data_version", 154}};
// A directory taken for present where it is missing is found out by the next step.
constexpr point exist_points[] = {{"qry_lib_write_data_version", 321},
                                  {"qry_lib_check_data_version", 267},
                                  {"qry_lib_check_data_version", 138},
                                  {"qry_lib_check_data_version", 154}};
constexpr point open_points[] = {{"qry_lib_write_data_version", 321},
                                 {"qry_lib_check_data_version", 321},
                                 {"qry_lib_check_data_version", 267}};
constexpr point read_points[] = {{"qry_lib_check_data_version", 276}};
constexpr point write_points[] = {{"qry_lib_write_data_version", 330}, {"qry_lib_check_data_version", 330}};
constexpr point close_points[] = {{"qry_lib_write_data_version", 338},
                                  {"qry_lib_check_data_version", 338},
                                  {"qry_lib_check_data_version", 284}};

struct point_list {
    const point *begin;
    const point *end;
};

template <std::size_t Num>
constexpr point_list list_of(const point (&points)[Num]) {
    return {points, points + Num};
}

// By call. A list value that cannot be read is noticed nowhere.
constexpr point_list first_points[] = {
    list_of(alloc_points),        list_of(create_mutex_points), list_of(create_mutex_points),
    list_of(create_mutex_points), list_of(get_table_points),    list_of(set_table_points),
    list_of(init_table_points),   list_of(get_status_points),   list_of(create_list_points),
    list_of(set_pos_points),      {nullptr, nullptr},           list_of(sort_points),
    list_of(create_mutex_points), list_of(create_mutex_points), list_of(exist_points),
    list_of(mkdir_points),        list_of(remove_points),       list_of(open_points),
    list_of(read_points),         list_of(write_points),        list_of(close_points)};
static_assert(std::size(first_points) == QRYHOST_CALL_NUM);

// Who may trace right behind whom: its caller, or where that is silent the caller's.
constexpr struct {
    const char *inner;
    const char *outer;
} callers[] = {
    {"analyze_param_select", "qry_lib_db_wrapper_stmt_exec_query"},
    {"analyze_sort", "set_sort_str"},
    {"analyze_sql", "qry_lib_db_wrapper_exec"},
    {"analyze_sql_select", "qry_lib_db_wrapper_exec_query"},
    {"analyze_sql_select_link", "qry_lib_db_wrapper_exec_query"},
    {"covert_rowset", "link_rowset"},
    {"create_filter_key", "exec_internal"},
    {"create_primary_filter_key", "create_filter_key"},
    {"create_primary_filter_key", "qry_lib_db_wrapper_stmt_exec"},
    {"create_primary_filter_key_chk", "create_primary_filter_key"},
    {"create_search_table_id", "exec_internal"},
    {"create_search_table_id", "exec_new_insert"},
    {"divide_keyword", "analyze_sort"},
    {"divide_keyword", "analyze_sql"},
    {"divide_keyword", "analyze_sql_select"},
    {"divide_keyword", "analyze_sql_select_link"},
    {"divide_keyword", "divide_operate"},
    {"divide_keyword", "divide_select_reserve_str"},
    {"divide_keyword", "divide_two_keyword"},
    {"divide_keyword", "set_filter_str"},
    {"divide_keyword", "set_link_filter_val"},
    {"divide_operate", "set_filter_str"},
    {"divide_select_reserve_str", "analyze_sql_select"},
    {"divide_two_keyword", "analyze_sql"},
    {"divide_two_keyword", "divide_select_reserve_str"},
    {"divide_where_str", "analyze_sql"},
    {"divide_where_str", "divide_select_reserve_str"},
    {"exec_delete", "qry_lib_db_wrapper_exec"},
    {"exec_delete", "qry_lib_db_wrapper_stmt_exec"},
    {"exec_internal", "qry_lib_db_wrapper_exec"},
    {"exec_internal", "qry_lib_db_wrapper_exec_query"},
    {"exec_internal", "qry_lib_db_wrapper_stmt_exec"},
    {"exec_internal", "qry_lib_db_wrapper_stmt_exec_query"},
    {"exec_new_insert", "qry_lib_db_wrapper_stmt_exec"},
    {"exec_select", "qry_lib_db_wrapper_exec_query"},
    {"exec_select", "qry_lib_db_wrapper_stmt_exec_query"},
    {"exec_select_proc", "exec_select"},
    {"exec_update", "qry_lib_db_wrapper_stmt_exec"},
    {"exec_update_insert", "qry_lib_db_wrapper_stmt_exec"},
    {"init_rowset", "covert_rowset"},
    {"init_rowset", "exec_select_proc"},
    {"init_rowset", "qry_lib_db_wrapper_exec_query"},
    {"init_rowset", "qry_lib_db_wrapper_stmt_exec_query"},
    {"link_rowset", "qry_lib_db_wrapper_exec_query"},
    {"qryLIBConvertTbRetcode", "qry_lib_get_doublecount_mode"},
    {"qry_lib_check_data_version", "qry_lib_check_data_version"},
    {"qry_lib_db_wrapper_exec_query", "qry_lib_db_wrapper_get_unused_id"},
    {"qry_lib_get_doublecount_mode", "qry_lib_judge_doublecount"},
    {"qry_lib_tb_alloc_mem", "qry_lib_tb_create_search_table_id"},
    {"qry_lib_tb_create_list_table", "qry_lib_tb_create_list_table"},
    {"qry_lib_tb_create_list_table", "qry_lib_tb_create_search_table_id"},
    {"qry_lib_tb_create_search_table_id", "create_search_table_id"},
    {"qry_lib_tb_create_search_table_id", "qry_lib_tb_create_search_table_id"},
    {"qry_lib_vector_expand_data", "qry_lib_vector_add_data"},
    {"qry_lib_vector_expand_data", "qry_lib_vector_swap_data"},
    {"qry_lib_write_data_version", "qry_lib_write_data_version"},
    {"set_filter_str", "analyze_param_select"},
    {"set_filter_str", "analyze_sql_select"},
    {"set_filter_str", "qry_lib_db_wrapper_exec"},
    {"set_filter_str", "qry_lib_db_wrapper_stmt_exec"},
    {"set_link_filter_cols", "analyze_sql_select_link"},
    {"set_link_filter_val", "set_link_filter_cols"},
    {"set_sort_str", "analyze_param_select"},
    {"set_sort_str", "analyze_sql_select"},
    {"set_tb_table", "exec_new_insert"},
    {"set_tb_table", "exec_update"},
    {"set_tb_table", "exec_update_insert"},
    {"sort_internal", "exec_select_proc"},
    {"sort_tbdb_table_id", "exec_select_proc"},
    {"sort_tbdb_table_id_internal", "exec_select_proc"},
    {"trim_bracket_str", "divide_operate"},
    {"trim_single_q_str", "divide_operate"},
    {"trim_space_all", "analyze_param_select"},
    {"trim_space_all", "divide_select_reserve_str"},
    {"trim_space_front_rear", "analyze_sort"},
    {"trim_space_front_rear", "analyze_sql"},
    {"trim_space_front_rear", "analyze_sql_select"},
    {"trim_space_front_rear", "analyze_sql_select_link"},
    {"trim_space_front_rear", "divide_operate"},
    {"trim_space_front_rear", "divide_select_reserve_str"},
    {"trim_space_front_rear", "divide_two_keyword"},
    {"trim_space_front_rear", "set_link_filter_cols"},
};

// Points that hand on another code than the one they show.
constexpr std::uint32_t carried = 0xFFFFFFFE; // the code as it came in
constexpr struct {
    point at;
    std::uint32_t handed_on;
} changed_codes[] = {
    {{"analyze_sql", 447}, QRY_LIB_NOT_ACCEPTED},
    {{"create_search_table_id", 1448}, carried},
    {{"qryLIBConvertTbRetcode", 199}, 2},
    {{"qry_lib_tb_create_list_table", 805}, carried},
    {{"qry_lib_vector_expand_data", source_line}, QRY_LIB_NO_MEMORY},
    {{"qry_lib_vector_init", source_line}, QRY_LIB_NO_MEMORY},
    {{"set_link_filter_val", 1923}, QRY_LIB_NOT_ACCEPTED},
    {{"set_link_filter_val", 1929}, QRY_LIB_NOT_ACCEPTED},
    {{"sort_internal", 1358}, QRY_LIB_NOT_ACCEPTED},
};

// Points that show a code of their own, whatever came in.
constexpr struct {
    point at;
    std::uint32_t code;
} own_codes[] = {
    {{"analyze_sql", source_line}, QRY_LIB_NO_MEMORY}, // CREATE INDEX could not be looked for
    {{"dsql_db_handle_add", source_line}, 0xFFFFFFFF}, // no memory for the cell or a node
    {{"init_rowset", source_line}, QRY_LIB_NO_MEMORY}, // whatever the partition answered
    {{"qry_lib_db_wrapper_exec_query", source_line}, QRY_LIB_ROWSET_NOT_CREATED}, // the answer to a COUNT
    {{"qry_lib_db_wrapper_stmt_exec_query", source_line}, QRY_LIB_ROWSET_NOT_CREATED},
    {{"set_link_filter_cols", 1831}, QRY_LIB_NOT_ACCEPTED}, // a part of a name could not be trimmed
};

// How the file store's codes come back.
constexpr struct {
    std::uint32_t platform;
    std::uint32_t library;
} file_codes[] = {{1, 5}, {4, 2}, {35, 3}, {36, 4}};
constexpr std::uint32_t other_file_code = 257;
constexpr std::uint32_t setting_refused = 1;

std::uint32_t as_reported(qryhost_call call, std::uint32_t platform_code) {
    if (call == QRYHOST_FILE_EXIST) {
        return other_file_code;
    }
    if (call == QRYHOST_GET_STATUS && platform_code == QRY_LIB_TABLE_ARGUMENT) {
        return setting_refused;
    }
    if (call < QRYHOST_FILE_EXIST) {
        return platform_code;
    }
    for (const auto &row : file_codes) {
        if (row.platform == platform_code) {
            return row.library;
        }
    }
    return other_file_code;
}

using fixed_points = std::map<std::pair<std::string, int>, std::string>; // code as the table has it
fixed_points fixed;
std::set<int> lines_of_sources;

const std::string *fixed_code(const test::return_trace &trace) {
    for (const char *name : {trace.function.c_str(), ""}) {
        const auto found = fixed.find({name, trace.line});
        if (found != fixed.end()) {
            return &found->second;
        }
    }
    return nullptr;
}

bool is_at(const test::return_trace &trace, const point &at) {
    return trace.function == at.function &&
           (at.line == source_line ? fixed_code(trace) == nullptr : trace.line == at.line);
}

bool is_first_point(const test::return_trace &trace, qryhost_call call) {
    const point_list &list = first_points[call];
    return list.begin == nullptr ||
           std::any_of(list.begin, list.end, [&](const point &at) { return is_at(trace, at); });
}

bool is_caller(const test::return_trace &inner, const test::return_trace &outer) {
    return std::any_of(std::begin(callers), std::end(callers), [&](const auto &row) {
        return inner.function == row.inner && outer.function == row.outer;
    });
}

bool shows_right_code(const test::return_trace &trace, std::uint32_t code_in) {
    const std::string *code = fixed_code(trace);
    if (code != nullptr && *code != "callee") {
        return trace.code == std::stoul(*code, nullptr, 0);
    }
    return trace.code == code_in ||
           std::any_of(std::begin(own_codes), std::end(own_codes),
                       [&](const auto &row) { return is_at(trace, row.at) && trace.code == row.code; });
}

std::uint32_t handed_on(const test::return_trace &trace, std::uint32_t code_in) {
    for (const auto &row : changed_codes) {
        if (is_at(trace, row.at)) {
            return row.handed_on == carried ? code_in : row.handed_on;
        }
    }
    return trace.code;
}

std::string text(const test::return_trace &trace) {
    std::ostringstream out;
    out << trace;
    return out.str();
}

struct recorded_trace {
    char function[64];
    int line;
    std::uint32_t code;
};
std::array<recorded_trace, 64> recorded;
std::size_t recorded_num = 0;

void record_trace(void *, std::uint32_t, std::uint32_t, std::uint32_t, const char *line) {
    if (recorded_num == recorded.size()) {
        return;
    }
    recorded_trace &trace = recorded[recorded_num];
    unsigned long code = 0;
    if (std::sscanf(line, "%63[^(]():[Return]:(%d) (0x%lX)", static_cast<char *>(trace.function), &trace.line,
                    &code) == 3) {
        trace.code = static_cast<std::uint32_t>(code);
        ++recorded_num;
    }
}

} // namespace

void watch_traces() {
    qryhost_set_trace_sink(record_trace, nullptr);
}

void forget_traces() {
    recorded_num = 0;
}

std::vector<test::return_trace> seen_traces() {
    std::vector<test::return_trace> result;
    for (std::size_t i = 0; i < recorded_num; ++i) {
        result.push_back(
            {static_cast<const char *>(recorded[i].function), recorded[i].line, recorded[i].code});
    }
    return result;
}

bool load_points(const std::string &table_path, const std::string &source_path) {
    std::ifstream table(table_path);
    std::string row;
    std::getline(table, row); // the heading
    while (std::getline(table, row)) {
        std::istringstream fields(row);
        std::string function, line, code, kind, cause;
        std::getline(fields, function, '\t');
        std::getline(fields, line, '\t');
        std::getline(fields, code, '\t');
        std::getline(fields, kind, '\t');
        std::getline(fields, cause);
        const bool any_name = cause.find("printed name is not fixed") != std::string::npos;
        fixed[{any_name ? "" : function, std::stoi(line)}] = code;
    }
    for (const auto &entry : std::filesystem::recursive_directory_iterator(source_path)) {
        std::ifstream file(entry.path());
        for (int number = 1; std::getline(file, row); ++number) {
            if (row.find("__LINE__") != std::string::npos) {
                lines_of_sources.insert(number);
            }
        }
    }
    return !fixed.empty() && !lines_of_sources.empty();
}

std::string unknown_point(const std::vector<test::return_trace> &chain) {
    for (const test::return_trace &trace : chain) {
        if (fixed_code(trace) == nullptr && lines_of_sources.count(trace.line) == 0) {
            return text(trace) + " is no trace point";
        }
    }
    return "";
}

std::string chain_fault(const std::vector<test::return_trace> &chain, qryhost_call call,
                        std::uint32_t platform_code, std::uint32_t code, const std::string &entry) {
    if (chain.empty()) {
        return "nothing was traced";
    }
    if (!is_first_point(chain.front(), call)) {
        return text(chain.front()) + " does not detect this failure";
    }
    std::uint32_t current = as_reported(call, platform_code);
    for (std::size_t i = 0; i < chain.size(); ++i) {
        if (!shows_right_code(chain[i], current)) {
            return text(chain[i]) + " shows a code that is not its own";
        }
        if (i > 0 && !is_caller(chain[i - 1], chain[i])) {
            return text(chain[i]) + " does not call " + text(chain[i - 1]);
        }
        // A list table that could not be created shows at the first record only.
        current = handed_on(chain[i], current);
    }
    if (chain.back().function != entry) {
        return text(chain.back()) + " is not the entry point";
    }
    if (current != code) {
        return text(chain.back()) + " is not the code returned";
    }
    return unknown_point(chain);
}

} // namespace fault
