// What is said of a statement in lines, for people: notes, the place and the code of a refusal, what it
// changed.
#pragma once

#include <string>
#include <string_view>

#include "tools/text/statement_report.h"

namespace qrytext {

// How complaints are written.
struct voice {
    std::string_view fault; // escape sequences before what is wrong and what is noted, and behind both;
    std::string_view note;  // empty where nobody wants colours
    std::string_view off;
    std::string place; // the statement's "FILE:LINE"; may be empty
};

// "error: FILE:LINE: sentence".
std::string complaint(std::string_view sentence, const voice &spoken);

// A line for each note.
std::string describe_notes(const statement_report &report, const voice &spoken);

// A refusal: its place in the text, then code and name, then what was written before it failed.
std::string describe_refusal(const std::string &db_name, const std::string &sql,
                             const statement_report &report, const voice &spoken);

// "9 records deleted", "1 record replaced (key 5 was in use)"; empty for a statement that changes no records.
std::string describe_changes(const std::string &db_name, const std::string &sql,
                             const statement_report &report);

} // namespace qrytext
