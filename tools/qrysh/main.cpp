// qrysh: a shell over the library and the workstation's simulated device.
#include <clocale>
#include <cstdio>
#include <exception>

#include "tools/qrysh/line_source.h"
#include "tools/qrysh/options.h"
#include "tools/qrysh/output.h"
#include "tools/qrysh/session.h"

namespace {

using namespace qrysh;

bool set_up(session &shell, const options &chosen) {
    settings &set = shell.options();
    set.mode = output_is_terminal() ? output_mode::box : output_mode::table;
    set.echo = chosen.echo;
    set.readonly = chosen.readonly;
    set.safe = chosen.safe;
    if (!chosen.image.empty() && shell.open(chosen.image) == outcome::failed) {
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

// In the order in which they are read.
std::vector<std::unique_ptr<line_source>> open_sources(session &shell, const options &chosen) {
    std::vector<std::unique_ptr<line_source>> sources;
    if (!chosen.commands.empty()) {
        sources.push_back(open_arguments(chosen.commands));
    }
    if (!chosen.file.empty()) {
        sources.push_back(open_file(chosen.file));
    }
    if (!chosen.statements.empty()) {
        sources.push_back(open_arguments(chosen.statements));
    }
    if (sources.empty()) {
        sources.push_back(open_input([&shell](std::string_view line, std::size_t cursor) {
            return complete(shell.database(), line, cursor);
        }));
    }
    return sources;
}

// How reading the lines ended: quit, failed for good, or done.
outcome run_lines(session &shell, line_source &lines, bool bail, int &status) {
    while (const std::optional<std::string> line = lines.next()) {
        const outcome answer = shell.run(*line);
        if (answer == outcome::quit) {
            return answer;
        }
        if (answer == outcome::failed) {
            status = 1;
            if (bail) {
                return answer;
            }
        }
    }
    return outcome::done;
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
    int status = 0;
    for (const std::unique_ptr<line_source> &lines : open_sources(shell, chosen)) {
        if (run_lines(shell, *lines, chosen.bail, status) != outcome::done) {
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
