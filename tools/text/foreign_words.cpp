// The table of foreign words.
#include "tools/text/foreign_words.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/text/near_match.h"

namespace qrytext {

namespace {

struct foreign_word {
    std::string_view word;
    std::string_view name; // as it is called; empty: as it is written
    std::string_view hint;
};

constexpr std::string_view is_nothing = "write = 0 or = '', what a column holds that was never set";
constexpr std::string_view narrower = "write a narrower condition";
constexpr std::string_view plain_join = "write FROM A, B WHERE A.X = B.X";
constexpr std::string_view nothing_is_undone =
    "write the statements alone; each is done when it ends, and none is undone";

constexpr foreign_word foreign_words[] = {
    {"AS", "", "write the name alone; columns and tables keep theirs"},
    {"AVG", "", "write a SELECT of the column, and work it out of its rows"},
    {"BETWEEN", "", "write X >= 1 AND X <= 9"},
    {"CASE", "", "write the column alone, and decide by its value"},
    {"CAST", "", "write the column alone; it keeps its type"},
    {"COLLATE", "", "write the column alone; the device knows how it is compared"},
    {"DISTINCT", "", "write the columns alone; rows may repeat"},
    {"ESCAPE", "", "write the character alone; in a prefix all but the % at its end stand for themselves"},
    {"EXISTS", "", "write two statements"},
    {"FETCH", "", narrower},
    {"GLOB", "", "write LIKE 'beginning%'"},
    {"GROUP", "GROUP BY", "write a SELECT COUNT(*) for each group"},
    {"HAVING", "", "write the condition behind WHERE"},
    {"ILIKE", "", "write LIKE 'beginning%', in the letters' own case"},
    {"INNER", "", plain_join},
    {"IS", "NULL", is_nothing},
    {"JOIN", "", plain_join},
    {"LEFT", "LEFT JOIN", plain_join},
    {"LIMIT", "", narrower},
    {"MAX", "", "write ORDER BY X DESC and read the first row"},
    {"MIN", "", "write ORDER BY X and read the first row"},
    {"NOT", "", "write !=, once for each value of a list"},
    {"NULL", "", "write 0 or '', what a column holds that was never set"},
    {"NULLS", "NULL", "write ORDER BY COLUMN alone"},
    {"OFFSET", "", narrower},
    {"ON", "", "write the condition behind WHERE"},
    {"OUTER", "OUTER JOIN", plain_join},
    {"REGEXP", "", "write LIKE 'beginning%'"},
    {"RETURNING", "", "write a SELECT behind the statement"},
    {"RIGHT", "RIGHT JOIN", plain_join},
    {"SUM", "", "write a SELECT of the column, and add its rows up"},
    {"TOP", "", narrower},
    {"UNION", "", "write two statements"},
    {"USING", "", "write the condition behind WHERE"},
};

// Words that statements of other dialects begin with.
constexpr foreign_word foreign_verbs[] = {
    {"ALTER", "", "write .schema TABLE, which lists the columns; the tables are the device's own"},
    {"BEGIN", "", nothing_is_undone},
    {"COMMIT", "", nothing_is_undone},
    {"DESC", "", "write .schema TABLE, which lists the columns"},
    {"DESCRIBE", "", "write .schema TABLE, which lists the columns"},
    {"END", "", nothing_is_undone},
    {"EXPLAIN", "", "write .explain before the statement"},
    {"MERGE", "", "write INSERT, which replaces the record that has the key"},
    {"PRAGMA", "", "write .schema, which lists the columns, or .help, which lists the commands"},
    {"REPLACE", "", "write INSERT, which replaces the record that has the key"},
    {"ROLLBACK", "", nothing_is_undone},
    {"SAVEPOINT", "", nothing_is_undone},
    {"SHOW", "", "write .tables, which lists the tables, or .databases"},
    {"START", "", nothing_is_undone},
    {"TRUNCATE", "", "write DROP TABLE, which takes every record and keeps the table"},
    {"USE", "", "write .db NAME, which sends statements to another database"},
    {"WITH", "", "write two statements"},
};

constexpr std::string_view keywords[] = {"AND",   "ASC",    "BY",     "CREATE", "DELETE", "DESC",   "DROP",
                                         "FROM",  "IN",     "INLIKE", "INSERT", "INTO",   "LIKE",   "OR",
                                         "ORDER", "SELECT", "SET",    "TABLE",  "UPDATE", "VALUES", "WHERE"};

constexpr std::string_view upper_case = "keywords are upper case";

constexpr std::string_view word_ends = " \t\r\n,()=<>!'\";";

template <std::size_t Size>
std::optional<advice> look_up(const foreign_word (&words)[Size], std::string_view capitals) {
    const auto *row = std::find_if(std::begin(words), std::end(words),
                                   [&](const foreign_word &known) { return known.word == capitals; });
    if (row == std::end(words)) {
        return std::nullopt;
    }
    return advice{fmt::format("there is no {}", row->name.empty() ? row->word : row->name),
                  std::string(row->hint)};
}

std::optional<advice> advice_for_word(std::string_view word) {
    const std::string capitals = in_capitals(word);
    if (std::find(std::begin(keywords), std::end(keywords), capitals) != std::end(keywords)) {
        return word == capitals ? std::nullopt : std::optional(write_in_capitals(capitals));
    }
    return look_up(foreign_words, capitals);
}

} // namespace

std::optional<advice> advice_for(std::string_view text) {
    for (std::size_t begin = text.find_first_not_of(word_ends); begin != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(word_ends, begin), text.size());
        const std::string_view word = text.substr(begin, end - begin);
        if (word.substr(0, 2) == "--" || word.substr(0, 2) == "/*") {
            return advice{"a statement holds no comment", "write it on a line of its own, behind --"};
        }
        if (std::optional<advice> found = advice_for_word(word)) {
            return found;
        }
        begin = text.find_first_not_of(word_ends, end);
    }
    return text.find(';') == std::string_view::npos
               ? std::nullopt
               : std::optional(
                     advice{"a line holds one statement", "write the next one on a line of its own"});
}

std::string sentence_for(std::string_view text) {
    const std::optional<advice> found = advice_for(text);
    if (!found) {
        return "";
    }
    return found->sentence == upper_case ? found->sentence // the word is in the text
                                         : fmt::format("{}: {}", found->sentence, found->hint);
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
        if (word == "SELECT" && begin > 0 && sql[begin - 1] == '(') {
            return finding{begin, word.size(), "there is no SELECT within a statement",
                           "write two statements"};
        }
        if (std::optional<advice> found = advice_for(word)) {
            return finding{begin, word.size(), std::move(found->sentence), std::move(found->hint)};
        }
    }
    return std::nullopt;
}

std::optional<advice> advice_for_verb(const std::string &word) {
    return look_up(foreign_verbs, in_capitals(word));
}

advice write_in_capitals(std::string_view keyword) {
    return {std::string(upper_case), fmt::format("write {}", keyword)};
}

} // namespace qrytext
