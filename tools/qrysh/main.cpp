// qrysh: a shell over the library and the workstation's simulated device.
#include <clocale>
#include <cstdio>
#include <exception>

#include "tools/qrysh/line_source.h"
#include "tools/qrysh/options.h"
#include "tools/qrysh/session.h"

namespace {

using namespace qrysh;

bool set_up(session &shell, const options &chosen) {
    shell.set_echo(chosen.echo);
    if (!chosen.image.empty() && shell.open(chosen.image) == outcome::failed) {
        return false;
    }
    if (chosen.trace) {
        shell.set_trace(true);
    }
    if (!chosen.db.empty() && shell.use_database(chosen.db) == outcome::failed) {
        return false;
    }
    if (!chosen.mode.empty() && shell.use_mode(chosen.mode) == outcome::failed) {
        return false;
    }
    return chosen.fixture.empty() || shell.load(chosen.fixture) != outcome::failed;
}

// The exit status: 1 when any line failed.
int run_lines(session &shell, line_source &lines) {
    int status = 0;
    while (const std::optional<std::string> line = lines.next()) {
        const outcome answer = shell.run(*line);
        if (answer == outcome::quit) {
            break;
        }
        status |= answer == outcome::failed ? 1 : 0;
    }
    return status;
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
    return run_lines(shell, *open_lines(chosen.statements));
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
