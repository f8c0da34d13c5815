// JSON values of texts that may hold any bytes. Only sources that build or read JSON include this: the JSON
// library is slow to compile.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace qrytext {

using json_value = nlohmann::ordered_json;

// The text as a string; {"hex": ...} where it is not UTF-8.
json_value json_text(std::string_view text);

// The text of a string or a {"hex"}; nothing for anything else.
std::optional<std::string> text_of(const json_value &value);

// On one line, without a character that cannot be printed.
std::string one_line(const json_value &value);

} // namespace qrytext
