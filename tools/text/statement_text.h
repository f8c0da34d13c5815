// INSERT and UPDATE as the shell reads them. The dialect's text has neither; the shell turns both into
// statement records.
//
//   INSERT INTO table (column, ...) VALUES (value, ...)
//   UPDATE table SET column = value, ... [WHERE condition]
//
// Keywords are upper case and blanks separate words, as in the dialect. A value is a decimal number of 32
// bits, with or without sign, or a text between single quotes in which '' stands for one quote. The condition
// is the dialect's own and is not looked into.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/result.h"

namespace qrytext {

struct assignment {
    std::string column;
    cell value;
    std::size_t place = 0; // of the value in the text, quotes included
    std::size_t length = 0;
};

struct write_statement {
    bool is_insert;
    std::string table;
    std::vector<assignment> values;
    std::string where; // empty: every row
    std::size_t where_place = 0;
};

// What is wrong with a text, and at which of its characters, counted from 1 in bytes.
class syntax_error : public std::runtime_error {
  public:
    enum class kind {
        wrong,     // more text would not mend it
        cut_off,   // it ends where something was expected
        open_quote // it ends between quotes
    };

    syntax_error(kind what_kind, std::size_t place, const std::string &sentence, std::string hint);
    kind what_kind() const { return kind_; }
    std::size_t place() const { return place_; }
    const std::string &sentence() const { return sentence_; } // without its place
    const std::string &hint() const { return hint_; }         // what to write instead; may be empty

  private:
    kind kind_;
    std::size_t place_;
    std::string sentence_;
    std::string hint_;
};

// Throws syntax_error.
write_statement parse_write_statement(std::string_view text);

} // namespace qrytext
