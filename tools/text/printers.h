// Results as text, one function for each output mode. Nothing is ever cut.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/text/result.h"

namespace qrytext {

enum class output_mode { box, table, csv, json, jsonl, markdown, line, insert };

// The mode called `name`, if there is one.
std::optional<output_mode> mode_named(std::string_view name);

// "box, table, ...": every mode's name.
std::string mode_names();

// True for the modes that people read; the others are read by programs, which want nothing but the answer.
bool is_for_people(output_mode mode);

// The whole answer, line ends included.
std::string format_result(output_mode mode, const result &answer);

// Columns aligned by what a terminal shows, numbers to the right, and the number of rows below.
std::string format_table(const result &answer);

// The same inside lines.
std::string format_box(const result &answer);

// A table as Markdown has it.
std::string format_markdown(const result &answer);

// One value a line, a blank line between rows.
std::string format_line(const result &answer);

// RFC 4180: a header line, fields quoted where they must be, lines that end in CR LF.
std::string format_csv(const result &answer);

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
