// The grammar of the shell's own INSERT and UPDATE.
#include "tools/text/statement_text.h"

#include <charconv>
#include <cstdint>
#include <limits>

#include <fmt/format.h>

#include "qrylib/types.h"
#include "tools/text/text.h"

namespace qrytext {

syntax_error::syntax_error(kind what_kind, std::size_t place, const std::string &sentence, std::string hint)
    : std::runtime_error(fmt::format("at character {}: {}", place, sentence)), kind_(what_kind),
      place_(place), sentence_(sentence), hint_(std::move(hint)) {}

namespace {

constexpr std::string_view name_ends = " ,()='";
constexpr std::int64_t smallest_number = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t largest_number = std::numeric_limits<std::uint32_t>::max();

// Walks the text once, from left to right; every step throws at the place where the text stops making sense.
class scanner {
  public:
    explicit scanner(std::string_view text) : text_(text) {}

    bool at_end() {
        skip_blanks();
        return position_ == text_.size();
    }

    bool take(std::string_view token) {
        skip_blanks();
        if (text_.substr(position_, token.size()) != token) {
            return false;
        }
        position_ += token.size();
        return true;
    }

    void expect(std::string_view token) {
        if (!take(token)) {
            fail(fmt::format("expected \"{}\"", token), "");
        }
    }

    bool take_keyword(std::string_view keyword) {
        skip_blanks();
        if (peek_word() != keyword) {
            return false;
        }
        position_ += keyword.size();
        return true;
    }

    void expect_keyword(std::string_view keyword) {
        if (!take_keyword(keyword)) {
            fail(fmt::format("expected {}", keyword),
                 fmt::format("keywords are upper case: write {}", keyword));
        }
    }

    // The library ignores a setter's over-long name, so its length is tested here.
    std::string expect_name(std::string_view what, std::size_t longest) {
        skip_blanks();
        std::string name(peek_word());
        if (name.empty()) {
            fail(fmt::format("expected a {} name", what), "");
        }
        if (name.size() > longest) {
            fail(fmt::format("a {} name has at most {} characters", what, longest), "");
        }
        position_ += name.size();
        return name;
    }

    void expect_value(assignment &taken) {
        skip_blanks();
        taken.place = position_;
        if (position_ < text_.size() && text_[position_] == '\'') {
            taken.value = quoted_value();
        } else {
            taken.value = number_value();
        }
        taken.length = position_ - taken.place;
    }

    std::size_t place() const { return position_; }

    std::string rest() {
        skip_blanks();
        return std::string(trim(text_.substr(position_)));
    }

    [[noreturn]] void fail(const std::string &sentence, const std::string &hint) const {
        fail(position_ == text_.size() ? syntax_error::kind::cut_off : syntax_error::kind::wrong, sentence,
             hint);
    }

  private:
    [[noreturn]] void fail(syntax_error::kind kind, const std::string &sentence,
                           const std::string &hint) const {
        throw syntax_error(kind, position_ + 1, sentence, hint);
    }

    void skip_blanks() {
        while (position_ < text_.size() && text_[position_] == ' ') {
            ++position_;
        }
    }

    std::string_view peek_word() const {
        const std::string_view rest_of_text = text_.substr(position_);
        return rest_of_text.substr(0, rest_of_text.find_first_of(name_ends));
    }

    std::string quoted_value() {
        std::string value;
        for (std::size_t i = position_ + 1; i < text_.size(); ++i) {
            if (text_[i] != '\'') {
                value += text_[i];
            } else if (i + 1 < text_.size() && text_[i + 1] == '\'') {
                value += text_[i++];
            } else {
                if (value.size() > QRY_LIB_STRING_MAX) {
                    fail(fmt::format("a value has at most {} characters", QRY_LIB_STRING_MAX),
                         "write a shorter one");
                }
                position_ = i + 1;
                return value;
            }
        }
        fail(syntax_error::kind::open_quote, "the quote is not closed", "write 'TEXT'");
    }

    std::int64_t number_value() {
        const std::string_view word = peek_word();
        const std::string_view digits = word.substr(0, 1) == "+" ? word.substr(1) : word;
        const char *const end = digits.data() + digits.size();
        std::int64_t number = 0;
        const auto [stop, error] = std::from_chars(digits.data(), end, number);
        if (stop != end || error == std::errc::invalid_argument || word.substr(0, 2) == "+-") {
            fail("expected a number or a text between single quotes", "write 1 or 'TEXT'");
        }
        if (error != std::errc() || number < smallest_number || number > largest_number) {
            fail(fmt::format("a number lies between {} and {}", smallest_number, largest_number), "");
        }
        position_ += word.size();
        return number;
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

std::string expect_column(scanner &scan) {
    return scan.expect_name("column", QRY_LIB_COLUMN_NAME_MAX);
}
std::string expect_table(scanner &scan) {
    return scan.expect_name("table", QRY_LIB_TABLE_NAME_MAX);
}

void parse_values(scanner &scan, std::vector<assignment> &values) {
    scan.expect("(");
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0 && !scan.take(",")) {
            scan.fail("expected \",\" and a value",
                      fmt::format("write {} values, one for each column", values.size()));
        }
        scan.expect_value(values[i]);
    }
    if (!scan.take(")")) {
        scan.fail("expected \")\" after the last column's value",
                  "write a value for each column, and no more");
    }
}

write_statement parse_insert(scanner &scan) {
    write_statement statement{true, "", {}, ""};
    scan.expect_keyword("INTO");
    statement.table = expect_table(scan);
    if (!scan.take("(")) {
        scan.fail("expected \"(\" and the columns to write",
                  "write INSERT INTO TABLE (COLUMN, ...) VALUES (VALUE, ...)");
    }
    do {
        statement.values.push_back({expect_column(scan), std::int64_t{0}});
    } while (scan.take(","));
    scan.expect(")");
    scan.expect_keyword("VALUES");
    parse_values(scan, statement.values);
    if (!scan.at_end()) {
        scan.fail("expected the end of the statement", "write an INSERT for each record");
    }
    return statement;
}

write_statement parse_update(scanner &scan) {
    write_statement statement{false, "", {}, ""};
    statement.table = expect_table(scan);
    scan.expect_keyword("SET");
    do {
        statement.values.push_back({expect_column(scan), std::int64_t{0}});
        scan.expect("=");
        scan.expect_value(statement.values.back());
    } while (scan.take(","));
    if (scan.at_end()) {
        return statement;
    }
    if (!scan.take_keyword("WHERE")) {
        scan.fail("expected \",\", WHERE or the end of the statement", "");
    }
    statement.where = scan.rest();
    statement.where_place = scan.place();
    if (statement.where.empty()) {
        scan.fail("expected a condition after WHERE", "write WHERE COLUMN = 1");
    }
    return statement;
}

} // namespace

write_statement parse_write_statement(std::string_view text) {
    scanner scan(text);
    if (scan.take_keyword("INSERT")) {
        return parse_insert(scan);
    }
    if (scan.take_keyword("UPDATE")) {
        return parse_update(scan);
    }
    scan.fail("expected INSERT or UPDATE", "keywords are upper case");
}

} // namespace qrytext
