// Where a value ends is not for quotes to say: they protect nothing in this dialect, and a secret may hold
// some. So a value ends at the first quote behind which the text goes on as a condition does; without one,
// with the text. What is masked too much costs a replay a statement, what is masked too little costs a
// secret.
#include "tools/field/text_mask.h"

#include <cstring>
#include <string_view>

#include "exec/schema/schema.h"
#include "exec/schema/secret_columns.h"

namespace field {

namespace {

bool is_name_character(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}
bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool equal_names(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (upper(a[i]) != upper(b[i])) {
            return false;
        }
    }
    return true;
}

bool is_secret_name(std::string_view name) {
    for (const std::string_view secret : norvane::secret_columns) {
        if (equal_names(name, secret)) {
            return true;
        }
    }
    return false;
}

bool is_column(std::string_view name) {
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                if (name == column.info.name) {
                    return true;
                }
            }
        }
    }
    return false;
}

class text_masker {
  public:
    text_masker(const masking &masks, char *text, std::size_t length)
        : masks_(masks), text_(text), length_(length) {}

    bool run();

  private:
    struct word {
        std::size_t from;
        std::size_t to;
    };

    std::string_view view(std::size_t from, std::size_t to) const { return {text_ + from, to - from}; }
    std::string_view view(const word &each) const { return view(each.from, each.to); }
    char at(std::size_t place) const { return place < length_ ? text_[place] : '\0'; }

    word next_word(std::size_t from) const;
    std::size_t skip_blanks(std::size_t from) const;
    std::size_t skip_operator(std::size_t from, bool &is_list) const;
    bool is_compared_before(std::size_t name) const;
    bool is_listed(std::size_t behind_name) const;
    bool goes_on(std::size_t from) const;
    bool is_condition(std::size_t from) const;
    bool reads_conditions() const;

    std::size_t mask_value(std::size_t from);
    std::size_t mask_list(std::size_t from);
    void mask_item(std::size_t from, std::size_t to);
    void mask(std::size_t from, std::size_t to);
    void mask_rest(std::size_t from);

    const masking &masks_;
    char *text_;
    std::size_t length_;
    bool has_masked_ = false;
};

text_masker::word text_masker::next_word(std::size_t from) const {
    while (from < length_ && !is_name_character(text_[from])) {
        ++from;
    }
    std::size_t to = from;
    while (to < length_ && is_name_character(text_[to])) {
        ++to;
    }
    return {from, to};
}

std::size_t text_masker::skip_blanks(std::size_t from) const {
    while (from < length_ && is_blank(text_[from])) {
        ++from;
    }
    return from;
}

// Behind an operator; `from` itself where there is none.
std::size_t text_masker::skip_operator(std::size_t from, bool &is_list) const {
    is_list = false;
    std::size_t place = skip_blanks(from);
    const std::size_t first = place;
    while (place < length_ && std::strchr("=<>!", text_[place]) != nullptr) {
        ++place;
    }
    if (place != first) {
        return place;
    }
    const word found = next_word(place);
    if (found.from != place) {
        return from;
    }
    is_list = equal_names(view(found), "IN") || equal_names(view(found), "INLIKE");
    return is_list || equal_names(view(found), "LIKE") ? found.to : from;
}

// A value before the name, as in 'x' = PASSWD.
bool text_masker::is_compared_before(std::size_t name) const {
    while (name > 0 && (is_name_character(text_[name - 1]) || text_[name - 1] == '.')) {
        --name;
    }
    while (name > 0 && is_blank(text_[name - 1])) {
        --name;
    }
    return name > 0 && std::strchr("=<>!'\"", text_[name - 1]) != nullptr;
}

// In a list of columns, or of those to sort by.
bool text_masker::is_listed(std::size_t behind_name) const {
    const std::size_t place = skip_blanks(behind_name);
    if (place == length_ || text_[place] == ',' || text_[place] == ';') {
        return true;
    }
    const word found = next_word(place);
    constexpr std::string_view behind[] = {"FROM", "ASC", "DESC"};
    for (const std::string_view each : behind) {
        if (found.from == place && equal_names(view(found), each)) {
            return true;
        }
    }
    return false;
}

