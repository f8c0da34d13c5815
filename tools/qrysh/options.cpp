// The command line; apart from the rest because the option library is slow to compile.
#include "tools/qrysh/options.h"

#include <filesystem>
#include <system_error>

#include <CLI/CLI.hpp>
#include <qrylib/version.h>

#include "tools/qrysh/commands.h"

namespace qrysh {

namespace {

// A statement has blanks and a command begins with ".", so few words can be meant either way; --image settles
// those.
bool names_image(const std::string &word) {
    const bool ends_in_img = word.size() > 4 && word.compare(word.size() - 4, 4, ".img") == 0;
    const bool is_path = word.find('/') != std::string::npos || ends_in_img;
    if (word.empty() || word.find(' ') != std::string::npos || (word.front() == '.' && !is_path)) {
        return false;
    }
    std::error_code ignored;
    return is_path || std::filesystem::exists(word, ignored);
}

void take_image(options &chosen) {
    if (chosen.image.empty() && !chosen.statements.empty() && names_image(chosen.statements.front())) {
        chosen.image = chosen.statements.front();
        chosen.statements.erase(chosen.statements.begin());
    }
}

} // namespace

options parse_options(int argc, char **argv) {
    options chosen;
    CLI::App app("Asks and changes the records of a simulated device.", "qrysh");
    app.add_option("--image", chosen.image, "open this device image; it is created when it is not there")
        ->option_text("FILE");
    app.add_option("--check", chosen.check, "examine this device image, change nothing and end")
        ->option_text("FILE");
    app.add_option("--fixture", chosen.fixture, "load records from this JSON file first")
        ->option_text("FILE");
    app.add_option("--db", chosen.db, "send statements to this database (adbk_db)")->option_text("NAME");
    app.add_option("--mode", chosen.mode, "print answers as table, csv or json (table)")->option_text("MODE");
    app.add_flag("--trace", chosen.trace, "print the library's trace, with causes, to standard error");
    app.add_flag("--echo", chosen.echo, "print each line above its answer");
    app.add_option("SQL", chosen.statements,
                   "statements and commands; read from standard input if none. The first may be the device "
                   "image: a word without blanks that has a \"/\", ends in .img or names a file");
    app.set_version_flag("--version", qry_lib_version());
    app.footer(command_help());
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        chosen.exit_status = app.exit(error) == 0 ? 0 : 1;
    }
    take_image(chosen);
    return chosen;
}

} // namespace qrysh
