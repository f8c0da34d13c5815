// Results as text: aligned tables, comma-separated values, JSON.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/qrysh/result.h"

namespace qrysh {

enum class output_mode { table, csv, json };

// The mode called `name`, if there is one.
std::optional<output_mode> mode_named(std::string_view name);

// The whole answer, line ends included.
std::string format_result(output_mode mode, const result &answer);

// Columns aligned by what a terminal shows, numbers to the right, and the number of rows below.
std::string format_table(const result &answer);

// RFC 4180: a header line, fields quoted where they must be, lines that end in CR LF.
std::string format_csv(const result &answer);

// An array with one object a row, one row a line. Bytes that are not UTF-8 become U+FFFD.
std::string format_json(const result &answer);

} // namespace qrysh
