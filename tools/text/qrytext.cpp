// The companion's C interface: sessions, and every function's arguments and failures.
#include "tools/text/qrytext.h"

#include <qrylib/types.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "platform/host/qryhost.h"
#include "tools/text/clauses.h"
#include "tools/text/completion.h"
#include "tools/text/explanation.h"
#include "tools/text/json_answers.h"
#include "tools/text/parameters.h"
#include "tools/text/printers.h"
#include "tools/text/schema.h"
#include "tools/text/snapshots.h"
#include "tools/text/statement_lines.h"
#include "tools/text/statement_report.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"
#include "tools/text/trace_capture.h"

struct qrytext_session {
    std::string database;
    std::uint32_t flags;
    std::string answer;
    std::optional<qrytext::result> last_rows;
};

namespace {

using namespace qrytext;

// What is answered where there is no memory to say more.
constexpr const char *no_memory_report =
    R"({"ok":false,"kind":"unknown","code":1,"name":"QRY_LIB_NO_MEMORY","text":"There is no memory.",)"
    R"("changed":{"added":0,"replaced":0,"changed":0,"deleted":0},"notes":[],"refusal":null})";
constexpr const char *no_memory_explanation =
    R"({"ok":false,"kind":"unknown","tables":[],"columns":[],"conditions":[],"order":null,"keys":[],"links":[],)"
    R"("refusal":null,"notes":[]})";
constexpr const char *no_memory_completion = R"({"from":0,"to":0,"candidates":[]})";
constexpr const char *no_memory_text = R"({"ok":false,"text":"there is no memory","place":""})";
constexpr const char *no_memory_schema = R"({"databases":[]})";
constexpr const char *no_memory_trace = R"({"known":false,"function":"","line":0,"code":null,"cause":""})";
constexpr const char *no_memory_diff = R"({"equal":false,"tables":[],"text":"there is no memory"})";
constexpr const char *no_memory_version = R"({"version":""})";

// The answer of `make`, kept in `place`. Callers are C: nothing may be thrown at them.
template <typename Make>
const char *answer_in(std::string &place, const char *otherwise, Make make) noexcept {
    try {
        place = make();
        return place.c_str();
    } catch (const std::exception &) {
        return otherwise;
    }
}

// The answer of a function without a session, or of one that is given none.
std::string &answer_of_thread() {
    thread_local std::string answer;
    return answer;
}

std::string &place_for(qrytext_session *session) {
    return session != nullptr ? session->answer : answer_of_thread();
}

run_rules rules_of(const qrytext_session &session) {
    return {(session.flags & QRYTEXT_READONLY) != 0, (session.flags & QRYTEXT_STRICT) != 0};
}

statement_report missing_argument(const char *sentence) {
    statement_report report;
    report.kind = "unknown";
    report.code = QRY_LIB_INVALID_ARGUMENT;
    report.refusal = finding{0, 0, sentence};
    return report;
}

const char *missing(const qrytext_session *session, const char *statement) {
    if (session == nullptr) {
        return "there is no session";
    }
    return statement == nullptr ? "there is no statement" : nullptr;
}

std::string text_of_statement(const char *statement) {
    return std::string(without_semicolon(statement));
}

void move_place(const bound_statement &bound, finding &found) {
    const std::size_t end = bound.place_before(found.place + found.length);
    found.place = bound.place_before(found.place);
    found.length = std::max(end, found.place) - found.place;
}

// Places in the text with the values become places in the text with the "?".
void move_places(const bound_statement &bound, statement_report &report) {
    for (finding &note : report.notes) {
        move_place(bound, note);
    }
    if (report.refusal) {
        move_place(bound, *report.refusal);
    }
}

std::string run_and_tell(qrytext_session &session, const std::string &sql, const char *parameters) {
    const bound_statement bound =
        parameters == nullptr ? bound_statement{sql, {}, {}} : bind_parameters(sql, parameters);
    if (bound.refusal) {
        statement_report report = missing_argument("");
        report.kind = kind_name(sql);
        report.refusal = bound.refusal;
        return report_answer(report, nullptr, false);
    }
    trace_capture traces;
    statement_report report = run_statement(session.database, bound.sql, rules_of(session), traces);
    move_places(bound, report);
    if (report.rows) {
        session.last_rows = report.rows;
    }
    const bool with_traces = (session.flags & QRYTEXT_TRACES) != 0;
    return report_answer(report, with_traces ? &traces.lines() : nullptr,
                         (session.flags & QRYTEXT_COUNTS) != 0);
}

std::string explain_and_tell(const qrytext_session &session, const std::string &sql) {
    trace_capture traces;
    statement_report report = check_statement(session.database, sql, {}, traces);
    explanation explained;
    if (report.ok) {
        const kept_traces::pause quiet(traces);
        explained = explain(session.database, sql);
        report.ok = explained.code == QRY_LIB_OK;
        report.code = explained.code;
    }
    return explain_answer(report, report.ok ? explained : explanation{});
}

struct export_form {
    std::string_view name;
    std::string (*format)(const result &answer);
};

constexpr export_form export_forms[] = {
    {"csv", format_csv}, {"json", format_json}, {"jsonl", format_jsonl}, {"markdown", format_markdown}};

std::string export_rows(const qrytext_session *session, const char *format) {
    const std::string_view name = format == nullptr ? "" : format;
    const auto *form = std::find_if(std::begin(export_forms), std::end(export_forms),
                                    [&](const export_form &known) { return known.name == name; });
    if (form == std::end(export_forms)) {
        return text_answer(false, "the formats are csv, json, jsonl and markdown");
    }
    if (session == nullptr || !session->last_rows) {
        return text_answer(false, "there is no answer yet");
    }
    return text_answer(true, form->format(*session->last_rows));
}

// "the text: place: sentence", as the workstation refuses a fixture's text.
std::string tell_refused_fixture(std::string_view complaint) {
    constexpr std::string_view between = ": ";
    constexpr std::string_view source = "the text: ";
    complaint.remove_prefix(complaint.substr(0, source.size()) == source ? source.size() : 0);
    const std::size_t end = complaint.find(between);
    return end == std::string_view::npos
               ? load_answer(false, complaint, "")
               : load_answer(false, complaint.substr(end + between.size()), complaint.substr(0, end));
}

void keep_text(void *context, const char *text) {
    *static_cast<std::string *>(context) = text;
}

std::string save_snapshot() {
    std::string text;
    if (qryhost_save_text(keep_text, &text) != 0) {
        return load_answer(false, qryhost_error(), "");
    }
    return snapshot_on_one_line(text);
}

} // namespace

