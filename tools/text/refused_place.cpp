// From the trace points of a refusal to the place in the text. The fixed points tell which rule was broken;
// what broke it is found by looking for it as the parser does: as plain text, from left to right.
#include <algorithm>
#include <iterator>
#include <vector>

#include <fmt/format.h>

#include "tools/text/condition_fault.h"
#include "tools/text/diagnosis.h"
#include "tools/text/foreign_words.h"
#include "tools/text/near_match.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

struct refusal {
    std::string_view function;
    int line;
    std::optional<finding> (*locate)(const std::string &sql, const refusal &row);
    std::string_view word; // the keyword that the rule is about
    std::string_view sentence;
    std::string_view hint = {};

    finding at(std::size_t place, std::size_t length) const {
        return {place, length, std::string(sentence), std::string(hint)};
    }
};

// Where the keyword stands, as the parser sees it: between blanks, or at the very start.
std::vector<std::size_t> places_of(const std::string &sql, std::string_view word) {
    const std::string text = ' ' + sql;
    const std::string keyword = fmt::format(" {} ", word);
    std::vector<std::size_t> places;
    for (std::size_t at = text.find(keyword); at != std::string::npos;
         at = text.find(keyword, at + keyword.size())) {
        places.push_back(at); // the blank in front makes up for the one that was put there
    }
    return places;
}

std::optional<finding> not_in_capitals(const std::string &sql, std::string_view word) {
    const std::optional<std::size_t> place = find_word(in_capitals(sql), word);
    if (!place || sql.compare(*place, word.size(), word) == 0) {
        return std::nullopt;
    }
    const advice found = write_in_capitals(word);
    return finding{*place, word.size(), found.sentence, found.hint};
}

// The word with the keyword's letters in another order: FORM for FROM.
std::optional<finding> misspelt(const std::string &sql, std::string_view keyword) {
    std::string letters(keyword);
    std::sort(letters.begin(), letters.end());
    for (std::size_t begin = 0; begin < sql.size();) {
        const std::size_t end = std::min(sql.find(' ', begin), sql.size());
        std::string word = in_capitals(std::string_view(sql).substr(begin, end - begin));
        std::sort(word.begin(), word.end());
        if (word == letters) {
            const std::string_view written = std::string_view(sql).substr(begin, end - begin);
            return finding{begin, end - begin,
                           fmt::format("expected {}, not {}", keyword, printable(written)),
                           fmt::format("write {}", keyword)};
        }
        begin = end + 1;
    }
    return std::nullopt;
}

// The keyword must stand once.
std::optional<finding> find_repeated(const std::string &sql, const refusal &row) {
    const std::vector<std::size_t> places = places_of(sql, row.word);
    if (places.size() > 1) {
        return finding{places[1], row.word.size(), fmt::format("{} is repeated", row.word),
                       fmt::format("write {} once", row.word)};
    }
    if (!places.empty()) {
        return std::nullopt;
    }
    if (std::optional<finding> lower = not_in_capitals(sql, row.word)) {
        return lower;
    }
    if (std::optional<finding> word = misspelt(sql, row.word)) {
        return word;
    }
    return finding{sql.size(), 0, fmt::format("expected {}", row.word),
                   fmt::format("write {} once, between blanks", row.word)};
}

constexpr std::string_view expected_table = "expected a table";
constexpr std::string_view name_table = "write FROM TABLE";

// FROM right behind SELECT shares its blank, and one at the very end has none behind it.
std::optional<finding> at_from(const std::string &sql, const refusal &row) {
    constexpr std::string_view without_columns = "SELECT FROM ";
    if (const std::size_t place = sql.find(without_columns); place != std::string::npos) {
        return finding{place + without_columns.size() - 1 - row.word.size(), row.word.size(),
                       "expected columns before FROM", "write COLUMN, COLUMN or COUNT(*)"};
    }
    const std::string_view text = trim(sql);
    const bool is_last =
        text.size() > row.word.size() && text.substr(text.size() - row.word.size() - 1) == " FROM";
    return is_last ? finding{sql.size(), 0, std::string(expected_table), std::string(name_table)}
                   : find_repeated(sql, row);
}

std::optional<finding> at_keyword(const std::string &sql, const refusal &row) {
    const std::size_t place = sql.find(row.word);
    if (place == std::string::npos) {
        return std::nullopt;
    }
    return row.at(place, row.word.size());
}

