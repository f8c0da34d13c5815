// Candidates from the commands, the dialect's keywords and the schema.
#include "tools/qrysh/completion.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "tools/qrysh/commands.h"
#include "tools/qrysh/finding.h"
#include "tools/qrysh/near_match.h"
#include "tools/qrysh/printers.h"
#include "tools/qrysh/schema.h"

namespace qrysh {

namespace {

constexpr const char *keywords[] = {
    "AND",    "ASC",  "BY",   "COUNT(*)", "CREATE", "DELETE", "DESC", "DROP",  "FROM",   "IN",     "INLIKE",
    "INSERT", "INTO", "LIKE", "OR",       "ORDER",  "SELECT", "SET",  "TABLE", "UPDATE", "VALUES", "WHERE"};

using words = std::set<std::string>;

void add(words &all, const std::vector<std::string> &more) {
    all.insert(more.begin(), more.end());
}

// A join's columns carry their table's name.
void add_columns(words &all, const std::string &db_name, const std::vector<std::string> &tables,
                 bool qualified) {
    for (const std::string &table : tables) {
        for (const std::string &column : column_names(db_name, table)) {
            all.insert(qualified ? table + '.' + column : column);
        }
    }
}

words statement_words(const std::string &db_name, std::string_view line) {
    words all(std::begin(keywords), std::end(keywords));
    const std::vector<std::string> tables = table_names(db_name);
    add(all, tables);
    std::vector<std::string> named;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(named),
                 [&](const std::string &table) { return find_word(line, table).has_value(); });
    add_columns(all, db_name, named.empty() ? tables : named, named.size() > 1);
    return all;
}

bool begins_with(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The words that may stand at `begin` of a command's line.
words command_words(const std::string &db_name, std::string_view line, std::size_t begin) {
    words all;
    const std::string_view name = line.substr(0, line.find(' '));
    if (begin == 0 || name == ".help") {
        add(all, command_names());
    } else if (name == ".db") {
        add(all, database_names());
    } else if (name == ".explain" || name == ".watch" || name == ".fault") {
        return statement_words(db_name, line);
    } else {
        add(all, table_names(db_name));
    }
    return all;
}

} // namespace

completion complete(const std::string &db_name, std::string_view line, std::size_t cursor) {
    const std::string_view typed = line.substr(0, cursor);
    const std::size_t before = typed.find_last_of(" ,()=<>!'");
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const std::string_view word = typed.substr(begin);
    const bool is_command = begins_with(typed, ".");
    const words all = is_command ? command_words(db_name, line, begin) : statement_words(db_name, line);
    // Names and keywords are upper case, however they are typed.
    const std::string start = is_command && begin == 0 ? std::string(word) : in_capitals(word);
    completion found{begin, {}};
    std::copy_if(all.begin(), all.end(), std::back_inserter(found.candidates),
                 [&](const std::string &candidate) {
                     return begins_with(in_capitals(candidate), in_capitals(start));
                 });
    return found;
}

std::string common_start(const std::vector<std::string> &candidates) {
    std::string start = candidates.empty() ? "" : candidates.front();
    for (const std::string &candidate : candidates) {
        const auto end = std::mismatch(start.begin(), start.end(), candidate.begin(), candidate.end()).first;
        start.erase(end, start.end());
    }
    return start;
}

} // namespace qrysh
