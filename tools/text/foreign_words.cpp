// The table of foreign words.
#include "tools/text/foreign_words.h"

#include <algorithm>
#include <iterator>

#include "tools/text/near_match.h"

namespace qrytext {

namespace {

struct foreign_word {
    std::string_view word;
    std::string_view advice;
};

constexpr foreign_word foreign_words[] = {
    {"AS", "there is no AS: columns and tables keep their names"},
    {"AVG", "there is no AVG: read the rows and work it out"},
    {"BETWEEN", "there is no BETWEEN: write X >= 1 AND X <= 9"},
    {"CASE", "there is no CASE: read the column as it is"},
    {"DISTINCT", "there is no DISTINCT: rows may repeat"},
    {"ESCAPE", "there is no ESCAPE: in a prefix every character but the % at its end stands for itself"},
    {"EXISTS", "there is no EXISTS: ask with two statements"},
    {"FETCH", "there is no FETCH: write a narrower condition"},
    {"GLOB", "there is no GLOB: write LIKE 'beginning%'"},
    {"GROUP", "there is no GROUP BY: write a SELECT COUNT(*) for each group"},
    {"HAVING", "there is no HAVING: write the condition behind WHERE"},
    {"IS", "there is no NULL: write = 0 or = '', what a column holds that was never set"},
    {"JOIN", "there is no JOIN: write FROM A, B WHERE A.X = B.X"},
    {"LIMIT", "there is no LIMIT: write a narrower condition"},
    {"MAX", "there is no MAX: write ORDER BY X DESC and read the first row"},
    {"MIN", "there is no MIN: write ORDER BY X and read the first row"},
    {"NOT", "there is no NOT: write !="},
    {"NULL", "there is no NULL: write = 0 or = '', what a column holds that was never set"},
    {"OFFSET", "there is no OFFSET: write a narrower condition"},
    {"ON", "there is no ON: write the condition behind WHERE"},
    {"REGEXP", "there is no REGEXP: write LIKE 'beginning%'"},
    {"RETURNING", "there is no RETURNING: ask with a SELECT"},
    {"SUM", "there is no SUM: read the rows and add them up"},
    {"UNION", "there is no UNION: write two statements"},
};

// Words that statements of other dialects begin with.
constexpr foreign_word foreign_verbs[] = {
    {"ALTER", "there is no ALTER: the tables are the device's own"},
    {"BEGIN", "there is no BEGIN: each statement stands alone, and nothing is undone"},
    {"COMMIT", "there is no COMMIT: each statement stands alone, and is done when it ends"},
    {"DESC", "there is no DESC: .schema TABLE lists the columns"},
    {"DESCRIBE", "there is no DESCRIBE: .schema TABLE lists the columns"},
    {"EXPLAIN", "there is no EXPLAIN: write .explain before the statement"},
    {"PRAGMA", "there is no PRAGMA: .schema lists the columns, .help the commands"},
    {"REPLACE", "there is no REPLACE: INSERT replaces the record that has the key"},
    {"ROLLBACK", "there is no ROLLBACK: nothing is undone"},
    {"SHOW", "there is no SHOW: .tables lists the tables, .databases the databases"},
    {"START", "there is no START: each statement stands alone, and nothing is undone"},
    {"TRUNCATE", "there is no TRUNCATE: write DROP TABLE, which takes every record and keeps the table"},
    {"USE", "there is no USE: .db NAME sends statements to another database"},
    {"WITH", "there is no WITH: write two statements"},
};

constexpr std::string_view keywords[] = {"AND",   "ASC",    "BY",     "CREATE", "DELETE", "DESC",   "DROP",
                                         "FROM",  "IN",     "INLIKE", "INSERT", "INTO",   "LIKE",   "OR",
                                         "ORDER", "SELECT", "SET",    "TABLE",  "UPDATE", "VALUES", "WHERE"};

constexpr std::string_view upper_case = "keywords are upper case";

constexpr std::string_view word_ends = " \t\r\n,()=<>!'\";";

std::string advice_for_word(const std::string &word) {
    const std::string capitals = in_capitals(word);
    const auto *known = std::find(std::begin(keywords), std::end(keywords), capitals);
    if (known != std::end(keywords)) {
        return word == capitals ? "" : std::string(upper_case);
    }
    const auto *foreign = std::find_if(std::begin(foreign_words), std::end(foreign_words),
                                       [&](const foreign_word &row) { return row.word == capitals; });
    return foreign == std::end(foreign_words) ? "" : std::string(foreign->advice);
}

} // namespace

std::string advice_for(std::string_view text) {
    for (std::size_t begin = text.find_first_not_of(word_ends); begin != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(word_ends, begin), text.size());
        const std::string_view word = text.substr(begin, end - begin);
        if (word.substr(0, 2) == "--" || word.substr(0, 2) == "/*") {
            return "a statement holds no comment: write it on a line of its own, behind --";
        }
        if (std::string advice = advice_for_word(std::string(word)); !advice.empty()) {
            return advice;
        }
        begin = text.find_first_not_of(word_ends, end);
    }
    return text.find(';') == std::string_view::npos ? "" : "a line holds one statement and nothing behind it";
}

std::optional<finding> find_foreign_word(std::string_view sql) {
    bool quoted = false;
    for (std::size_t begin = 0; begin < sql.size(); ++begin) {
        quoted = quoted != (sql[begin] == '\'');
        const bool begins_word = begin == 0 || word_ends.find(sql[begin - 1]) != std::string_view::npos;
        if (quoted || !begins_word || word_ends.find(sql[begin]) != std::string_view::npos) {
            continue;
        }
        const std::size_t end = std::min(sql.find_first_of(word_ends, begin), sql.size());
        const std::string_view word = sql.substr(begin, end - begin);
        if (std::string advice = advice_for(word); !advice.empty()) {
            return finding{begin, word.size(),
                           advice == upper_case ? advice + ": write " + in_capitals(word)
                                                : std::move(advice)};
        }
    }
    return std::nullopt;
}

std::string advice_for_verb(const std::string &word) {
    const auto *verb = std::find_if(std::begin(foreign_verbs), std::end(foreign_verbs),
                                    [&](const foreign_word &row) { return row.word == in_capitals(word); });
    return verb == std::end(foreign_verbs) ? "" : std::string(verb->advice);
}

} // namespace qrytext
