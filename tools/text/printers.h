// Results as text, one function for each output mode. Nothing is ever cut: what is wider than the terminal is
// laid out in another way.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/text/result.h"

namespace qrytext {

enum class output_mode { box, table, csv, tabs, list, json, jsonl, markdown, line, insert };

// The mode called `name`, if there is one.
std::optional<output_mode> mode_named(std::string_view name);

std::string mode_name(output_mode mode);

// "box, table, ...": every mode's name.
std::string mode_names();

// True for the modes that people read; the others are read by programs, which want nothing but the answer.
bool is_for_people(output_mode mode);

// True for the modes with escapes of their own, which hold in files as well.
bool is_json(output_mode mode);

// The answer with every text as printable() has it: what a terminal may be given in any other mode.
result printable_answer(result answer);

// The answer with a quote before every text that a spreadsheet would take for a formula: one that begins with
// = + - @, a tab or a carriage return.
result guarded_answer(result answer);

struct layout {
    bool titles = true;      // print the columns' titles where they stand above the rows
    std::size_t columns = 0; // of the terminal on which people read it; 0: none
};

// The whole answer, line ends included. A table or box that is wider than the terminal becomes lines.
std::string format_result(output_mode mode, const result &answer, const layout &as = {});

// "(2 rows)", as a line.
std::string count_of_rows(const result &answer);

// Columns aligned by what a terminal shows, numbers to the right, and the number of rows below.
std::string format_table(const result &answer);

// The same inside lines.
std::string format_box(const result &answer);

// A table as Markdown has it.
std::string format_markdown(const result &answer);

// One value a line, a blank line between rows. A value that goes beyond the terminal's columns goes on below
// where it began; 0: there is no terminal.
std::string format_line(const result &answer, std::size_t columns);

// RFC 4180: a header line, fields quoted where they must be, lines that end in CR LF.
std::string format_csv(const result &answer);

// One row a line, titles above, a tab or "|" between values; control characters are written as escapes.
std::string format_tabs(const result &answer);
std::string format_list(const result &answer);

// An array with one object a row, one row a line. Bytes that are not UTF-8 become U+FFFD.
std::string format_json(const result &answer);

// One object a line.
std::string format_jsonl(const result &answer);

// One INSERT a row, as the shell reads it.
std::string format_insert(const result &answer);

// A value as it stands: a number in decimal, a text without quotes.
std::string cell_text(const cell &value);

// A value as INSERT and UPDATE take it: a text between single quotes.
std::string literal(const cell &value);

} // namespace qrytext
