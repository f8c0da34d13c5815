// Values followed from their text to the bits that are compared or stored.
#include "tools/text/value_notes.h"

#include <qrylib/types.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

#include <fmt/format.h>

#include "tools/text/foreign_words.h"
#include "tools/text/number_range.h"
#include "tools/text/printers.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

constexpr std::int64_t smallest_int = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t largest_int = std::numeric_limits<std::int32_t>::max();

// A text's leading number as the library reads it, and where it ends.
struct leading_number {
    std::int64_t number = 0; // far beyond 32 bits: only that it lies beyond
    std::size_t end = 0;     // 0: there are no digits
};

leading_number read_number(std::string_view text) {
    constexpr std::string_view gaps = " \t\n\v\f\r";
    constexpr std::int64_t far = std::int64_t{1} << 40;
    std::size_t at = std::min(text.find_first_not_of(gaps), text.size());
    const bool is_negative = text.substr(at, 1) == "-";
    at += is_negative || text.substr(at, 1) == "+" ? 1 : 0;
    leading_number read;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        read.number = std::min(read.number * 10 + (text[at] - '0'), far);
        read.end = at + 1;
    }
    read.number = is_negative ? -read.number : read.number;
    return read;
}

bool is_text(const qry_lib_catalog_column_ &column) {
    return column.type == QRY_LIB_COLUMN_TYPE_STR;
}

bool is_wide(const qry_lib_catalog_column_ &column) {
    return column.type == QRY_LIB_COLUMN_TYPE_UINT || column.type == QRY_LIB_COLUMN_TYPE_ULONG;
}

bool orders(QRY_LIB_OPERATION_TYPE operation) {
    return operation >= QRY_LIB_OPERATION_TYPE_LESS && operation <= QRY_LIB_OPERATION_TYPE_GREATER_EQUAL;
}

finding at(text_span span, std::string text, std::string hint) {
    return {span.place, span.length, std::move(text), std::move(hint)};
}

// Quotes that other dialects or word processors put around texts.
bool begins_with_foreign_quote(std::string_view text) {
    constexpr std::string_view quotes[] = {"\"",     "`",      "\u2018", "\u2019", "\u201A",
                                           "\u201C", "\u201D", "\u201E", "\u00AB"};
    return std::any_of(std::begin(quotes), std::end(quotes),
                       [&](std::string_view quote) { return text.substr(0, quote.size()) == quote; });
}

constexpr const char *single_quotes = "texts stand between single quotes: '...'";

// Numbers in a comparison: narrowed as those that are written, and without a sign in an order.
void note_number(text_span span, std::int64_t given, const query_condition &kept,
                 const qry_lib_catalog_column_ &column, std::vector<finding> &notes) {
    const std::int64_t read = std::clamp(given, smallest_int, largest_int);
    const std::int64_t compared = narrowed(read, column.type);
    const bool is_bits = is_wide(column) && given < 0 && given >= smallest_int; // the only way to write these
    if (compared != given && !(is_bits && !orders(kept.operation))) {
        const number_range range = range_of(column.type);
        notes.push_back(
            at(span, fmt::format("{} is compared as {}", given, compared),
               given > largest_int && is_wide(column)
                   ? "above 2147483647 write the negative number of the same bits"
                   : fmt::format("{} lies between {} and {}", kept.column, range.smallest, range.largest)));
    } else if (given < 0 && orders(kept.operation)) {
        notes.push_back(
            at(span, fmt::format("{} is the greatest of numbers here: they are ordered without sign", given),
               ""));
    }
}

// `from` is where the value begins in the text, behind its quote.
void note_number_text(const std::string &sql, text_span span, std::size_t from, const query_condition &kept,
                      const qry_lib_catalog_column_ &column, std::vector<finding> &notes) {
    const leading_number read = read_number(kept.value);
    if (read.end == 0) {
        const std::string advice = sentence_for(kept.value);
        notes.push_back(at(span,
                           fmt::format("{} is a number: {} is read as 0", kept.column,
                                       printable(sql.substr(span.place, span.length))),
                           advice.empty() && begins_with_foreign_quote(kept.value) ? single_quotes : advice));
        return;
    }
    note_number(span, read.number, kept, column, notes);
    if (trim(std::string_view(kept.value).substr(read.end)).empty()) {
        return;
    }
    notes.push_back(left_over(sql, {from + read.end, kept.value.size() - read.end},
                              "was read as part of the value", "a number ends with its last digit"));
}

bool is_sign_or_gap(char c) {
    return std::string_view(" \t,()=<>!;'").find(c) != std::string_view::npos;
}

// An apostrophe follows a letter, and more text follows it; a lone one may stand at the end of a word, and a
// prefix ends anywhere.
bool looks_like_an_end(const std::string &value, std::size_t quote, bool is_lone, bool is_prefix) {
    const bool follows_a_gap = quote == 0 || is_sign_or_gap(value[quote - 1]);
    const std::string_view rest = std::string_view(value).substr(quote + 1);
    const bool ends = trim(rest).empty();
    return follows_a_gap || (ends ? !is_prefix : !is_lone && is_sign_or_gap(rest.front()));
}

// Quotes inside a quoted value: apostrophes, or the ends of what was meant as several texts.
void note_inner_quotes(text_span span, const query_condition &kept, std::vector<finding> &notes) {
    const std::string &value = kept.value;
    const bool is_prefix = kept.operation == QRY_LIB_OPERATION_TYPE_LIKE;
    if (value.find("''") != std::string::npos) {
        notes.push_back(
            at(span, "both quotes of '' belong to the value", "there is no escape: write one quote"));
        return;
    }
    const bool is_lone = std::count(value.begin(), value.end(), '\'') == 1;
    for (std::size_t i = value.find('\''); i != std::string::npos; i = value.find('\'', i + 1)) {
        if (looks_like_an_end(value, i, is_lone, is_prefix)) {
            const std::string advice = sentence_for(value);
            notes.push_back(
                at(span, "the value goes from the first quote to the last, what stands between included",
                   advice.empty() ? "one value has two quotes" : advice));
            return;
        }
    }
}