std::optional<finding> before_keyword(const std::string &sql, const refusal &row) {
    const std::vector<std::size_t> places = places_of(sql, row.word);
    const std::size_t first = std::min(sql.find_first_not_of(' '), sql.size());
    const std::size_t end = places.empty() ? sql.size() : std::max(places[0], first + 1) - 1;
    return row.at(first, std::max<std::size_t>(end - first, 1));
}

std::optional<finding> at_end(const std::string &sql, const refusal &row) {
    return row.at(sql.size(), 0);
}

// The first item of the list behind the keyword that has nothing in it.
std::optional<finding> at_empty_item(const std::string &sql, const refusal &row) {
    const std::vector<std::size_t> places = places_of(sql, row.word);
    if (places.empty()) {
        return std::nullopt;
    }
    const std::size_t begin = places[0] + row.word.size();
    std::size_t end = sql.size();
    for (const std::string_view next : {" FROM ", " WHERE ", " ORDER "}) {
        end = std::min(end, sql.find(next, begin));
    }
    for (std::size_t item = begin; item <= end;) {
        const std::size_t comma = std::min(sql.find(',', item), end);
        if (trim(std::string_view(sql).substr(item, comma - item)).empty()) {
            return row.at(std::min(comma, sql.size()), comma < end ? 1 : 0);
        }
        item = comma + 1;
    }
    return std::nullopt;
}

// What a line begins with that was meant to go on with a statement that is answered already.
bool begins_clause(std::string_view word) {
    constexpr std::string_view clauses[] = {"FROM", "WHERE", "AND", "OR", "ORDER"};
    return std::find(std::begin(clauses), std::end(clauses), word) != std::end(clauses);
}

std::optional<finding> at_unknown_statement(const std::string &sql, const refusal & /*row*/) {
    static const std::vector<std::string> known = {"SELECT", "INSERT", "UPDATE", "DELETE", "DROP", "CREATE"};
    const std::size_t begin = std::min(sql.find_first_not_of(' '), sql.size());
    const std::string word = sql.substr(begin, std::min(sql.find(' ', begin), sql.size()) - begin);
    if (word.find('\t') != std::string::npos) {
        return finding{begin, word.size(), "only blanks divide words, not tabs", "write a blank"};
    }
    const std::string near = nearest(word, known);
    if (near == word) {
        const std::string_view partner = word == "DELETE" ? "FROM" : "TABLE";
        return finding{begin + word.size(), 0, fmt::format("expected {} after {}", partner, word),
                       fmt::format("write {} {} TABLE", word, partner)};
    }
    if (near == in_capitals(word)) {
        const advice found = write_in_capitals(near);
        return finding{begin, word.size(), found.sentence, found.hint};
    }
    if (const std::optional<advice> found = advice_for_verb(word)) {
        return finding{begin, word.size(), found->sentence, found->hint};
    }
    if (begins_clause(word)) {
        return finding{begin, word.size(),
                       "no statement begins so; the line before stood whole, and was answered",
                       "write the statement on one line, or end it with ;"};
    }
    return finding{begin, word.size(), fmt::format("no statement begins with \"{}\"", printable(word)),
                   near_hint(word, known), near.empty()};
}

// AND and OR in one condition: the first word that is not like those before it.
std::optional<finding> at_mixed_join(const std::string &sql, const refusal & /*row*/) {
    const std::size_t where = std::min(sql.find(" WHERE "), sql.size());
    const std::size_t and_place = sql.find(" AND ", where);
    const std::size_t or_place = sql.find(" OR ", where);
    if (and_place == std::string::npos || or_place == std::string::npos) {
        return std::nullopt;
    }
    return finding{std::max(and_place, or_place) + 1, or_place > and_place ? std::size_t{2} : std::size_t{3},
                   "AND and OR do not mix in one condition", "write two statements"};
}

// The part of the refused comparison that the rule is about; all of it where that part is not to be found.
template <typename Narrow>
std::optional<finding> in_condition(const std::string &sql, const refusal &row, Narrow narrow) {
    const std::optional<text_span> fault = find_condition_fault(sql);
    if (!fault) {
        return std::nullopt;
    }
    const std::string_view text = std::string_view(sql).substr(fault->place, fault->length);
    const text_span part = narrow(text);
    return part.place == std::string_view::npos ? row.at(fault->place, fault->length)
                                                : row.at(fault->place + part.place, part.length);
}

