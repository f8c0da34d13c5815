// Plain search for the keywords, as in the library's parser.
#include "tools/text/clauses.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "tools/text/engine.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

struct verb_kind {
    std::string_view verb;
    std::string_view kind;
};

constexpr verb_kind verb_kinds[] = {{"SELECT", "select"}, {"INSERT", "insert"}, {"UPDATE", "update"},
                                    {"DELETE", "delete"}, {"DROP", "drop"},     {"CREATE", "create"}};

constexpr text_span nothing = {0, 0};
constexpr std::string_view where_word = " WHERE ";

text_span without_blanks(std::string_view text, std::size_t begin, std::size_t end) {
    while (begin < end && text[begin] == ' ') {
        ++begin;
    }
    while (end > begin && text[end - 1] == ' ') {
        --end;
    }
    return {begin, end - begin};
}

// Both sides of WHERE must hold something, or it is no keyword.
text_span condition_in(std::string_view text, std::size_t begin, std::size_t end) {
    const std::size_t where = text.substr(0, end).find(where_word, begin);
    if (where == std::string_view::npos || without_blanks(text, begin, where).length == 0) {
        return nothing;
    }
    return without_blanks(text, where + where_word.size(), end);
}

// Where the words of "ORDER BY" begin and end; both the text's end where they are not there.
struct word_pair {
    std::size_t begin;
    std::size_t end;
};

word_pair find_order_by(std::string_view text, std::size_t from) {
    constexpr std::string_view order_word = " ORDER ";
    constexpr std::string_view by_word = " BY ";
    const std::size_t order = text.find(order_word, from);
    if (order == std::string_view::npos) {
        return {text.size(), text.size()};
    }
    const std::size_t behind = order + order_word.size();
    const std::size_t by = text.find(by_word, behind - 1); // the blank may be both words' own
    const bool adjacent = by != std::string_view::npos && without_blanks(text, behind - 1, by).length == 0;
    return adjacent ? word_pair{order, by + by_word.size()} : word_pair{text.size(), text.size()};
}

clauses select_clauses(const std::string &sql) {
    constexpr std::string_view select_word = "SELECT ";
    constexpr std::string_view from_word = " FROM ";
    const std::size_t columns = sql.find(select_word);
    const std::size_t from = columns == std::string::npos ? columns : sql.find(from_word, columns);
    if (from == std::string::npos) {
        return {nothing, nothing, nothing, false};
    }
    const std::size_t tables = from + from_word.size() - 1; // a keyword may begin with the blank behind FROM
    const word_pair order = find_order_by(sql, tables);
    return {without_blanks(sql, std::min(columns + select_word.size(), from), from),
            condition_in(sql, tables, order.begin), without_blanks(sql, order.end, sql.size()),
            order.begin < sql.size()};
}

text_span update_condition(const std::string &sql) {
    const write_statement written = parse_write_statement(sql);
    return written.where.empty() ? nothing : text_span{written.where_place, written.where.size()};
}

} // namespace

clauses clauses_of(const std::string &sql) {
    switch (kind_of(sql)) {
    case statement_kind::select:
        return select_clauses(sql);
    case statement_kind::write_record:
        return {nothing, update_condition(sql), nothing, false};
    default:
        return {nothing, condition_in(sql, 0, sql.size()), nothing, false};
    }
}

std::vector<text_span> comparisons_of(const std::string &sql, text_span condition) {
    const std::string_view text = std::string_view(sql).substr(0, condition.place + condition.length);
    const std::string_view join =
        text.find(" AND ", condition.place) != std::string_view::npos ? " AND " : " OR ";
    std::vector<text_span> comparisons;
    for (std::size_t begin = condition.place; condition.length > 0 && begin <= text.size();) {
        const std::size_t stop = std::min(text.find(join, begin), text.size());
        comparisons.push_back(without_blanks(text, begin, stop));
        begin = stop == text.size() ? stop + 1 : stop + join.size();
    }
    return comparisons;
}

std::string kind_name(const std::string &sql) {
    const std::string_view text = trim(sql);
    const auto *row = std::find_if(std::begin(verb_kinds), std::end(verb_kinds), [&](const verb_kind &known) {
        return text.substr(0, known.verb.size()) == known.verb &&
               text.substr(known.verb.size()).substr(0, 1).find_first_not_of(' ') == std::string_view::npos;
    });
    if (row == std::end(verb_kinds)) {
        return "unknown";
    }
    if (row->kind != "select") {
        return std::string(row->kind);
    }
    std::string list(text.substr(0, text.find(" FROM ")));
    list.erase(std::remove(list.begin(), list.end(), ' '), list.end());
    return list.find("COUNT(*)") == std::string::npos ? "select" : "count";
}

std::vector<text_span> items_of(const std::string &sql, text_span list) {
    const std::size_t end = list.place + list.length;
    std::vector<text_span> items;
    for (std::size_t begin = list.place; begin <= end;) {
        const std::size_t comma = std::min(sql.find(',', begin), end);
        items.push_back(without_blanks(sql, begin, comma));
        begin = comma + 1;
    }
    return items;
}

bool takes_every_record(const std::string &sql) {
    const std::string kind = kind_name(sql);
    if (kind == "drop") {
        return true;
    }
    try {
        return (kind == "delete" || kind == "update") && clauses_of(sql).condition.length == 0;
    } catch (const syntax_error &) {
        return false;
    }
}

} // namespace qrytext