// A column and an operator.
bool text_masker::is_condition(std::size_t from) const {
    const std::size_t first = skip_blanks(from);
    word name = next_word(first);
    if (name.from != first) {
        return false;
    }
    if (at(name.to) == '.') {
        name = next_word(name.to);
    }
    bool is_list = false;
    return is_column(view(name)) && skip_operator(name.to, is_list) != name.to;
}

// Behind a value: the end, another condition, or the order.
bool text_masker::goes_on(std::size_t from) const {
    const std::size_t place = skip_blanks(from);
    if (place == length_ || (text_[place] == ';' && skip_blanks(place + 1) == length_)) {
        return true;
    }
    const word found = next_word(place);
    if (found.from != place || place == from) {
        return false;
    }
    if (view(found) == "AND" || view(found) == "OR") {
        return is_condition(found.to);
    }
    return view(found) == "ORDER" && view(next_word(found.to)) == "BY";
}

// A statement of another kind, an INSERT for example, has its values anywhere.
bool text_masker::reads_conditions() const {
    const word first = next_word(0);
    constexpr std::string_view others[] = {"INSERT", "UPDATE", "CREATE", "DROP", "REPLACE"};
    for (const std::string_view each : others) {
        if (equal_names(view(first), each)) {
            return false;
        }
    }
    return true;
}

void text_masker::mask(std::size_t from, std::size_t to) {
    if (from < to) {
        masks_.mask(text_ + from, to - from);
        has_masked_ = true;
    }
}

void text_masker::mask_rest(std::size_t from) {
    mask(from, length_);
}

// A value of a list, or one that is compared: its quotes and the % of a beginning are no part of it.
void text_masker::mask_item(std::size_t from, std::size_t to) {
    while (from < to && is_blank(text_[from])) {
        ++from;
    }
    while (to > from && is_blank(text_[to - 1])) {
        --to;
    }
    if (to - from >= 2 && (text_[from] == '\'' || text_[from] == '"') && text_[to - 1] == text_[from]) {
        ++from;
        --to;
    }
    if (to > from && text_[to - 1] == '%') {
        --to;
    }
    mask(from, to);
}

std::size_t text_masker::mask_value(std::size_t from) {
    const std::size_t first = skip_blanks(from);
    const char quote = at(first);
    const bool is_quoted = quote == '\'' || quote == '"';
    for (std::size_t end = first + 1; end <= length_; ++end) {
        const bool may_end = is_quoted ? text_[end - 1] == quote && end > first + 1
                                       : end == length_ || is_blank(text_[end]) || text_[end] == ';';
        if (may_end && goes_on(end)) {
            mask_item(first, end);
            return end;
        }
    }
    mask_rest(first);
    return length_;
}

std::size_t text_masker::mask_list(std::size_t from) {
    const std::size_t open = skip_blanks(from);
    if (at(open) != '(') {
        mask_rest(open);
        return length_;
    }
    for (std::size_t close = open + 1; close < length_; ++close) {
        if (text_[close] != ')' || !goes_on(close + 1)) {
            continue;
        }
        for (std::size_t item = open + 1; item <= close;) {
            std::size_t end = item;
            while (end < close && text_[end] != ',') {
                ++end;
            }
            mask_item(item, end);
            item = end + 1;
        }
        return close + 1;
    }
    mask_rest(open + 1);
    return length_;
}

bool text_masker::run() {
    for (word each = next_word(0); each.from < length_;) {
        if (!is_secret_name(view(each))) {
            each = next_word(each.to);
            continue;
        }
        if (is_compared_before(each.from)) {
            mask_rest(0);
            return true;
        }
        bool is_list = false;
        const std::size_t value = skip_operator(each.to, is_list);
        std::size_t next = each.to;
        if (!reads_conditions() || (value == each.to && !is_listed(each.to))) {
            mask_rest(each.to);
            next = length_;
        } else if (value != each.to) {
            next = is_list ? mask_list(value) : mask_value(value);
        }
        each = next_word(next);
    }
    return has_masked_;
}

} // namespace

bool mask_text(const masking &masks, char *text, std::size_t length) {
    return text_masker(masks, text, length).run();
}

} // namespace field
