// Which search for the fault a code asks for.
#include "tools/text/diagnosis.h"

#include <qrylib/types.h>

#include <string_view>

#include <fmt/format.h>

#include "tools/text/clauses.h"
#include "tools/text/engine.h"
#include "tools/text/foreign_words.h"
#include "tools/text/schema.h"
#include "tools/text/statement_lines.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

// Two statements in one line, or a comment behind one.
std::optional<finding> at_semicolon(const std::string &sql) {
    const std::size_t place = sql.find(';');
    if (place == std::string::npos) {
        return std::nullopt;
    }
    const std::string_view rest = trim(std::string_view(sql).substr(place + 1));
    if (!begins_statement(rest) && rest.substr(0, 2) != "--") {
        return std::nullopt;
    }
    return finding{place, 1, "a line holds one statement", "write the next one on a line of its own"};
}

// A device may keep no records of a table at all.
std::optional<finding> no_room(const std::string &db_name, const std::string &sql) {
    if (kind_of(sql) != statement_kind::write_record) {
        return std::nullopt;
    }
    const std::string table = parse_write_statement(sql).table;
    const auto capacity = table_capacity(db_name, table);
    const std::size_t place = find_word(sql, table).value_or(0);
    if (capacity == 0) {
        return finding{place, table.size(), fmt::format("this device keeps no {} records", table),
                       "write to a table with a capacity; .tables lists them"};
    }
    return finding{place, table.size(), fmt::format("all {} records of {} are in use", capacity, table),
                   "DELETE a record first, or give the key of one"};
}

// An UPDATE that matches nothing.
std::optional<finding> no_match(const std::string &sql) {
    const text_span condition = clauses_of(sql).condition;
    return finding{condition.length > 0 ? condition.place : 0,
                   condition.length > 0 ? condition.length : sql.size(), "no record matches",
                   "ask with a SELECT which records there are"};
}

} // namespace

std::optional<finding> diagnose(const std::string &db_name, const std::string &sql, std::uint32_t code,
                                const std::deque<std::string> &traces) {
    const bool may_be_a_name =
        code == QRY_LIB_NOT_ACCEPTED || code == QRY_LIB_INVALID_ARGUMENT || code == QRY_LIB_TABLE_ARGUMENT;
    if (std::optional<finding> place = may_be_a_name ? at_semicolon(sql) : std::nullopt) {
        return place;
    }
    if (code == QRY_LIB_NO_FREE_ENTRY) {
        return no_room(db_name, sql);
    }
    if (code == QRY_LIB_NO_SUCH_ITEM) {
        return no_match(sql);
    }
    if (std::optional<finding> place = may_be_a_name ? find_foreign_word(sql) : std::nullopt) {
        return place;
    }
    if (code == QRY_LIB_NOT_ACCEPTED) {
        if (std::optional<finding> place = find_refused_place(sql, traces)) {
            return place;
        }
    }
    // A join is refused as not accepted where its names are at fault.
    return may_be_a_name ? find_unknown_name(db_name, sql) : std::nullopt;
}

} // namespace qrytext
