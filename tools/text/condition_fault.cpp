// Every comparison is handed to the parser alone, until one is refused.
#include "tools/text/condition_fault.h"

#include <algorithm>

#include "parser/qry_lib_sql_parser.h"

namespace qrytext {

namespace {

constexpr std::string_view where_word = " WHERE ";
constexpr std::string_view order_word = " ORDER ";

bool is_refused(const std::string &condition) {
    norvane::qry_lib_analyze_info info;
    return norvane::qry_lib_sql_parser().divide_operate(condition.c_str(), QRY_LIB_JOIN_TYPE_AND, info) != 0;
}

} // namespace

std::vector<text_span> conditions_of(const std::string &sql) {
    const std::size_t where = sql.find(where_word);
    if (where == std::string_view::npos) {
        return {};
    }
    const std::size_t begin = where + where_word.size();
    const std::size_t end = std::max(std::min(sql.find(order_word, where), sql.size()), begin);
    return comparisons_of(sql, {begin, end - begin});
}

std::optional<text_span> find_condition_fault(const std::string &sql) {
    for (const text_span &condition : conditions_of(sql)) {
        if (is_refused(sql.substr(condition.place, condition.length))) {
            return condition;
        }
    }
    return std::nullopt;
}

} // namespace qrytext
