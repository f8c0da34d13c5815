// Where a "?" stands, and how a value must be written there so that it is read as that value.
#include "tools/text/parameters.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include <fmt/format.h>

#include "tools/text/engine.h"
#include "tools/text/json_text.h"
#include "tools/text/printers.h"

namespace qrytext {

namespace {

constexpr std::int64_t smallest_number = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t largest_number = std::numeric_limits<std::uint32_t>::max();

std::vector<std::size_t> places_to_fill(const std::string &sql) {
    std::vector<std::size_t> places;
    bool quoted = false;
    for (std::size_t i = 0; i < sql.size(); ++i) {
        quoted = quoted != (sql[i] == '\'');
        if (sql[i] == '?' && !quoted) {
            places.push_back(i);
        }
    }
    return places;
}

// Quotes protect nothing in a text that the library reads: these would be found in the value.
bool cuts_a_text(const std::string &value) {
    constexpr std::string_view words[] = {" SELECT ", " FROM ",   " WHERE ",  " ORDER ", " BY ",
                                          " AND ",    " OR ",     " DELETE ", " DROP ",  " TABLE ",
                                          " INDEX ",  " CREATE ", ","};
    const std::string text = ' ' + value + ' ';
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return text.find(word) != std::string::npos; });
}

std::optional<cell> cell_of(const json_value &value) {
    if (value.is_number_integer()) {
        const auto number = value.get<std::int64_t>();
        const bool is_huge = value.is_number_unsigned() && value.get<std::uint64_t>() > largest_number;
        return is_huge || number < smallest_number || number > largest_number ? std::nullopt
                                                                              : std::optional<cell>(number);
    }
    const std::optional<std::string> text = text_of(value);
    return text ? std::optional<cell>(*text) : std::nullopt;
}

// A list of values that the shell's grammar reads, before a WHERE: there '' is one quote.
bool reads_escapes(const std::string &sql, std::size_t place) {
    return kind_of(sql) == statement_kind::write_record && sql.rfind(" WHERE ", place) == std::string::npos;
}

// The value as the statement takes it at this place. A number above 31 bits is read as its bits' signed
// number.
std::optional<std::string> written(const std::string &sql, std::size_t place, const cell &value) {
    if (reads_escapes(sql, place)) {
        return literal(value);
    }
    if (const auto *number = std::get_if<std::int64_t>(&value)) {
        return fmt::format("{}", static_cast<std::int32_t>(static_cast<std::uint32_t>(*number)));
    }
    const std::string &text = std::get<std::string>(value);
    return cuts_a_text(text) ? std::nullopt : std::optional("'" + text + "'");
}

bound_statement refuse(const std::string &sql, std::size_t place, std::size_t length, std::string sentence) {
    return {sql, finding{place, length, std::move(sentence)}, {}};
}

} // namespace

std::size_t bound_statement::place_before(std::size_t place) const {
    std::size_t longer = 0; // than the text with the "?", so far
    for (const insertion &value : insertions) {
        if (place <= value.place) {
            break;
        }
        if (place < value.place + value.length) {
            return value.place - longer;
        }
        longer += value.length - 1;
    }
    return place - longer;
}

bound_statement bind_parameters(const std::string &sql, const std::string &parameters) {
    const json_value values = json_value::parse(parameters, nullptr, false);
    if (!values.is_array()) {
        return refuse(sql, 0, sql.size(), "the parameters are not a JSON array");
    }
    const std::vector<std::size_t> places = places_to_fill(sql);
    if (places.size() != values.size()) {
        return refuse(
            sql, 0, sql.size(),
            fmt::format("the statement has {} \"?\", and {} values are given", places.size(), values.size()));
    }
    bound_statement bound{"", {}, {}};
    std::size_t copied = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const std::optional<cell> value = cell_of(values[i]);
        if (!value) {
            return refuse(sql, places[i], 1,
                          fmt::format("value {} is no number of 32 bits and no text", i + 1));
        }
        const std::optional<std::string> text = written(sql, places[i], *value);
        if (!text) {
            return refuse(
                sql, places[i], 1,
                fmt::format("value {} holds a keyword or a comma, which a condition cannot", i + 1));
        }
        bound.sql += sql.substr(copied, places[i] - copied);
        bound.insertions.push_back({bound.sql.size(), text->size()});
        bound.sql += *text;
        copied = places[i] + 1;
    }
    bound.sql += sql.substr(copied);
    return bound;
}

} // namespace qrytext
