// The records that are measured, and this library with them: filled and queried through public functions
// alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

constexpr const char *table_names[] = {"DEPT_TBL", "EDIT_CNT_TBL"};

struct column {
    std::string name;
    bool is_text;
    bool is_key;
};

std::vector<column> columns_of(const char *table);
std::uint16_t capacity(const char *table);

// What the column of record `id`, counted from 1, holds.
std::string text_value(const column &column, int id);
std::uint32_t number_value(const column &column, int id);

// Exits with a sentence where `holds` is false.
void require(bool holds, const std::string &what);

// Folds a value into what was read; all who read fold alike, so that their answers can be compared. A text
// counts with its length and its ends: enough to tell wrong answers, and cheap beside reading it.
std::uint64_t fold(std::uint64_t seed, std::uint64_t value);
std::uint64_t fold(std::uint64_t seed, const char *text, std::size_t length);

// How many departments there are: what the element tables were built for.
std::uint16_t department_num();

// Fills the tables, all columns.
void fill_element_tables();

// Runs a SELECT and reads every value; what it read, folded into one number.
std::uint64_t query(const char *sql);

} // namespace bench
