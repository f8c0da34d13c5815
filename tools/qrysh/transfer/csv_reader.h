// Comma-separated values as RFC 4180 has them, with the place of every field.
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qrysh {

// Lines and columns count from 1, columns in characters.
struct file_place {
    std::size_t line;
    std::size_t column;
};

struct csv_field {
    std::string text; // without the quotes around it
    file_place place;
};

// What makes a text no CSV, and where.
class csv_error : public std::runtime_error {
  public:
    csv_error(file_place place, const std::string &sentence) : std::runtime_error(sentence), place_(place) {}
    file_place place() const { return place_; }

  private:
    file_place place_;
};

// Reads one row after the other; the text must live as long. Rows end in CR LF or LF; the last one need not.
// A byte-order mark is skipped.
class csv_reader {
  public:
    explicit csv_reader(std::string_view text);

    // Nothing behind the last row. Throws csv_error, also beyond the limits: what no table of any device
    // takes.
    std::optional<std::vector<csv_field>> next();

  private:
    csv_field field();
    std::string plain();
    std::string quoted(file_place begin);
    static void add(std::string &value, char c, file_place begin);

    bool at_end() const { return position_ == text_.size(); }
    bool at_line_end() const;
    bool take_line_end();
    bool take(char wanted);
    char advance();

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t row_num_ = 0;
    file_place place_{1, 1};
};

} // namespace qrysh
