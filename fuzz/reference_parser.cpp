// The rules of the dialect, as its page states them.
#include "fuzz/reference_parser.h"

namespace reference {

namespace {

constexpr std::size_t none = std::string::npos;
constexpr std::size_t longest_column = 31;
constexpr std::size_t longest_value = 2999;
constexpr std::size_t most_conditions = 65535;

// Only the blank is free, at both ends.
std::string without_blanks(const std::string &text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == none ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> split(std::string text, const std::string &at) {
    std::vector<std::string> pieces;
    for (std::size_t found = text.find(at); found != none; found = text.find(at)) {
        pieces.push_back(text.substr(0, found));
        text.erase(0, found + at.size());
    }
    pieces.push_back(text);
    return pieces;
}

enum class value_form { plain, prefix, list, prefix_list, refused };

struct operator_word {
    const char *text;
    int operation;
    value_form form;
};

// The first that occurs is taken, not the leftmost.
constexpr operator_word operators[] = {
    {"==", 0, value_form::refused},
    {" LIKE ", 6, value_form::prefix},
    {" INLIKE", 6, value_form::prefix_list},
    {" IN", 0, value_form::list},
    {">=", 5, value_form::plain},
    {"<=", 4, value_form::plain},
    {">", 3, value_form::plain},
    {"<", 2, value_form::plain},
    {"!=", 1, value_form::plain},
    {"=", 0, value_form::plain},
};

// An operator whose first place is behind the condition's first quote is passed over.
const operator_word *find_operator(const std::string &text, std::size_t &at) {
    for (const operator_word &word : operators) {
        at = text.find(word.text);
        if (at != none && at <= text.find('\'')) {
            return &word;
        }
    }
    return nullptr;
}

// A quoted value ends at the last quote; what stands behind it is dropped.
bool read_value(std::string text, bool is_prefix, condition &out) {
    text = without_blanks(text);
    if (text.empty()) {
        return false;
    }
    out.quoted = text[0] == '\'';
    if (out.quoted) {
        text.erase(0, 1);
        const std::size_t end = text.rfind('\'');
        if (end == none) {
            return false;
        }
        text.erase(end);
    }
    if (is_prefix) {
        if (text.empty() || text.back() != '%') {
            return false;
        }
        text.pop_back();
    }
    out.value = text;
    return text.size() <= longest_value;
}

// Brackets are only peeled: any number in front and behind.
bool peel_brackets(std::string &text) {
    if (text.find('(') == none || text.find(')') == none) {
        return false;
    }
    while (!text.empty() && text.front() == '(') {
        text.erase(0, 1);
    }
    while (!text.empty() && text.back() == ')') {
        text.pop_back();
    }
    return !text.empty();
}

bool read_comparison(const std::string &text, int join, std::vector<condition> &out) {
    std::size_t at = 0;
    const operator_word *word = find_operator(text, at);
    if (word == nullptr || word->form == value_form::refused) {
        return false;
    }
    condition read{without_blanks(text.substr(0, at)), "", word->operation, join, false};
    if (read.column.empty() || read.column.size() > longest_column) {
        return false;
    }
    std::vector<std::string> values{text.substr(at + std::string(word->text).size())};
    const bool is_list = word->form == value_form::list || word->form == value_form::prefix_list;
    if (is_list) {
        std::string list = without_blanks(values[0]);
        if (!peel_brackets(list)) {
            return false;
        }
        values = split(list, ",");
        read.join = 2; // the elements of a list are joined by OR, whatever stands around them
    }
    for (const std::string &value : values) {
        if (!read_value(value, word->operation == 6, read)) {
            return false;
        }
        out.push_back(read);
    }
    return true;
}

bool has(const std::string &text, const char *word) {
    return text.find(word) != none;
}

} // namespace

std::optional<std::vector<condition>> read_conditions(const std::string &phrase) {
    const bool any_or = has(phrase, " OR ");
    if (any_or && has(phrase, " AND ")) {
        return std::nullopt;
    }
    std::vector<condition> conditions;
    for (const std::string &piece : split(phrase, any_or ? " OR " : " AND ")) {
        if (!read_comparison(piece, any_or ? 2 : 1, conditions)) {
            return std::nullopt;
        }
    }
    return conditions.size() > most_conditions ? std::nullopt : std::make_optional(conditions);
}

std::optional<sorting> read_sorting(const std::string &phrase) {
    const bool descends = has(phrase, " DESC");
    const bool ascends = has(phrase, " ASC");
    if (has(phrase, ",") || (descends && ascends)) {
        return std::nullopt;
    }
    if (without_blanks(phrase).empty()) {
        return sorting{"", 0}; // blanks are no sorting at all
    }
    const std::vector<std::string> pieces = split(phrase, descends ? " DESC" : " ASC");
    const std::string column = without_blanks(pieces[0]);
    if (pieces.size() > 2 || column.empty() || column.size() > longest_column) {
        return std::nullopt;
    }
    return sorting{column, descends ? 2 : 1};
}

} // namespace reference
