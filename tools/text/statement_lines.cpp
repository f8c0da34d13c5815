// Where a statement ends.
#include "tools/text/statement_lines.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "tools/text/clauses.h"
#include "tools/text/finding.h"
#include "tools/text/near_match.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

constexpr std::string_view gaps = " \t\r";

// Only lines that begin with one of these may go on, so that what is no statement is refused at once.
constexpr std::string_view verbs[] = {"SELECT", "INSERT", "UPDATE", "DELETE", "DROP", "CREATE"};

// What cannot end a statement that means anything. ORDER BY can: without a column it does not sort.
constexpr std::string_view open_ends[] = {"SELECT", "DELETE", "DROP", "FROM", "TABLE", "WHERE", "AND", "OR"};

template <std::size_t Size>
bool is_one_of(const std::string_view (&words)[Size], std::string_view word) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

std::string_view without_gaps_behind(std::string_view text) {
    return text.substr(0, text.find_last_not_of(gaps) + 1);
}

std::string_view first_word(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(gaps), text.size()));
    return text.substr(0, text.find_first_of(gaps));
}

std::string_view last_word(std::string_view text) {
    return text.substr(text.find_last_of(gaps) + 1);
}

bool is_write(std::string_view text) {
    return first_word(text) == "INSERT" || first_word(text) == "UPDATE";
}

// How far an INSERT or UPDATE is understood; nothing when it is understood to its end.
std::optional<syntax_error::kind> fault_of_write(std::string_view text) {
    try {
        parse_write_statement(text);
        return std::nullopt;
    } catch (const syntax_error &error) {
        return error.what_kind();
    }
}

// Quotes count only where the shell reads them: in a condition they may stand alone.
bool ends_inside_quotes(std::string_view text) {
    return is_write(text) && fault_of_write(text) == syntax_error::kind::open_quote;
}

// Lower case is no keyword, but who writes "from" has not forgotten it: the refusal tells more than a prompt.
bool has_from(std::string_view text) {
    return find_word(text, "FROM", 0) || find_word(text, "from", 0);
}

bool goes_on(std::string_view line) {
    const std::string_view text = without_gaps_behind(line);
    const std::string_view verb = first_word(text);
    if (!begins_statement(text)) {
        return false;
    }
    if (text.back() == ',' || text.back() == '(' || is_one_of(open_ends, last_word(text))) {
        return true;
    }
    if (verb == "SELECT") {
        return !has_from(text);
    }
    return is_write(text) && fault_of_write(text) == syntax_error::kind::cut_off;
}

bool is_delete_or_update(std::string_view text) {
    return first_word(text) == "DELETE" || first_word(text) == "UPDATE";
}

bool is_sign_or_gap(char c) {
    return std::string_view(" \t\r,()=<>;").find(c) != std::string_view::npos;
}

// Where the quotes of a line open and close, if there is no doubt: one opens behind a blank or a sign alone,
// and closes before one. Places of ";" outside of them.
std::optional<std::vector<std::size_t>> semicolons_in(std::string_view line) {
    std::vector<std::size_t> places;
    bool is_open = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == ';' && !is_open) {
            places.push_back(at);
        } else if (line[at] == '\'' && is_open && line.substr(at + 1, 1) == "'") {
            ++at; // one quote of a value
        } else if (line[at] == '\'') {
            const std::size_t neighbour = is_open ? at + 1 : at - 1;
            if (neighbour < line.size() && !is_sign_or_gap(line[neighbour])) {
                return std::nullopt;
            }
            is_open = !is_open;
        }
    }
    return is_open ? std::nullopt : std::optional(std::move(places));
}

bool ends_with_semicolon(std::string_view text) {
    const std::string_view shown = without_gaps_behind(text);
    return !shown.empty() && shown.back() == ';';
}

} // namespace

bool begins_statement(std::string_view text) {
    return is_one_of(verbs, first_word(text));
}

std::vector<std::string_view> statements_in(std::string_view line) {
    const std::string_view start = first_word(line);
    if (start.substr(0, 1) == "." || start.substr(0, 2) == "--") {
        return {line};
    }
    std::vector<std::string_view> pieces;
    std::size_t begin = 0;
    for (const std::size_t place : semicolons_in(line).value_or(std::vector<std::size_t>())) {
        const std::string_view rest = line.substr(place + 1);
        if (begins_statement(rest) || first_word(rest).substr(0, 2) == "--") {
            pieces.push_back(line.substr(begin, place + 1 - begin));
            begin = place + 1;
        }
    }
    pieces.push_back(line.substr(begin));
    return pieces;
}

bool begins_condition(std::string_view line) {
    return in_capitals(first_word(line)) == "WHERE";
}

std::string_view without_semicolon(std::string_view text) {
    return ends_with_semicolon(text) ? text.substr(0, text.rfind(';')) : text;
}

// No line of a statement but its first begins with a verb or a point, so a forgotten ";" costs one statement.
bool statement_lines::is_cut_off_by(std::string_view line) const {
    return is_open() && !quote_is_open_ && !is_held_ &&
           (first_word(line).substr(0, 1) == "." || begins_statement(line));
}

void statement_lines::append(std::string_view line) {
    if (quote_is_open_) {
        text_.append("\n").append(line);
        return;
    }
    const std::size_t first = line.find_first_not_of(gaps);
    if (first != std::string_view::npos && line.substr(first, 2) != "--") {
        text_ = std::string(without_gaps_behind(text_)).append(" ").append(line.substr(first));
    }
}

bool statement_lines::add(std::string_view line, bool waits) {
    const bool is_first = !is_open();
    if (is_first) {
        text_ = line;
    } else {
        append(line);
    }
    quote_is_open_ = ends_inside_quotes(text_);
    if (quote_is_open_) {
        return false;
    }
    if (text_.back() == '\r') {
        text_.pop_back();
    }
    if (ends_with_semicolon(text_)) {
        return true;
    }
    if (is_held_) { // a blank line or a comment goes on waiting
        is_held_ = !begins_condition(line);
        return !is_held_ && !goes_on(text_);
    }
    is_held_ =
        is_first && waits && !goes_on(text_) && is_delete_or_update(text_) && takes_every_record(text_);
    return is_first && !is_held_ && !goes_on(text_);
}

bool statement_lines::is_held_before(std::string_view line) const {
    const std::string_view word = first_word(line);
    return is_held_ && !word.empty() && word.substr(0, 2) != "--" && !begins_condition(line);
}

std::vector<std::string_view> statement_lines::pieces_of(std::string_view line) const {
    return quote_is_open_ ? std::vector{line} : statements_in(line);
}

std::string statement_lines::take() {
    quote_is_open_ = false;
    is_held_ = false;
    return std::exchange(text_, {});
}

} // namespace qrytext
