// qrysh: a shell over the library and the workstation's simulated device.
#include <clocale>
#include <cstdio>
#include <exception>

#include "tools/qrysh/commands/command_completion.h"
#include "tools/qrysh/commands/device.h"
#include "tools/qrysh/commands/dispatcher.h"
#include "tools/qrysh/commands/session.h"
#include "tools/qrysh/options.h"
#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/line_source.h"

namespace {

using namespace qrysh;
using namespace qrytext;

// Lines are typed, and answers can be.
bool reads_terminal(const options &chosen) {
    return chosen.commands.empty() && chosen.file.empty() && chosen.statements.empty() && input_is_terminal();
}

bool set_up(session &shell, const options &chosen) {
    settings &set = shell.options();
    set.mode = output_is_terminal() ? output_mode::box : output_mode::table;
    set.echo = chosen.echo;
    set.readonly = chosen.readonly;
    set.safe = chosen.safe;
    set.strict = chosen.strict;
    set.safe_updates = chosen.safe_updates;
    set.asks = reads_terminal(chosen);
    if (open_device(shell, {chosen.image, chosen.new_image, chosen.sample}) == outcome::failed) {
        return false;
    }
    if (chosen.trace) {
        shell.traces().set_printing(true);
    }
    if (!chosen.db.empty() && shell.use_database(chosen.db) == outcome::failed) {
        return false;
    }
    if (!chosen.mode.empty() && shell.use_mode(chosen.mode) == outcome::failed) {
        return false;
    }
    return chosen.fixture.empty() || shell.load(chosen.fixture) != outcome::failed;
}

// The lines before are completed with: they may name the tables.
completion complete_after(const session &shell, const dispatcher &lines, std::string_view line,
                          std::size_t cursor) {
    std::string before = lines.unfinished();
    if (!before.empty()) {
        before += ' ';
    }
    completion found = complete_line(shell.database(), before + std::string(line), before.size() + cursor);
    found.word_begin -= before.size();
    return found;
}

prompt_hooks hooks_of(session &shell, dispatcher &lines) {
    return {
        [&](std::string_view line, std::size_t cursor) { return complete_after(shell, lines, line, cursor); },
        [&] { return prompt_for(lines.unfinished()); }, [&] { return lines.drop_unfinished(); }};
}

// In the order in which they are read.
std::vector<std::unique_ptr<line_source>> open_sources(const options &chosen, prompt_hooks hooks) {
    std::vector<std::unique_ptr<line_source>> sources;
    for (const std::string &command : chosen.commands) {
        sources.push_back(open_argument(command));
    }
    if (!chosen.file.empty()) {
        sources.push_back(open_file(chosen.file));
    }
    for (const std::string &statement : chosen.statements) {
        sources.push_back(open_argument(statement));
    }
    if (sources.empty()) {
        sources.push_back(open_input(std::move(hooks)));
    }
    return sources;
}

// How reading the lines ended: quit, failed for good, or done.
outcome run_lines(dispatcher &shell, line_source &lines, bool bail, int &status) {
    for (;;) {
        const std::optional<std::string> line = lines.next();
        outcome answer = line ? shell.make_way_for(*line) : shell.run_rest();
        if (line && (answer == outcome::done || !bail)) {
            status = answer == outcome::failed ? 1 : status;
            answer = shell.run(*line);
        }
        status = answer == outcome::failed ? 1 : status;
        if (answer == outcome::quit || (answer == outcome::failed && bail)) {
            return answer;
        }
        if (!line) {
            return outcome::done;
        }
    }
}

int run(int argc, char **argv) {
    const options chosen = parse_options(argc, argv);
    if (chosen.exit_status >= 0) {
        return chosen.exit_status;
    }
    if (!chosen.check.empty()) {
        return session::check(chosen.check) == outcome::failed ? 1 : 0;
    }
    session shell;
    if (!set_up(shell, chosen)) {
        return 1;
    }
    dispatcher roof(shell);
    int status = 0;
    for (const std::unique_ptr<line_source> &lines : open_sources(chosen, hooks_of(shell, roof))) {
        if (run_lines(roof, *lines, chosen.bail, status) != outcome::done) {
            break;
        }
    }
    return status;
}

} // namespace

int main(int argc, char **argv) {
    static_cast<void>(std::setlocale(LC_CTYPE, "")); // without the locale, the plain one stays
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        static_cast<void>(std::fprintf(stderr, "error: %s\n", error.what()));
        return 1;
    }
}
