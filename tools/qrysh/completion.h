// What may stand where the cursor is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qrysh {

struct completion {
    std::size_t word_begin;              // the word before the cursor begins here
    std::vector<std::string> candidates; // whole words, in order
};

// `line` up to `cursor` is completed by commands at its start, and elsewhere by keywords, the database's
// tables and the columns of the tables that the line names; of every table where it names none.
completion complete(const std::string &db_name, std::string_view line, std::size_t cursor);

// What all candidates begin with.
std::string common_start(const std::vector<std::string> &candidates);

} // namespace qrysh