std::optional<finding> at_condition(const std::string &sql, const refusal &row) {
    return in_condition(sql, row, [](std::string_view text) { return text_span{0, text.size()}; });
}

std::optional<finding> behind_condition(const std::string &sql, const refusal &row) {
    return in_condition(sql, row, [](std::string_view text) { return text_span{text.size(), 0}; });
}

std::optional<finding> at_sign(const std::string &sql, const refusal &row) {
    return in_condition(sql, row, [&](std::string_view text) {
        return text_span{text.find(row.word), row.word.size()};
    });
}

std::optional<finding> from_quote(const std::string &sql, const refusal &row) {
    std::optional<finding> place = in_condition(sql, row, [](std::string_view text) {
        const std::size_t quote = text.find('\'');
        return text_span{quote, text.size() - std::min(quote, text.size())};
    });
    const std::string_view rest =
        std::string_view(sql).substr(place ? place->place + place->length : sql.size());
    if (rest.substr(0, 5) == " AND " || rest.substr(0, 4) == " OR ") {
        place->hint = "AND and OR divide conditions even inside quotes";
    }
    return place;
}

// A name or value that begins with IN where one value is meant, as in "= INTEG_ID".
std::optional<finding> at_word_with_in(const std::string &sql) {
    const std::optional<text_span> fault = find_condition_fault(sql);
    const std::size_t begin = fault ? sql.find(" IN", fault->place) + 1 : 0;
    const std::size_t before = begin == 0 ? 0 : sql.find_last_not_of(' ', begin - 1);
    const std::string word = sql.substr(begin, sql.find_first_of(" (),'", begin) - begin);
    if (begin == 0 || word.size() < 3 || word == "INLIKE" ||
        std::string_view("=<>").find(sql[before]) == std::string_view::npos) {
        return std::nullopt;
    }
    const bool is_joined = word.find('.') != std::string::npos;
    return finding{begin, word.size(),
                   fmt::format("{} begins with IN, which is found anywhere behind a blank", printable(word)),
                   is_joined ? fmt::format("write {}{}, without the blank", sql[before], printable(word))
                             : fmt::format("write '{}' for a text; a column is compared with values alone",
                                           printable(word))};
}

// IN as the parser finds it, and the word that it may be the beginning of.
std::optional<finding> at_list_word(const std::string &sql, const refusal &row) {
    if (std::optional<finding> word = at_word_with_in(sql)) {
        return word;
    }
    return in_condition(sql, row, [](std::string_view text) {
        const std::size_t in = text.find(" IN");
        if (in == std::string_view::npos) {
            return text_span{in, 0};
        }
        return text_span{in + 1, text.substr(in + 1, 6) == "INLIKE" ? std::size_t{6} : std::size_t{2}};
    });
}