extern "C" {

qrytext_session *qrytext_open(const char *database, uint32_t flags) {
    try {
        if (database == nullptr || !database_exists(database)) {
            return nullptr;
        }
        return std::make_unique<qrytext_session>(qrytext_session{database, flags, "", {}}).release();
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void qrytext_close(qrytext_session *session) {
    const std::unique_ptr<qrytext_session> closed(session);
}

const char *qrytext_run(qrytext_session *session, const char *statement, const char *parameters) {
    return answer_in(place_for(session), no_memory_report, [&] {
        const char *const complaint = missing(session, statement);
        return complaint != nullptr ? report_answer(missing_argument(complaint), nullptr, false)
                                    : run_and_tell(*session, text_of_statement(statement), parameters);
    });
}

const char *qrytext_check(qrytext_session *session, const char *statement) {
    return answer_in(place_for(session), no_memory_report, [&] {
        if (const char *const complaint = missing(session, statement)) {
            return report_answer(missing_argument(complaint), nullptr, false);
        }
        trace_capture traces;
        return report_answer(
            check_statement(session->database, text_of_statement(statement), rules_of(*session), traces),
            nullptr, false);
    });
}

const char *qrytext_explain(qrytext_session *session, const char *statement) {
    return answer_in(place_for(session), no_memory_explanation, [&] {
        const char *const complaint = missing(session, statement);
        return complaint != nullptr ? explain_answer(missing_argument(complaint), {})
                                    : explain_and_tell(*session, text_of_statement(statement));
    });
}

const char *qrytext_complete(qrytext_session *session, const char *text, uint32_t cursor) {
    return answer_in(place_for(session), no_memory_completion, [&] {
        const std::string typed = text == nullptr ? "" : text;
        const std::size_t end = std::min<std::size_t>(cursor, typed.size());
        const std::string database = session == nullptr ? "" : session->database;
        return complete_answer(database, complete(database, typed, end), end);
    });
}

const char *qrytext_export(qrytext_session *session, const char *format) {
    return answer_in(place_for(session), no_memory_text, [&] { return export_rows(session, format); });
}

const char *qrytext_schema(void) {
    return answer_in(answer_of_thread(), no_memory_schema, [] {
        trace_capture traces;
        const kept_traces::pause quiet(traces);
        return schema_answer();
    });
}

const char *qrytext_trace(const char *line) {
    return answer_in(answer_of_thread(), no_memory_trace,
                     [&] { return trace_answer(line == nullptr ? "" : line); });
}

const char *qrytext_load(const char *snapshot, uint32_t /*flags*/) {
    return answer_in(answer_of_thread(), no_memory_text, [&] {
        return qryhost_load_text(snapshot) == 0 ? load_answer(true, "", "")
                                                : tell_refused_fixture(qryhost_error());
    });
}

const char *qrytext_save(uint32_t /*flags*/) {
    return answer_in(answer_of_thread(), no_memory_text, save_snapshot);
}

const char *qrytext_diff(const char *snapshot_a, const char *snapshot_b) {
    return answer_in(answer_of_thread(), no_memory_diff, [&] {
        return compare_snapshots(snapshot_a == nullptr ? "" : snapshot_a,
                                 snapshot_b == nullptr ? "" : snapshot_b);
    });
}

const char *qrytext_version(void) {
    return answer_in(answer_of_thread(), no_memory_version, version_answer);
}

} // extern "C"
