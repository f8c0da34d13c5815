// Lines told apart, and commands carried out.
#include "tools/qrysh/commands/dispatcher.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/commands/command_table.h"
#include "tools/qrysh/commands/foreign_commands.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

outcome show_help(session & /*shell*/, const std::string &name) {
    if (name.empty()) {
        present(command_help());
        return outcome::done;
    }
    const std::string word = name.front() == '.' ? name : '.' + name;
    const command *found = find_command(word);
    if (found == nullptr) {
        return session::fail(no_such_command(word));
    }
    print(fmt::format("{}  {}\n{}", found->usage, found->help, found->details));
    return outcome::done;
}

outcome watch(session &shell, const std::string &order) {
    return watch_line(order, [&](const std::string &line) { return answer(shell, line); });
}

enum class words { one, several };

struct command_action {
    std::string_view name;
    outcome (*run)(session &shell, const std::string &argument);
    words takes = words::one; // several: the command divides them itself
};

// One for each row of the table of commands.
constexpr command_action actions[] = {
    {".changes", switch_changes},
    {".databases", show_databases},
    {".db", use_database},
    {".dump", dump_tables, words::several},
    {".echo", switch_echo},
    {".exit", quit},
    {".explain", explain_statement, words::several},
    {".export", export_answer},
    {".fault", inject_fault, words::several},
    {".headers", switch_headers},
    {".help", show_help},
    {".import", import_file, words::several},
    {".load", load},
    {".mode", use_mode},
    {".once", redirect_once},
    {".open", open_other_device, words::several},
    {".output", redirect_all},
    {".prompt", set_prompt, words::several},
    {".quit", quit},
    {".read", run_file},
    {".record", show_record, words::several},
    {".save", save},
    {".schema", show_schema},
    {".show", show_settings},
    {".strict", switch_strict},
    {".tables", show_tables},
    {".timer", switch_timer},
    {".trace", switch_trace},
    {".watch", watch, words::several},
};

// 0 for what may be done, otherwise the complaint.
std::string objection(const command &asked, const settings &set, const std::string &argument) {
    if (asked.takes == argument::none && !argument.empty()) {
        return fmt::format("{} takes no argument", asked.name);
    }
    if (asked.takes == argument::required && argument.empty()) {
        return fmt::format("{} needs an argument: {}", asked.name, asked.usage);
    }
    if (set.safe && asked.effect != touches::nothing) {
        return fmt::format("{} touches files: the shell was started with --safe", asked.name);
    }
    if (set.readonly && asked.effect == touches::files_and_records) {
        return fmt::format("{} changes records: the shell was started with --readonly", asked.name);
    }
    return "";
}

outcome run_command(session &shell, std::string_view line) {
    const std::size_t name_end = std::min(line.find(' '), line.size());
    const std::string_view name = line.substr(0, name_end);
    const std::string argument(trim(line.substr(name_end)));
    const command *asked = find_command(name);
    if (asked == nullptr) {
        return session::fail(no_such_command(name));
    }
    if (const std::string complaint = objection(*asked, shell.options(), argument); !complaint.empty()) {
        return session::fail(complaint);
    }
    const auto *action = std::find_if(std::begin(actions), std::end(actions),
                                      [&](const command_action &a) { return a.name == name; });
    try {
        return action->run(shell, action->takes == words::one ? one_name(argument) : argument);
    } catch (const std::runtime_error &error) { // a file, the store or the output failed: the shell goes on
        return session::fail(error.what());
    }
}

// Other shells' commands begin so too: they are told what is there.
bool begins_command(std::string_view text) {
    return text.front() == '.' || text.front() == '\\' || text.front() == '?';
}

// A file that stands for standard output and cannot be written ends as that; the shell goes on.
outcome run_statement(session &shell, const std::string &sql) {
    const bool is_redirected = !answer_file().empty();
    try {
        return shell.run_statement(sql);
    } catch (const std::system_error &error) {
        if (!is_redirected) {
            throw;
        }
        return session::fail(error.what());
    }
}

outcome answer_line(session &shell, std::string_view text) {
    const std::string_view line = trim(text);
    if (line.empty()) {
        return outcome::done;
    }
    if (begins_command(line)) {
        return run_command(shell, line);
    }
    const std::string sql(without_semicolon(text));
    return trim(sql).empty() ? outcome::done : run_statement(shell, sql);
}