std::optional<finding> at_sort_phrase(const std::string &sql, const refusal &row) {
    const std::size_t by = sql.rfind(" BY ");
    if (by == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t begin = by + 4;
    const std::size_t place = row.word.empty() ? begin : std::min(sql.find(row.word, begin), sql.size());
    return row.at(place, row.word.empty() ? sql.size() - begin : row.word.size());
}

constexpr std::string_view no_text_before = "nothing may stand before the statement";
constexpr std::string_view open_quote = "the quote is not closed";
constexpr std::string_view close_quote = "write 'TEXT'";
constexpr std::string_view no_percent = "a pattern ends with %";
constexpr std::string_view write_prefix = "write LIKE 'beginning%'";
constexpr std::string_view bad_list =
    "IN is found anywhere behind a blank, and wants values between brackets";
constexpr std::string_view write_list = "write COLUMN IN (1, 2)";
constexpr std::string_view bad_item = "expected a value";
constexpr std::string_view write_value = "write COLUMN = 1 or COLUMN = 'TEXT'";
constexpr std::string_view write_link = "write TABLE.COLUMN = TABLE.COLUMN";

constexpr refusal refusals[] = {
    {"divide_select_reserve_str", 936, find_repeated, "SELECT", ""},
    {"divide_select_reserve_str", 945, before_keyword, "SELECT", no_text_before},
    {"divide_select_reserve_str", 957, at_from, "FROM", ""},
    {"divide_select_reserve_str", 967, at_keyword, "FROM", "expected columns before FROM",
     "write COLUMN, COLUMN or COUNT(*)"},
    {"divide_select_reserve_str", 985, find_repeated, "ORDER", ""},
    {"divide_select_reserve_str", 985, find_repeated, "BY", ""},
    {"divide_select_reserve_str", 1007, find_repeated, "WHERE", ""},
    {"divide_select_reserve_str", 1019, at_end, "", expected_table, name_table},
    {"analyze_sql", 447, at_keyword, "ORDER", "only a SELECT is sorted",
     "write the statement without ORDER BY"},
    {"analyze_sql", 459, find_repeated, "CREATE", ""},
    {"analyze_sql", 459, find_repeated, "TABLE", ""},
    {"analyze_sql", 482, find_repeated, "DROP", ""},
    {"analyze_sql", 482, find_repeated, "TABLE", ""},
    {"analyze_sql", 493, before_keyword, "DROP", no_text_before},
    {"analyze_sql", 503, at_keyword, "WHERE", "DROP TABLE takes no condition", "write DELETE FROM"},
    {"analyze_sql", 510, at_end, "", expected_table, "write DROP TABLE TABLE"},
    {"analyze_sql", 528, find_repeated, "DELETE", ""},
    {"analyze_sql", 528, find_repeated, "FROM", ""},
    {"analyze_sql", 533, at_unknown_statement, "", ""},
    {"analyze_sql", 543, before_keyword, "DELETE", no_text_before},
    {"analyze_sql", 559, find_repeated, "WHERE", ""},
    {"analyze_sql", 579, at_end, "", expected_table, name_table},
    {"analyze_sql_select", 191, at_empty_item, "FROM", expected_table, name_table},
    {"analyze_sql_select", 242, at_keyword, "COUNT(*)", "COUNT(*) stands alone",
     "write SELECT COUNT(*) FROM"},
    {"analyze_sql_select", 249, at_keyword, "ORDER", "a count is not sorted", "write it without ORDER BY"},
    {"analyze_sql_select", 289, at_empty_item, "SELECT", "expected a column", "write COLUMN, COLUMN"},
    {"set_filter_str", 1527, at_mixed_join, "", ""},
    {"divide_operate", 1257, at_sign, "==", "== is not an operator", "write ="},
    {"divide_operate", 1271, at_condition, "", "no operator",
     "write =, !=, <, >, <=, >=, or LIKE, IN, INLIKE with blanks"},
    {"divide_operate", 1294, at_condition, "", "expected a column", write_value},
    {"divide_operate", 1300, behind_condition, "", bad_item, write_value},
    {"divide_operate", 1315, at_list_word, "", bad_list, write_list},
    {"divide_operate", 1330, at_condition, "", bad_item, write_list},
    {"divide_operate", 1337, from_quote, "", open_quote, close_quote},
    {"divide_operate", 1347, at_condition, "", no_percent, "write INLIKE ('beginning%')"},
    {"divide_operate", 1370, at_condition, "", bad_item, write_list},
    {"divide_operate", 1377, from_quote, "", open_quote, "a comma divides the list even inside quotes"},
    {"divide_operate", 1387, at_condition, "", no_percent, "write INLIKE ('beginning%')"},
    {"divide_operate", 1408, from_quote, "", open_quote, close_quote},
    {"divide_operate", 1416, at_condition, "", no_percent, write_prefix},
    {"analyze_sort", 2182, at_sort_phrase, ",", "one column sorts, not several", "write one column"},
    {"analyze_sort", 2194, at_sort_phrase, "", "ASC or DESC, not both", "write one of them"},
    {"analyze_sort", 2226, at_sort_phrase, "", "the direction is repeated", "write it once"},
    {"analyze_sort", 2243, at_sort_phrase, "", "expected a column before the direction",
     "write ORDER BY COLUMN DESC"},
    {"set_link_filter_cols", 1745, at_end, "", "each further table needs a condition of its own", write_link},
    {"set_link_filter_cols", 1824, at_keyword, "WHERE", "tables are joined with = and AND alone", write_link},
};

// The name and line of "name():[Return]:(line) ...".
bool is_point(const std::string &trace, const refusal &row) {
    return trace.rfind(fmt::format("{}():[Return]:({})", row.function, row.line), 0) == 0;
}

} // namespace

std::optional<finding> find_refused_place(const std::string &sql, const std::deque<std::string> &traces) {
    for (const std::string &trace : traces) {
        for (const refusal &row : refusals) {
            if (!is_point(trace, row)) {
                continue;
            }
            if (std::optional<finding> place = row.locate(sql, row)) {
                return place;
            }
        }
    }
    return std::nullopt;
}

} // namespace qrytext
