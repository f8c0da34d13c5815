// Lines told apart, and commands carried out.
#include "tools/qrysh/commands/dispatcher.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/command_table.h"
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

struct command_action {
    std::string_view name;
    outcome (*run)(session &shell, const std::string &argument);
};

// One for each row of the table of commands.
constexpr command_action actions[] = {
    {".databases", show_databases},
    {".db", use_database},
    {".dump", dump_tables},
    {".echo", switch_echo},
    {".exit", quit},
    {".explain", explain_statement},
    {".export", export_answer},
    {".fault", inject_fault},
    {".help", show_help},
    {".import", import_file},
    {".load", load},
    {".mode", use_mode},
    {".quit", quit},
    {".record", show_record},
    {".save", save},
    {".schema", show_schema},
    {".strict", switch_strict},
    {".tables", show_tables},
    {".timer", switch_timer},
    {".trace", switch_trace},
    {".watch", watch},
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
        return action->run(shell, argument);
    } catch (const std::runtime_error &error) { // a file, the store or the output failed: the shell goes on
        return session::fail(error.what());
    }
}

std::string_view without_return(std::string_view line) {
    return line.substr(0, line.size() - (!line.empty() && line.back() == '\r' ? 1 : 0));
}

} // namespace

outcome answer(session &shell, std::string_view text) {
    if (trim(text).substr(0, 1) == ".") {
        return run_command(shell, trim(text));
    }
    const std::string sql(without_semicolon(text));
    return trim(sql).empty() ? outcome::done : shell.run_statement(sql);
}

outcome dispatcher::run(std::string_view line) {
    if (shell_.options().echo) {
        const std::string_view shown = without_return(line);
        say(shown.empty() ? "\n" : fmt::format("{}{}\n", prompt_for(unfinished()), shown));
    }
    if (line.find('\0') != std::string_view::npos) {
        lines_.take();
        return session::fail("a line must not hold a zero byte");
    }
    if (!lines_.is_open()) {
        const std::string_view text = trim(without_return(line));
        if (text.empty() || text.substr(0, 2) == "--") {
            return outcome::done;
        }
        if (text.front() == '.') {
            return run_command(shell_, text);
        }
    }
    return lines_.add(line, !shell_.options().asks) ? answer(shell_, lines_.take()) : outcome::done;
}

outcome dispatcher::make_way_for(std::string_view line) {
    if (lines_.is_held_before(line)) {
        return run_rest();
    }
    return lines_.is_cut_off_by(line)
               ? session::fail(
                     fmt::format("not run, since it does not end with \";\": {}", printable(lines_.take())))
               : outcome::done;
}

outcome dispatcher::run_rest() {
    return lines_.is_open() ? answer(shell_, lines_.take()) : outcome::done;
}

} // namespace qrysh
