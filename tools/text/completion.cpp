// Candidates from the dialect's keywords and the schema.
#include "tools/text/completion.h"

#include <algorithm>
#include <iterator>

#include "tools/text/finding.h"
#include "tools/text/near_match.h"
#include "tools/text/schema.h"

namespace qrytext {

namespace {

constexpr const char *keywords[] = {
    "AND",    "ASC",  "BY",   "COUNT(*)", "CREATE", "DELETE", "DESC", "DROP",  "FROM",   "IN",     "INLIKE",
    "INSERT", "INTO", "LIKE", "OR",       "ORDER",  "SELECT", "SET",  "TABLE", "UPDATE", "VALUES", "WHERE"};

using words = std::vector<std::string>;

// A join's columns carry their table's name.
void add_columns(words &all, const std::string &db_name, const words &tables, bool qualified) {
    for (const std::string &table : tables) {
        for (const std::string &column : column_names(db_name, table)) {
            all.push_back(qualified ? table + '.' + column : column);
        }
    }
}

words statement_words(const std::string &db_name, std::string_view statement) {
    words all(std::begin(keywords), std::end(keywords));
    const words tables = table_names(db_name);
    all.insert(all.end(), tables.begin(), tables.end());
    words named;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(named),
                 [&](const std::string &table) { return find_word(statement, table).has_value(); });
    add_columns(all, db_name, named.empty() ? tables : named, named.size() > 1);
    return all;
}

bool begins_with(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

} // namespace

const char *word_kind(const std::string &db_name, const std::string &word) {
    if (std::find(std::begin(keywords), std::end(keywords), word) != std::end(keywords)) {
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
    return complete_from(statement_words(db_name, statement), statement, cursor);
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
