// Statements run, and what is said of each.
#include "tools/qrysh/commands/session.h"

#include <utility>

#include <fmt/format.h>

#include "platform/host/qryhost.h"
#include "tools/files/whole_file.h"
#include "tools/qrysh/commands/command_table.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/clauses.h"
#include "tools/text/json_answers.h"
#include "tools/text/meter.h"
#include "tools/text/near_match.h"
#include "tools/text/report_text.h"
#include "tools/text/schema.h"
#include "tools/text/statement_lines.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

void print_finding(void * /*context*/, int is_damage, const char *text) {
    print(fmt::format("{}: {}\n", is_damage != 0 ? "damage" : "note", printable(text)));
}

outcome report_host(int result) {
    return result == 0 ? outcome::done : session::fail(qryhost_error());
}

} // namespace

outcome session::run_statement(const std::string &sql) {
    const bool is_asked_for = settings_.asks && !settings_.readonly && takes_every_record(sql);
    return is_asked_for ? run_when_sure(sql) : run_at_once(sql);
}

// A paste brings the next line as the answer: it may be the WHERE that was meant to go on with the statement.
outcome session::run_when_sure(const std::string &sql) {
    const std::string typed = ask("this takes every record; type yes to go on: ");
    if (begins_condition(typed)) {
        return run_statement(fmt::format("{} {}", sql, trim(without_semicolon(typed))));
    }
    return typed == "yes" ? run_at_once(sql) : fail("not run");
}

outcome session::run_at_once(const std::string &sql) {
    const bool is_unasked = settings_.safe_updates && !settings_.asks;
    return tell(sql, qrytext::run_statement(database_, sql,
                                            {settings_.readonly, settings_.strict, is_unasked}, traces_));
}

outcome session::tell(const std::string &sql, const statement_report &report) {
    if (report.ok || !is_json(settings_.mode)) {
        say(describe_notes(report, error_voice()));
    }
    if (!report.ok) {
        complain(sql, report);
    } else if (report.rows) {
        show(*report.rows);
    } else if (settings_.changes.value_or(is_for_people(settings_.mode))) {
        const std::string changes = describe_changes(database_, sql, report);
        say(fmt::format("{}\n", changes.empty() ? "ok" : changes));
    }
    if (settings_.timer) {
        say(describe_cost(report.spent, report.rows ? report.rows->rows.size() : 0));
    }
    return report.ok ? outcome::done : outcome::failed;
}

// What no statement begins with may be the name of a command.
outcome session::complain(const std::string &sql, statement_report report) {
    if (std::optional<finding> &place = report.refusal; place && place->is_unknown) {
        place->hint = near_hint('.' + sql.substr(place->place, place->length), command_names());
    }
    if (is_json(settings_.mode)) { // who reads JSON reads errors so too
        print(report_answer(report, nullptr, false) + '\n');
    } else {
        say(describe_refusal(database_, sql, report, error_voice()));
    }
    return outcome::failed;
}

outcome session::use_database(const std::string &name) {
    if (!database_exists(name)) {
        return fail(fmt::format("there is no database \"{}\"{}", printable(name),
                                nearest(name, database_names()).empty()
                                    ? "; .databases lists them"
                                    : did_you_mean(name, database_names())));
    }
    database_ = name;
    return outcome::done;
}

outcome session::use_mode(const std::string &name) {
    const std::optional<output_mode> mode = mode_named(name);
    if (!mode) {
        return fail(fmt::format("there is no mode \"{}\"; the modes are {}", printable(name), mode_names()));
    }
    settings_.mode = *mode;
    return outcome::done;
}

outcome session::open(const std::string &image_path) {
    if (qryhost_open(image_path.empty() ? nullptr : image_path.c_str()) != 0) {
        return fail(qryhost_error());
    }
    device_ = image_path.empty() ? private_memory : image_path;
    return outcome::done;
}

outcome session::load(const std::string &path) {
    return report_host(qryhost_load(path.c_str()));
}

outcome session::save(const std::string &path) {
    std::string text;
    const auto take = [](void *context, const char *json) { *static_cast<std::string *>(context) = json; };
    return qryhost_save_text(take, &text) == 0 ? write_file(path, text) : fail(qryhost_error());
}

bool session::may_replace(const std::string &path) const {
    if (settings_.force || qryfiles::what_stands(path) != qryfiles::standing::file) {
        return true;
    }
    if (settings_.asks) {
        return ask(fmt::format("{} is there; type yes to replace it: ", printable(path))) == "yes";
    }
    say(fmt::format("{} is there and is replaced\n", path));
    return true;
}

outcome session::write_file(const std::string &path, std::string_view content) const {
    if (!may_replace(path)) {
        return fail("not written");
    }
    qryfiles::write_file(path, content, settings_.force ? qryfiles::care::none : qryfiles::care::usual);
    return outcome::done;
}

outcome session::check(const std::string &image_path) {
    return report_host(qryhost_check(image_path.c_str(), print_finding, nullptr));
}

result session::as_shown(const result &answer) const {
    result shown = settings_.mode == output_mode::csv && settings_.csv_safe ? guarded_answer(answer) : answer;
    return output_is_terminal() && !is_json(settings_.mode) ? printable_answer(std::move(shown)) : shown;
}

void session::show(const result &answer) {
    present(format_result(settings_.mode, as_shown(answer), {settings_.headers, terminal_columns()}));
    last_answer_ = answer;
}

outcome session::refuse_table(const std::string &name) const {
    const std::vector<std::string> elsewhere = databases_with(name);
    std::string advice = did_you_mean(name, table_names(database_));
    if (!elsewhere.empty()) {
        advice = fmt::format("; {} has it: .db {}", elsewhere.front(), elsewhere.front());
    } else if (advice.empty()) {
        advice = "; .tables lists them";
    }
    return fail(fmt::format("there is no table \"{}\" in {}{}", printable(name), database_, advice));
}

outcome session::fail(std::string_view sentence) {
    say(complaint(complaints_go_to_terminal() ? printable(sentence) : std::string(sentence), error_voice()));
    return outcome::failed;
}

} // namespace qrysh
