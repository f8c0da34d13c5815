// The command line; apart from the rest because the option library is slow to compile.
#include "tools/qrysh/options.h"

#include <CLI/CLI.hpp>
#include <qrylib/version.h>

#include "tools/qrysh/commands.h"

namespace qrysh {

options parse_options(int argc, char **argv) {
    options chosen;
    CLI::App app("Asks and changes the records of a simulated device.", "qrysh");
    app.add_option("--fixture", chosen.fixture, "load records from this JSON file first")
        ->option_text("FILE");
    app.add_option("--db", chosen.db, "send statements to this database (adbk_db)")->option_text("NAME");
    app.add_option("--mode", chosen.mode, "print answers as table, csv or json (table)")->option_text("MODE");
    app.add_flag("--trace", chosen.trace, "print the library's trace, with causes, to standard error");
    app.add_flag("--echo", chosen.echo, "print each line above its answer");
    app.add_option("SQL", chosen.statements, "statements and commands; read from standard input if none");
    app.set_version_flag("--version", qry_lib_version());
    app.footer(command_help());
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        chosen.exit_status = app.exit(error) == 0 ? 0 : 1;
    }
    return chosen;
}

} // namespace qrysh
