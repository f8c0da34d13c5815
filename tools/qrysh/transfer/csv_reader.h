// Comma-separated values as RFC 4180 has them, with the place of every field.
#pragma once

#include <cstddef>
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

// Rows end in CR LF or LF; the last one need not. A byte-order mark is skipped. Throws csv_error.
std::vector<std::vector<csv_field>> read_csv(std::string_view text);

} // namespace qrysh
