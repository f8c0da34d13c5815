// What may stand where the cursor is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qrytext {

struct completion {
    std::size_t word_begin;              // the word before the cursor begins here
    std::vector<std::string> candidates; // whole words, in order
};

// `statement` up to `cursor` is completed by what may stand there: keywords, the database's tables, or the
// columns of the tables that it names; of every table where it names none. Values are not completed.
completion complete(const std::string &db_name, std::string_view statement, std::size_t cursor);

// What a candidate is: "keyword", "table" or "column".
const char *word_kind(const std::string &db_name, const std::string &word);

// Where the word before the cursor begins.
std::size_t word_before(std::string_view text, std::size_t cursor);

// Those of the words that begin as the text from `word_begin` to `cursor` does, in any case, in order.
completion complete_from(std::vector<std::string> words, std::string_view text, std::size_t cursor);

// What all candidates begin with.
std::string common_start(const std::vector<std::string> &candidates);

} // namespace qrytext