// A text without quotes: all of it is the value, whatever it looks like.
void note_bare_text(const std::string &sql, text_span span, const std::string &value,
                    std::vector<finding> &notes) {
    if (begins_with_foreign_quote(value)) {
        notes.push_back(
            at(span, fmt::format("the quotes of {} belong to the value", printable(value)), single_quotes));
        return;
    }
    const std::size_t gap = value.find_first_of(" \t;'\"()");
    if (gap != std::string::npos) {
        notes.push_back(left_over(sql, {span.place + gap, span.length - gap}, "was read as part of the value",
                                  "a text of several words stands between single quotes"));
    } else if (const std::string advice = sentence_for(value); !advice.empty()) {
        notes.push_back(at(span, fmt::format("compared with the text {}", printable(value)), advice));
    }
}

void note_pattern(text_span span, const query_condition &kept, std::vector<finding> &notes) {
    if (kept.operation == QRY_LIB_OPERATION_TYPE_LIKE && kept.value.find('%') != std::string::npos) {
        notes.push_back(at(span, "only the % at the end is a pattern's; another one stands for itself",
                           "LIKE finds beginnings alone"));
    }
}

// What a number is when it is written: its decimal text, signed in 32 bits, narrowed to the column.
std::int64_t stored_number(std::int64_t given, const qry_lib_catalog_column_ &column) {
    return narrowed(std::clamp(given, smallest_int, std::int64_t{0xFFFFFFFF}), column.type);
}

void note_stored_number(text_span span, std::int64_t given, std::int64_t stored,
                        const qry_lib_catalog_column_ &column, std::vector<finding> &notes) {
    if (stored == given) {
        return;
    }
    const number_range range = range_of(column.type);
    notes.push_back(at(span, fmt::format("{} is stored as {}", given, stored),
                       fmt::format("{} lies between {} and {}", column.name, range.smallest, range.largest)));
}

void note_stored_text(const std::string &sql, text_span span, const std::string &text,
                      const qry_lib_catalog_column_ &column, std::vector<finding> &notes) {
    const leading_number read = read_number(text);
    if (read.end == 0) {
        notes.push_back(at(span,
                           fmt::format("{} is a number: {} is stored as 0", column.name,
                                       printable(sql.substr(span.place, span.length))),
                           ""));
        return;
    }
    note_stored_number(span, read.number,
                       narrowed(std::clamp(read.number, smallest_int, largest_int), column.type), column,
                       notes);
    if (!trim(std::string_view(text).substr(read.end)).empty()) {
        notes.push_back(at(span,
                           fmt::format("{} is a number: only {} of {} is stored", column.name, read.number,
                                       printable(sql.substr(span.place, span.length))),
                           ""));
    }
}

} // namespace

finding left_over(const std::string &sql, text_span span, const std::string &what,
                  const std::string &otherwise) {
    const std::string text = sql.substr(span.place, span.length);
    const std::string advice = sentence_for(text);
    return at(span, fmt::format("\"{}\" {}", printable(text), what), advice.empty() ? otherwise : advice);
}

cell stored_value(const cell &given, const qry_lib_catalog_column_ &column) {
    const auto *number = std::get_if<std::int64_t>(&given);
    if (is_text(column)) {
        return number == nullptr ? given
                                 : cell(fmt::format("{}", narrowed(*number, QRY_LIB_COLUMN_TYPE_INT)));
    }
    return number == nullptr ? narrowed(std::clamp(read_number(std::get<std::string>(given)).number,
                                                   smallest_int, largest_int),
                                        column.type)
                             : stored_number(*number, column);
}

void note_compared_value(const std::string &sql, text_span span, const query_condition &kept,
                         const qry_lib_catalog_column_ &column, std::vector<finding> &notes) {
    text_span value = span;
    if (kept.quoted) {
        const std::size_t last_quote = sql.rfind('\'', span.place + span.length - 1);
        value.length = last_quote + 1 - span.place;
    }
    if (!is_text(column)) {
        note_number_text(sql, value, span.place + (kept.quoted ? 1 : 0), kept, column, notes);
    } else if (kept.quoted) {
        note_inner_quotes(value, kept, notes);
    } else {
        note_bare_text(sql, value, kept.value, notes);
    }
    note_pattern(value, kept, notes);
    if (value.length < span.length) {
        notes.push_back(left_over(sql, {value.place + value.length, span.length - value.length},
                                  "behind the quoted value was dropped", "a value ends with its last quote"));
    }
}

void note_written_value(const std::string &sql, const assignment &given,
                        const qry_lib_catalog_column_ &column, std::vector<finding> &notes) {
    const text_span span{given.place, given.length};
    const auto *number = std::get_if<std::int64_t>(&given.value);
    if (number == nullptr) {
        if (!is_text(column)) {
            note_stored_text(sql, span, std::get<std::string>(given.value), column, notes);
        }
    } else if (!is_text(column)) {
        note_stored_number(span, *number, stored_number(*number, column), column, notes);
    } else if (*number > largest_int) {
        notes.push_back(at(
            span,
            fmt::format("{} is stored as the text {}", *number, narrowed(*number, QRY_LIB_COLUMN_TYPE_INT)),
            "write the text between single quotes"));
    }
}

} // namespace qrytext
