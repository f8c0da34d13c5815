// A query's answer as the shell prints it: titles and rows of numbers and texts.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace qrytext {

// Wide enough for both the signed and the unsigned 32-bit numbers of a record.
using cell = std::variant<std::int64_t, std::string>;

// What the titles of an answer stand for.
struct result_column {
    std::string table; // empty for the column of a count
    std::string name;
    bool is_text;
};

// Every row has as many cells as there are titles.
struct result {
    std::vector<std::string> titles;
    std::vector<std::vector<cell>> rows;
    std::string table = {};                  // what the rows are records of; may be empty
    std::vector<result_column> columns = {}; // of an answer; a listing has none
};

} // namespace qrytext
