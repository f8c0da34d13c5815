// Every comparison is handed to the parser alone, until one is refused.
#include "tools/qrysh/condition_fault.h"

#include <algorithm>

#include "parser/qry_lib_sql_parser.h"
#include "tools/qrysh/text.h"

namespace qrysh {

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

// Where a rule is about one sign of the comparison, that sign; otherwise all of it.
text_span narrow(const std::string &sql, text_span condition, int line) {
    const std::string_view text = std::string_view(sql).substr(condition.place, condition.length);
    const std::size_t equal_signs = text.find("==");
    const std::size_t quote = text.find('\'');
    if (line == 1257 && equal_signs != std::string_view::npos) {
        return {condition.place + equal_signs, 2};
    }
    if ((line == 1408 || line == 1337 || line == 1377) && quote != std::string_view::npos) {
        return {condition.place + quote, condition.length - quote};
    }
    if (const std::size_t in = text.find(" IN"); line == 1315 && in != std::string_view::npos) {
        return {condition.place + in + 1,
                text.substr(in + 1, 6) == "INLIKE" ? std::size_t{6} : std::size_t{2}};
    }
    if (line == 1300) {
        return {condition.place + condition.length, 0};
    }
    return condition;
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

std::optional<finding> find_condition_fault(const std::string &sql, int line, std::string_view sentence) {
    for (const text_span &condition : conditions_of(sql)) {
        if (is_refused(sql.substr(condition.place, condition.length))) {
            const text_span fault = narrow(sql, condition, line);
            return finding{fault.place, fault.length, std::string(sentence)};
        }
    }
    return std::nullopt;
}

} // namespace qrysh
