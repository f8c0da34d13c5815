// A statement as the library's parser understands it.
//
// The shell links the library's objects themselves, not the shared library: what it explains must come from
// the parser and the executer that run the statements, and the shared library does not show them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "parser/qry_lib_analyze_info.h"

namespace qrytext {

struct query_condition {
    std::string column;
    std::string value;
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    bool quoted;
};

struct query {
    QRY_LIB_DB_QUERY_TYPE type;
    std::vector<std::string> tables;
    std::vector<std::string> columns;
    std::vector<std::string> values; // one for each column of an INSERT or UPDATE
    std::vector<query_condition> conditions;
    std::string order_column;
    QRY_LIB_ODER_TYPE order;
};

// Copies an analyzed query's parts.
query describe(const norvane::qry_lib_analyze_info &info);

// 0, or the code with which the parser refuses the text. Throws syntax_error for an INSERT or UPDATE that the
// shell cannot read.
std::uint32_t analyze(const std::string &db_name, const std::string &sql,
                      norvane::qry_lib_analyze_info &info);

// Nothing for a text that is refused, whatever refuses it.
std::optional<query> read_query(const std::string &db_name, const std::string &sql);

} // namespace qrytext