std::string_view without_return(std::string_view line) {
    return line.substr(0, line.size() - (!line.empty() && line.back() == '\r' ? 1 : 0));
}

// Tabs before a statement are an editor's, and none of its words.
std::string_view without_tabs_before(std::string_view line) {
    const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
    return line.substr(0, begin).find('\t') == std::string_view::npos ? line : line.substr(begin);
}

} // namespace

outcome answer(session &shell, std::string_view text) {
    const outcome answered = answer_line(shell, text);
    end_answer();
    return answered;
}

outcome run_file(session &shell, const std::string &path) {
    constexpr int deepest = 16; // a file that reads itself ends here
    static int depth = 0;
    if (depth == deepest) {
        return session::fail(fmt::format("{}: files read files {} deep", printable(path), deepest));
    }
    const std::unique_ptr<line_source> lines = open_file(path);
    const bool asked = shell.options().asks;
    shell.options().asks = false;
    ++depth;
    const outcome ended = dispatcher(shell).run_all(*lines);
    --depth;
    shell.options().asks = asked;
    return ended;
}

const char *dispatcher::prompt() const {
    const settings &set = shell_.options();
    return (unfinished().empty() ? set.prompt : set.next_prompt).c_str();
}

std::optional<std::string> dispatcher::whole(std::string_view line) const {
    qrytext::statement_lines lines = lines_;
    if (lines.is_cut_off_by(line)) {
        lines.take();
    }
    if (!lines.is_open() && (trim(line).empty() || begins_command(trim(line)))) {
        return std::string(trim(line));
    }
    return lines.add(line, false) ? std::optional(lines.take()) : std::nullopt;
}

outcome dispatcher::run_all(line_source &lines) {
    for (;;) {
        const std::optional<std::string> line = lines.next();
        place_ = lines.place();
        waits_ = lines.goes_on();
        const outcome ended = run_line(line);
        if (ended != outcome::done || !line) {
            set_error_place("");
            return ended;
        }
    }
}

// Nothing: the end of the lines. A failure is the run's end only where it is to be.
outcome dispatcher::run_line(const std::optional<std::string> &line) {
    outcome answered = line ? make_way_for(*line) : run_rest();
    if (line && !ends_run(answered)) {
        answered = run(*line);
    }
    return ends_run(answered) ? answered : outcome::done;
}

bool dispatcher::ends_run(outcome answered) const {
    if (answered == outcome::failed) {
        shell_.note_failure();
    }
    return answered == outcome::quit || (answered == outcome::failed && shell_.options().bail);
}

outcome dispatcher::run(std::string_view line) {
    if (shell_.options().echo) {
        const std::string_view shown = without_return(line);
        say(shown.empty() ? "\n" : fmt::format("{}{}\n", prompt(), shown));
    }
    if (line.find('\0') != std::string_view::npos) {
        lines_.take();
        set_error_place(place_);
        return session::fail("a line must not hold a zero byte");
    }
    outcome ended = outcome::done;
    for (const std::string_view piece : lines_.pieces_of(line)) {
        const outcome answered = run_piece(piece);
        if (ends_run(answered)) {
            return answered;
        }
        ended = answered == outcome::failed ? answered : ended;
    }
    return ended;
}

// A statement's place is that of its first line.
outcome dispatcher::run_piece(std::string_view piece) {
    if (!lines_.is_open()) {
        piece = without_tabs_before(piece);
        set_error_place(place_);
        const std::string_view text = trim(without_return(piece));
        if (text.empty() || text.substr(0, 2) == "--") {
            return outcome::done;
        }
        if (begins_command(text)) {
            return answer(shell_, text);
        }
    }
    return lines_.add(piece, waits_) ? answer(shell_, lines_.take()) : outcome::done;
}

outcome dispatcher::make_way_for(std::string_view line) {
    if (lines_.is_held_before(line)) {
        return run_rest();
    }
    if (!lines_.is_cut_off_by(line)) {
        return outcome::done;
    }
    const std::string unfinished = lines_.take();
    return shell_.complain(unfinished, refuse_unfinished(unfinished));
}

outcome dispatcher::run_rest() {
    return lines_.is_open() ? answer(shell_, lines_.take()) : outcome::done;
}

} // namespace qrysh
