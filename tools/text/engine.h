// Statements carried out: the way of each kind into the library and back.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/text/result.h"

namespace qrytext {

// The way that a text takes. Told from its first word in any case: whoever reads the text then, the library
// or the shell's own grammar, refuses what is not in capitals and says so.
enum class statement_kind { select, write_record, other_text };

statement_kind kind_of(std::string_view sql);

struct reply {
    std::uint32_t code;         // 0, or why there is no answer
    std::optional<result> rows; // a SELECT's answer
};

// Throws syntax_error for an INSERT or UPDATE that the shell cannot read, std::bad_alloc when its record
// cannot be built.
reply execute(const std::string &db_name, const std::string &sql);

// Counting is a query like any other: it traces, and throws std::runtime_error where it fails.
std::int64_t records_in_use(const std::string &db_name, const std::string &table_name);

// The first table that a SELECT names; empty where none can be told.
std::string first_table(std::string_view sql);

} // namespace qrytext
