// Every comparison is handed to the parser alone, until one is refused.
#include "tools/text/condition_fault.h"

#include <algorithm>

#include "parser/qry_lib_sql_parser.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

constexpr std::string_view where_word = " WHERE ";
constexpr std::string_view order_word = " ORDER ";

text_span without_blanks(std::string_view text, std::size_t begin, std::size_t end) {
    while (begin < end && text[begin] == ' ') {
        ++begin;
    }
    while (end > begin && text[end - 1] == ' ') {
        --end;
    }
    return {begin, end - begin};
}

bool is_refused(const std::string &condition) {
    norvane::qry_lib_analyze_info info;
    return norvane::qry_lib_sql_parser().divide_operate(condition.c_str(), QRY_LIB_JOIN_TYPE_AND, info) != 0;
}

} // namespace

std::vector<text_span> conditions_of(std::string_view sql) {
    const std::size_t where = sql.find(where_word);
    if (where == std::string_view::npos) {
        return {};
    }
    const std::size_t end = std::min(sql.find(order_word, where), sql.size());
    const std::string_view join = sql.find(" OR ", where) < end ? " OR " : " AND ";
    std::vector<text_span> conditions;
    for (std::size_t begin = where + where_word.size(); begin <= end;) {
        const std::size_t stop = std::min(sql.find(join, begin), end);
        conditions.push_back(without_blanks(sql, begin, stop));
        begin = stop == end ? end + 1 : stop + join.size();
    }
    return conditions;
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
