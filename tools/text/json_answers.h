// The companion's answers as JSON texts: one function for each answer, and nothing but the form of it.
#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "tools/text/completion.h"
#include "tools/text/explanation.h"
#include "tools/text/statement_report.h"

namespace qrytext {

// `traces` is null, as is `spent` false, where the session did not ask for them.
std::string report_answer(const statement_report &report, const std::deque<std::string> *traces,
                          bool with_cost);

// `report` has the statement's notes and, where `explained` is of no use, its refusal.
std::string explain_answer(const statement_report &report, const explanation &explained);

std::string complete_answer(const std::string &db_name, const completion &found, std::size_t cursor);
std::string text_answer(bool ok, std::string_view text);
std::string load_answer(bool ok, std::string_view text, std::string_view place);
std::string trace_answer(std::string_view line);

// Counts the records in use, which traces. Throws std::runtime_error where that fails.
std::string schema_answer();

std::string version_answer();

} // namespace qrytext
