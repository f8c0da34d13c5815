// A statement run, or looked at without running it, and all that is to be said of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/text/explanation.h"
#include "tools/text/finding.h"
#include "tools/text/kept_traces.h"
#include "tools/text/meter.h"
#include "tools/text/result.h"

namespace qrytext {

// Records that a statement changed, those before a failure included.
struct change_counts {
    std::uint32_t added = 0;
    std::uint32_t replaced = 0; // by an INSERT whose key was in use
    std::uint32_t changed = 0;
    std::uint32_t deleted = 0;
};

struct statement_report {
    bool ok = false;
    bool reached_library = true; // false: the rules, or the grammar of INSERT and UPDATE, stood before it
    std::string kind;       // "select", "count", "insert", "update", "delete", "drop", "create", "unknown"
    std::uint32_t code = 0; // the library's; 0xDB00 too for what never reached it
    std::optional<result> rows; // a SELECT's answer
    change_counts changed;
    std::vector<finding> notes;
    std::optional<finding> refusal;
    cost spent{};
};

struct run_rules {
    bool readonly = false;     // only SELECT is run
    bool strict = false;       // a statement with a note is not run
    bool safe_updates = false; // nor one that changes every record
};

// Runs a statement. `traces` must receive the library's lines; those of the statement are in it afterwards.
statement_report run_statement(const std::string &db_name, const std::string &sql, const run_rules &rules,
                               kept_traces &traces);

// Refuses what would be refused before it ran, and runs nothing.
statement_report check_statement(const std::string &db_name, const std::string &sql, const run_rules &rules,
                                 kept_traces &traces);

// The refusal of a statement whose lines have ended, or another has begun, before it did.
statement_report refuse_unfinished(const std::string &sql);

struct explained_statement {
    statement_report report; // not ok: why there is no explanation
    explanation found;
};

// Explains a statement. Reads the default record and nothing else.
explained_statement explain_statement(const std::string &db_name, const std::string &sql,
                                      kept_traces &traces);

} // namespace qrytext
