// Statements that stand on several lines.
#pragma once

#include <string>
#include <string_view>

namespace qrytext {

// Puts the lines of a statement together. A statement ends with ";" at the end of a line; one that stands
// whole on its first line needs none. Between two lines stands one blank instead of the line end and the
// blanks and tabs around it, since only blanks divide words; within a quoted value of INSERT or UPDATE
// everything stays.
class statement_lines {
  public:
    // Whether the next line belongs to the statement.
    bool is_open() const { return !text_.empty(); }

    // Whether `line` begins a statement or a command, before the open one has ended.
    bool is_cut_off_by(std::string_view line) const;

    // What has been put together so far.
    const std::string &text() const { return text_; }

    // Adds a line without its line end. True when the statement has ended: it is to be taken then.
    bool add(std::string_view line);

    // Hands the statement out and starts anew.
    std::string take();

  private:
    void append(std::string_view line);

    std::string text_;
    bool quote_is_open_ = false;
};

// Whether a text begins as a statement does, in capitals.
bool begins_statement(std::string_view text);

// The statement without the semicolon that ends it. All else stays, blanks at the end included, since they
// matter to the library: "ORDER BY " has a sort phrase, though an empty one, and "ORDER BY" has none.
std::string_view without_semicolon(std::string_view text);

} // namespace qrytext
