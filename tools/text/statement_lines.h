// Statements that stand on several lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

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

    // Adds a line without its line end. True when the statement has ended: it is to be taken then. With
    // `waits`, a DELETE or UPDATE of every record that no ";" ends is held, since the next line may begin
    // with WHERE.
    bool add(std::string_view line, bool waits);

    // Whether a statement is held, and `line` does not go on with it: it is to be taken first.
    bool is_held_before(std::string_view line) const;

    // A line's statements, or all of it where it goes on between quotes.
    std::vector<std::string_view> pieces_of(std::string_view line) const;

    // Hands the statement out and starts anew.
    std::string take();

  private:
    void append(std::string_view line);

    std::string text_;
    bool quote_is_open_ = false;
    bool is_held_ = false;
};

// The statements of a line, each with its ";" but perhaps the last: cut behind a ";" that another statement
// or a comment follows. A line whose quotes are not beyond doubt is not cut.
std::vector<std::string_view> statements_in(std::string_view line);

// Whether a text begins as a statement does, in capitals.
bool begins_statement(std::string_view text);

// Whether a line begins with WHERE, in any case: who writes "where" means it.
bool begins_condition(std::string_view line);

// The statement without the semicolon that ends it. All else stays, blanks at the end included, since they
// matter to the library: "ORDER BY " has a sort phrase, though an empty one, and "ORDER BY" has none.
std::string_view without_semicolon(std::string_view text);

} // namespace qrytext
