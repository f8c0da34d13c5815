// Candidates from the dialect's keywords and the schema, told by the last keyword before the cursor.
#include "tools/text/completion.h"

#include <algorithm>
#include <iterator>

#include "tools/text/clauses.h"
#include "tools/text/finding.h"
#include "tools/text/near_match.h"
#include "tools/text/schema.h"

namespace qrytext {

namespace {

enum class names { none, tables, columns };

// What may stand behind a keyword, and behind that.
struct offer {
    std::string_view keyword; // the last one before the cursor
    names first;              // right behind it, behind a comma, or between brackets
    std::string_view words;   // there too
    std::string_view then;    // behind what stands first
};

constexpr std::string_view behind_comparison = "AND IN INLIKE LIKE OR ORDER";

constexpr offer offers[] = {
    {"", names::none, "CREATE DELETE DROP INSERT SELECT UPDATE", ""},
    {"AND", names::columns, "", behind_comparison},
    {"ASC", names::none, "", ""},
    {"BY", names::columns, "", "ASC DESC"},
    {"CREATE", names::none, "TABLE", ""},
    {"DELETE", names::none, "FROM", ""},
    {"DESC", names::none, "", ""},
    {"DROP", names::none, "TABLE", ""},
    {"FROM", names::tables, "", "ORDER WHERE"},
    {"IN", names::none, "", "AND OR ORDER"},
    {"INLIKE", names::none, "", "AND OR ORDER"},
    {"INSERT", names::none, "INTO", ""},
    {"INTO", names::tables, "", "VALUES"},
    {"LIKE", names::none, "", "AND OR ORDER"},
    {"OR", names::columns, "", behind_comparison},
    {"ORDER", names::none, "BY", ""},
    {"SELECT", names::columns, "COUNT(*)", "FROM"},
    {"SET", names::columns, "", "WHERE"},
    {"TABLE", names::tables, "", ""},
    {"UPDATE", names::tables, "", "SET"},
    {"VALUES", names::none, "", ""},
    {"WHERE", names::columns, "", behind_comparison},
};

constexpr std::string_view signs = " ,()=<>!";

using words = std::vector<std::string>;

// A join's columns carry their table's name.
void add_columns(words &all, const std::string &db_name, const words &tables, bool qualified) {
    for (const std::string &table : tables) {
        for (const std::string &column : column_names(db_name, table)) {
            all.push_back(qualified ? table + '.' + column : column);
        }
    }
}

words words_in(std::string_view list) {
    words all;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find(' ', begin), list.size());
        all.emplace_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    return all;
}

words columns_of(const std::string &db_name, std::string_view statement) {
    const words tables = table_names(db_name);
    words named;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(named),
                 [&](const std::string &table) { return find_word(statement, table).has_value(); });
    words all;
    add_columns(all, db_name, named.empty() ? tables : named, named.size() > 1);
    return all;
}

const offer *offer_behind(std::string_view word) {
    const auto *found = std::find_if(std::begin(offers), std::end(offers),
                                     [&](const offer &row) { return row.keyword == in_capitals(word); });
    return found == std::end(offers) ? nullptr : found;
}

// The last keyword outside quotes, and what stands between it and the cursor.
struct position {
    const offer *behind;
    std::string_view since;
    bool is_quoted;
};

position position_at(std::string_view before) {
    position here{offers, before, false};
    for (std::size_t at = 0; at < before.size();) {
        if (before[at] == '\'') {
            here.is_quoted = !here.is_quoted;
        }
        if (before[at] == '\'' || signs.find(before[at]) != std::string_view::npos) {
            ++at;
            continue;
        }
        const std::size_t end = std::min(before.find_first_of(" ,()=<>!'", at), before.size());
        const offer *const row = here.is_quoted ? nullptr : offer_behind(before.substr(at, end - at));
        if (row != nullptr) {
            here.behind = row;
            here.since = before.substr(end);
        }
        at = end;
    }
    return here;
}

// Between brackets behind INTO columns stand, not tables.
bool is_in_brackets(const position &here) {
    return here.behind->keyword == "INTO" && here.since.find('(') != std::string_view::npos &&
           here.since.find(')') == std::string_view::npos;
}

bool is_first(const position &here) {
    const std::size_t last = here.since.find_last_not_of(' ');
    return last == std::string_view::npos || here.since[last] == ',' || here.since[last] == '(';
}

words statement_words(const std::string &db_name, std::string_view statement, std::size_t word_begin) {
    const position here = position_at(statement.substr(0, word_begin));
    const std::size_t last = here.since.find_last_not_of(' ');
    const bool is_value = last != std::string_view::npos &&
                          std::string_view("=<>!").find(here.since[last]) != std::string_view::npos;
    if (here.is_quoted || is_value) {
        return {};
    }
    if (is_in_brackets(here)) {
        return is_first(here) ? columns_of(db_name, statement) : words();
    }
    if (!is_first(here)) {
        words then = words_in(here.behind->then);
        const bool is_sorted = kind_name(std::string(statement)) == "select";
        then.erase(std::remove_if(then.begin(), then.end(),
                                  [&](const std::string &word) { return word == "ORDER" && !is_sorted; }),
                   then.end());
        return then;
    }
    words all = words_in(here.behind->words);
    const words found = here.behind->first == names::tables    ? table_names(db_name)
                        : here.behind->first == names::columns ? columns_of(db_name, statement)
                                                               : words();
    all.insert(all.end(), found.begin(), found.end());
    return all;
}

bool begins_with(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

} // namespace

const char *word_kind(const std::string &db_name, const std::string &word) {
    if (word == "COUNT(*)" || offer_behind(word) != nullptr) {
        return "keyword";
    }
    return table_exists(db_name, word) ? "table" : "column";
}

std::size_t word_before(std::string_view text, std::size_t cursor) {
    const std::size_t before = text.substr(0, cursor).find_last_of(" ,()=<>!'");
    return before == std::string_view::npos ? 0 : before + 1;
}

completion complete_from(std::vector<std::string> words, std::string_view text, std::size_t cursor) {
    const std::size_t begin = word_before(text, cursor);
    const std::string start = in_capitals(text.substr(0, cursor).substr(begin));
    completion found{begin, {}};
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    std::copy_if(words.begin(), words.end(), std::back_inserter(found.candidates),
                 [&](const std::string &word) { return begins_with(in_capitals(word), start); });
    return found;
}

completion complete(const std::string &db_name, std::string_view statement, std::size_t cursor) {
    return complete_from(statement_words(db_name, statement, word_before(statement, cursor)), statement,
                         cursor);
}

std::string common_start(const std::vector<std::string> &candidates) {
    std::string start = candidates.empty() ? "" : candidates.front();
    for (const std::string &candidate : candidates) {
        const auto end = std::mismatch(start.begin(), start.end(), candidate.begin(), candidate.end()).first;
        start.erase(end, start.end());
    }
    return start;
}

} // namespace qrytext
