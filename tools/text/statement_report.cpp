// Running, checking, and the counts of what changed.
#include "tools/text/statement_report.h"

#include <qrylib/types.h>

#include <algorithm>
#include <iterator>
#include <new>

#include "tools/text/clauses.h"
#include "tools/text/diagnosis.h"
#include "tools/text/engine.h"
#include "tools/text/foreign_words.h"
#include "tools/text/notes.h"
#include "tools/text/query_reader.h"
#include "tools/text/schema.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"
#include "tools/text/trace_explainer.h"

namespace qrytext {

namespace {

bool was_traced(const kept_traces &traces, std::string_view function, int line) {
    return std::any_of(traces.lines().begin(), traces.lines().end(), [&](const std::string &text) {
        const std::optional<trace_line> parsed = parse_trace(text);
        return parsed && parsed->function == function && parsed->line == line;
    });
}

// Trace points of a write that the platform refused: it was counted, and changed nothing.
constexpr int refused_element = 1183;
constexpr int refused_reset = 680;

// Each record that is reset is one call.
std::uint32_t records_reset(const call_counts &calls, const kept_traces &traces) {
    const std::uint32_t failed = was_traced(traces, "exec_delete", refused_reset) ? 1 : 0;
    return calls[QRYHOST_INIT_TABLE] - std::min(calls[QRYHOST_INIT_TABLE], failed);
}

// Each column of each record is one call; a record that was written in part counts.
std::uint32_t records_written(const call_counts &calls, std::size_t column_num, const kept_traces &traces) {
    const std::uint32_t failed = was_traced(traces, "set_tb_table", refused_element) ? 1 : 0;
    const std::uint32_t written = calls[QRYHOST_SET_TABLE] - std::min(calls[QRYHOST_SET_TABLE], failed);
    const auto columns = static_cast<std::uint32_t>(std::max<std::size_t>(column_num, 1));
    return (written + columns - 1) / columns;
}

// The search for an INSERT's key takes one list for each key column. More lists are the search for a free
// record: the key was not in use.
bool looked_for_free_record(const std::string &db_name, const std::string &table, const call_counts &calls) {
    const std::vector<qry_lib_catalog_column_> columns = table_columns(db_name, table);
    const auto keys =
        std::count_if(columns.begin(), columns.end(), [](const auto &column) { return column.is_key != 0; });
    return calls[QRYHOST_CREATE_LIST] > static_cast<std::uint32_t>(keys);
}

change_counts count_changes(const std::string &db_name, const std::string &sql, const call_counts &calls,
                            const kept_traces &traces) {
    change_counts changes;
    if (kind_of(sql) != statement_kind::write_record) {
        changes.deleted = records_reset(calls, traces);
        return changes;
    }
    const write_statement written = parse_write_statement(sql);
    const std::uint32_t records = records_written(calls, written.values.size(), traces);
    if (!written.is_insert) {
        changes.changed = records;
    } else if (looked_for_free_record(db_name, written.table, calls)) {
        changes.added = records;
    } else {
        changes.replaced = records;
    }
    return changes;
}

statement_report refused(const std::string &sql, finding place) {
    statement_report report;
    report.kind = kind_name(sql);
    report.code = QRY_LIB_NOT_ACCEPTED;
    report.reached_library = false;
    report.refusal = std::move(place);
    return report;
}

finding whole(const std::string &sql, std::string sentence) {
    return {0, sql.size(), std::move(sentence)};
}

std::optional<finding> objection(const std::string &sql, const run_rules &rules) {
    if (rules.readonly && kind_of(sql) != statement_kind::select) {
        return whole(sql, "only SELECT may run here");
    }
    if (rules.safe_updates && takes_every_record(sql)) {
        return finding{0, sql.size(), "this takes every record, and safe updates are on",
                       "write a condition behind WHERE"};
    }
    return sql.find('\0') == std::string::npos
               ? std::nullopt
               : std::optional(whole(sql, "a statement must not hold a zero byte"));
}

// What a look at the statement needs may be missing just now: then nothing is said, and nothing is lost.
std::vector<finding> notes_of(const std::string &db_name, const std::string &sql, kept_traces &traces) {
    const kept_traces::pause quiet(traces);
    try {
        return find_notes(db_name, sql);
    } catch (const std::bad_alloc &) {
        return {};
    }
}

std::optional<finding> place_of_fault(const std::string &db_name, const std::string &sql, std::uint32_t code,
                                      kept_traces &traces) {
    const kept_traces::pause quiet(traces);
    try {
        return diagnose(db_name, sql, code, traces.lines());
    } catch (const std::bad_alloc &) {
        return std::nullopt;
    }
}

statement_report run_in_library(const std::string &db_name, const std::string &sql, kept_traces &traces) {
    statement_report report;
    report.kind = kind_name(sql);
    traces.clear();
    const meter cost;
    try {
        reply answer = execute(db_name, sql);
        report.code = answer.code;
        report.rows = std::move(answer.rows);
    } catch (const std::bad_alloc &) { // the statement's record could not be built
        report.code = QRY_LIB_NO_MEMORY;
    }
    report.spent = cost.spent();
    report.ok = report.code == QRY_LIB_OK;
    report.changed = count_changes(db_name, sql, report.spent.calls, traces);
    if (!report.ok) {
        report.refusal = place_of_fault(db_name, sql, report.code, traces);
    }
    return report;
}

// What the parser says, then the schema, then the analysis of a join.
statement_report look_at(const std::string &db_name, const std::string &sql, kept_traces &traces) {
    statement_report report;
    report.kind = kind_name(sql);
    traces.clear();
    report.code = explain(db_name, sql).code;
    if (report.code != QRY_LIB_OK) {
        report.refusal = place_of_fault(db_name, sql, report.code, traces);
    } else {
        const kept_traces::pause quiet(traces);
        if (find_unknown_name(db_name, sql)) { // then as a run would say it
            report.code = QRY_LIB_INVALID_ARGUMENT;
            report.refusal = diagnose(db_name, sql, report.code, {});
        }
    }
    report.ok = report.code == QRY_LIB_OK;
    return report;
}

// Codes with which the library refuses a statement for what it says.
bool is_about_text(std::uint32_t code) {
    return code == QRY_LIB_NOT_ACCEPTED || code == QRY_LIB_INVALID_ARGUMENT || code == QRY_LIB_TABLE_ARGUMENT;
}

// An INSERT or UPDATE that cannot be read: a word of another dialect says more than what was expected
// instead.
finding unreadable(const std::string &sql, const syntax_error &error) {
    const std::size_t place = std::min(error.place() - 1, sql.size());
    const std::size_t end = std::min(sql.find_first_of(" ,()='", place), sql.size());
    if (const std::optional<advice> said = advice_for(sql.substr(place, end - place))) {
        return {place, end - place, said->sentence, said->hint};
    }
    const std::size_t length = std::max<std::size_t>(end - place, place < sql.size() ? 1 : 0);
    return {place, length, error.sentence(), error.hint()};
}

// The first note is the refusal of a strict run.
statement_report refuse_for(std::vector<finding> notes, const std::string &sql) {
    statement_report report = refused(sql, notes.front());
    report.notes = std::move(notes);
    return report;
}

} // namespace

// A strict run looks before it runs. Any other runs first: the look takes blocks of the memory partition, and
// would take an injected failure that is meant for the statement.
statement_report run_statement(const std::string &db_name, const std::string &sql, const run_rules &rules,
                               kept_traces &traces) {
    if (std::optional<finding> place = objection(sql, rules)) {
        return refused(sql, std::move(*place));
    }
    try {
        if (rules.strict) {
            std::vector<finding> notes = notes_of(db_name, sql, traces);
            return notes.empty() ? run_in_library(db_name, sql, traces) : refuse_for(std::move(notes), sql);
        }
        statement_report report = run_in_library(db_name, sql, traces);
        if (!is_about_text(report.code)) { // else the refusal says more
            report.notes = notes_of(db_name, sql, traces);
        }
        return report;
    } catch (const syntax_error &error) {
        return refused(sql, unreadable(sql, error));
    }
}

statement_report check_statement(const std::string &db_name, const std::string &sql, const run_rules &rules,
                                 kept_traces &traces) {
    if (std::optional<finding> place = objection(sql, rules)) {
        return refused(sql, std::move(*place));
    }
    try {
        std::vector<finding> notes = notes_of(db_name, sql, traces);
        if (rules.strict && !notes.empty()) {
            return refuse_for(std::move(notes), sql);
        }
        statement_report report = look_at(db_name, sql, traces);
        if (report.ok) {
            report.notes = std::move(notes);
        }
        return report;
    } catch (const syntax_error &error) {
        return refused(sql, unreadable(sql, error));
    }
}

statement_report refuse_unfinished(const std::string &sql) {
    return refused(sql, {sql.size(), 0, "the statement does not end here", "write ; behind its last line"});
}

explained_statement explain_statement(const std::string &db_name, const std::string &sql,
                                      kept_traces &traces) {
    explained_statement answer;
    traces.clear();
    try {
        answer.found = explain(db_name, sql);
    } catch (const syntax_error &error) {
        return {refused(sql, unreadable(sql, error)), {}};
    }
    statement_report &report = answer.report;
    report.kind = kind_name(sql);
    report.code = answer.found.code;
    report.ok = report.code == QRY_LIB_OK;
    if (!report.ok) {
        report.refusal = place_of_fault(db_name, sql, report.code, traces);
    }
    return answer;
}

} // namespace qrytext
