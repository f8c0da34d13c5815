// qrysh: a shell over the library and the workstation's simulated device.
#include <langinfo.h>

#include <clocale>
#include <exception>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "tools/qrysh/commands/command_completion.h"
#include "tools/qrysh/commands/device.h"
#include "tools/qrysh/commands/diff_command.h"
#include "tools/qrysh/commands/dispatcher.h"
#include "tools/qrysh/commands/session.h"
#include "tools/qrysh/options.h"
#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/line_source.h"
#include "tools/qrysh/prompt/personal_file.h"
#include "tools/qrysh/roomy.h"

namespace {

using namespace qrysh;
using namespace qrytext;

// Lines are typed, and answers can be.
bool reads_terminal(const options &chosen) {
    return chosen.scripts.empty() && chosen.statements.empty() && input_is_terminal();
}

void take_switches(session &shell, const options &chosen) {
    settings &set = shell.options();
    set.mode = output_is_terminal() ? output_mode::box : output_mode::table;
    set.echo = chosen.echo;
    set.readonly = chosen.readonly;
    set.safe = chosen.safe;
    set.strict = chosen.strict;
    set.safe_updates = chosen.safe_updates;
    set.bail = chosen.bail;
    set.force = chosen.force;
    set.csv_safe = chosen.csv_safe;
    set.asks = reads_terminal(chosen);
}

// A script does not depend on whose home it runs in: only who types has settings of their own. False when
// they say to leave.
bool read_settings(session &shell) {
    const std::string path = personal_file("QRYSH_SETTINGS", ".qryshrc");
    std::error_code ignored;
    if (path.empty() || !std::filesystem::exists(path, ignored)) {
        return true;
    }
    try {
        return run_file(shell, path) != outcome::quit;
    } catch (const std::system_error &error) { // it cannot be read: the shell goes on
        session::fail(error.what());
        return true;
    }
}

bool load_fixture(session &shell, const std::string &path) {
    if (session::load(path) == outcome::failed) {
        return false;
    }
    if (shell.device() == private_memory) {
        shell.set_device(fmt::format("{} in memory", path));
    }
    return true;
}

// What the command line says goes before what the settings say.
bool set_up(session &shell, const options &chosen) {
    take_switches(shell, chosen);
    if (open_device(shell, {chosen.image, chosen.new_image, chosen.sample}) == outcome::failed) {
        return false;
    }
    if (!chosen.fixture.empty() && !load_fixture(shell, chosen.fixture)) {
        return false;
    }
    if (reads_terminal(chosen) && !read_settings(shell)) {
        return false;
    }
    if (chosen.trace) {
        shell.traces().set_printing(true);
    }
    if (!chosen.db.empty() && shell.use_database(chosen.db) == outcome::failed) {
        return false;
    }
    return chosen.mode.empty() || shell.use_mode(chosen.mode) != outcome::failed;
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
        [&] { return lines.prompt(); }, [&] { return lines.drop_unfinished(); },
        [&](std::string_view line) { return lines.whole(line); }};
}

// In the order in which they are read.
std::vector<std::unique_ptr<line_source>> open_sources(const options &chosen, prompt_hooks hooks) {
    std::vector<std::unique_ptr<line_source>> sources;
    for (const script &one : chosen.scripts) {
        sources.push_back(!one.is_file      ? open_argument(one.text)
                          : one.text == "-" ? open_input(hooks)
                                            : open_file(one.text));
    }
    for (const std::string &statement : chosen.statements) {
        sources.push_back(open_argument(statement));
    }
    if (sources.empty()) {
        sources.push_back(open_input(std::move(hooks)));
    }
    return sources;
}

// Texts are UTF-8, and so must be what is typed, whatever the locale says.
void choose_letters() {
    const bool is_set = std::setlocale(LC_CTYPE, "") != nullptr;
    const bool is_utf8 = is_set && std::string_view(nl_langinfo(CODESET)) == "UTF-8";
    if (!is_utf8 && std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr && input_is_terminal()) {
        say("note: this machine has no locale with UTF-8; letters beyond ASCII cannot be typed\n");
    }
}

int diff(const options &chosen) {
    const auto usual = output_is_terminal() ? output_mode::box : output_mode::table;
    return diff_files(chosen.diff[0], chosen.diff[1], mode_named(chosen.mode).value_or(usual));
}

int run(int argc, char **argv) {
    const options chosen = parse_options(argc, argv);
    if (chosen.exit_status >= 0) {
        return chosen.exit_status;
    }
    if (chosen.roomy) {
        return become_roomy(argv);
    }
    if (!chosen.check.empty()) {
        return session::check(chosen.check) == outcome::failed ? 1 : 0;
    }
    if (!chosen.diff.empty()) {
        return diff(chosen);
    }
    session shell;
    if (!set_up(shell, chosen)) {
        return 1;
    }
    if (reads_terminal(chosen)) {
        greet(shell, QRYSH_PROGRAM);
    }
    dispatcher roof(shell);
    for (const std::unique_ptr<line_source> &lines : open_sources(chosen, hooks_of(shell, roof))) {
        if (roof.run_all(*lines) != outcome::done) {
            break;
        }
    }
    end_redirection();
    return shell.has_failed() ? 1 : 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        choose_letters();
        return run(argc, argv);
    } catch (const std::exception &error) {
        session::fail(error.what());
        return 1;
    }
}
