// The command line; apart from the rest because the option library is slow to compile.
#include "tools/qrysh/options.h"

#include <filesystem>
#include <sstream>
#include <system_error>

#include <CLI/CLI.hpp>
#include <qrylib/version.h>

#include "tools/qrysh/printing/output.h"

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
    const bool has_image = !chosen.image.empty() || !chosen.new_image.empty();
    if (!has_image && !chosen.statements.empty() && names_image(chosen.statements.front())) {
        chosen.image = chosen.statements.front();
        chosen.statements.erase(chosen.statements.begin());
    }
}

// Each -c and -f as it stands on the command line.
std::vector<script> in_order(const CLI::App &app, const CLI::Option *line, const CLI::Option *file) {
    std::vector<script> scripts;
    std::size_t lines = 0;
    std::size_t files = 0;
    for (const CLI::Option *given : app.parse_order()) {
        if (given == line) {
            scripts.push_back({false, line->results().at(lines++)});
        } else if (given == file) {
            scripts.push_back({true, file->results().at(files++)});
        }
    }
    return scripts;
}

// The help without blank lines, so that it fits on a screen.
class dense_help : public CLI::Formatter {
  public:
    dense_help() { column_width(24); }

    std::string make_help(const CLI::App *app, std::string /*name*/,
                          CLI::AppFormatMode /*mode*/) const override {
        std::string text = make_description(app);
        for (const CLI::Option *option : app->get_options()) {
            text += option->get_group().empty() ? "" : make_option(option, false);
        }
        return text + app->get_footer() + '\n';
    }
};

} // namespace

options parse_options(int argc, char **argv) {
    options chosen;
    CLI::App app("qrysh [OPTION ...] [IMAGE] [LINE ...]: runs lines, or those of standard input.", "qrysh");
    app.formatter(std::make_shared<dense_help>());
    app.set_help_flag("--help,-h", "print this");
    app.add_option("SQL", chosen.statements)->group(""); // the first line tells of it
    std::vector<std::string> lines;
    std::vector<std::string> files;
    const CLI::Option *const line = app.add_option("-c", lines, "run this line; as -f, may be repeated")
                                        ->option_text("SQL")
                                        ->allow_extra_args(false);
    const CLI::Option *const file = app.add_option("-f", files, "run a file's lines; -: standard input")
                                        ->option_text("FILE")
                                        ->allow_extra_args(false);
    app.add_option("--image", chosen.image, "open a device image")->option_text("FILE");
    app.add_option("--new", chosen.new_image, "create a device image and open it")->option_text("FILE");
    app.add_flag("--sample", chosen.sample, "open the sample device");
    app.add_flag("--roomy", chosen.roomy, "be a device with room for records in every table");
    app.add_option("--check", chosen.check, "examine a device image and end")->option_text("FILE");
    app.add_option("--diff", chosen.diff, "compare two JSON files' records and end")
        ->expected(2)
        ->option_text("A B");
    app.add_option("--fixture", chosen.fixture, "load records from a JSON file first")->option_text("FILE");
    app.add_option("--db", chosen.db, "database of the statements (adbk_db)")->option_text("NAME");
    app.add_option("--mode", chosen.mode, "form of the answers (box or table)")->option_text("MODE");
    app.add_flag("--bail", chosen.bail, "stop at the first error");
    app.add_flag("--readonly", chosen.readonly, "refuse whatever changes records");
    app.add_flag("--safe", chosen.safe, "refuse commands that touch files");
    app.add_flag("--strict", chosen.strict, "refuse statements that get a note");
    app.add_flag("--safe-updates", chosen.safe_updates, "refuse changes of every record in scripts");
    app.add_flag("--force", chosen.force, "replace files without a word");
    app.add_flag("--csv-safe", chosen.csv_safe, "write CSV without formulas");
    app.add_flag("--trace", chosen.trace, "print the library's trace, with causes");
    app.add_flag("--echo", chosen.echo, "print each line above its answer");
    app.set_version_flag("--version", qry_lib_version(), "print the version");
    app.footer("A line is a statement or a command: .help lists the commands. See also qrysh(1).");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        std::ostringstream help;
        std::ostringstream complaint;
        chosen.exit_status = app.exit(error, help, complaint) == 0 ? 0 : 1;
        print(help.str());
        say(complaint.str());
    }
    chosen.scripts = in_order(app, line, file);
    take_image(chosen);
    return chosen;
}

} // namespace qrysh
