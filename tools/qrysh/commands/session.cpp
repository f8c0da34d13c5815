// Statements run, and what is said of each.
#include "tools/qrysh/commands/session.h"

#include <qrylib/types.h>

#include <new>

#include <fmt/format.h>

#include "platform/host/qryhost.h"
#include "tools/qrysh/commands/command_table.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/code_text.h"
#include "tools/text/diagnosis.h"
#include "tools/text/engine.h"
#include "tools/text/meter.h"
#include "tools/text/near_match.h"
#include "tools/text/schema.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"
#include "tools/text/trace_explainer.h"

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
    if (settings_.readonly && kind_of(sql) != statement_kind::select) {
        return fail("only SELECT may run: the shell was started with --readonly");
    }
    traces_.clear();
    try {
        return run_and_show(sql);
    } catch (const syntax_error &error) {
        fail(error.what());
        say(point_at(sql, {error.place() - 1, 1, ""}));
        return outcome::failed;
    } catch (const std::bad_alloc &) { // the statement's record could not be built
        return report(sql, QRY_LIB_NO_MEMORY);
    }
}

outcome session::run_and_show(const std::string &sql) {
    const meter cost;
    const reply answer = execute(database_, sql);
    const std::string spent =
        settings_.timer ? describe_cost(cost.spent(), answer.rows ? answer.rows->rows.size() : 0) : "";
    if (answer.code != QRY_LIB_OK) {
        report(sql, answer.code);
    } else if (answer.rows) {
        show(*answer.rows);
    } else if (is_for_people(settings_.mode)) {
        say("ok\n");
    }
    say(spent);
    return answer.code == QRY_LIB_OK ? outcome::done : outcome::failed;
}

outcome session::report(const std::string &sql, std::uint32_t code) {
    fail(describe_code(code));
    if (!traces_.is_printing()) {
        say(explain_failure(traces_.lines()));
    }
    const trace_log::pause quiet(traces_);
    if (std::optional<finding> place = diagnose(database_, sql, code, traces_.lines())) {
        if (place->is_unknown) {
            place->sentence += did_you_mean('.' + sql.substr(place->place, place->length), command_names());
        }
        say(point_at(sql, *place));
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
    return report_host(qryhost_open(image_path.c_str()));
}

outcome session::load(const std::string &path) {
    return report_host(qryhost_load(path.c_str()));
}

outcome session::save(const std::string &path) {
    return report_host(qryhost_save(path.c_str()));
}

outcome session::check(const std::string &image_path) {
    return report_host(qryhost_check(image_path.c_str(), print_finding, nullptr));
}

void session::show(const result &answer) {
    present(format_result(settings_.mode, answer));
    last_answer_ = answer;
}

outcome session::fail(std::string_view sentence) {
    say(fmt::format("error: {}\n", sentence));
    return outcome::failed;
}

} // namespace qrysh
