// qrylib-snapshot: writes a device's records as a fixture, and puts one back.
#include <qrylib/version.h>

#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>

#include "tools/field/restore.h"
#include "tools/field/snapshot.h"
#include "tools/files/whole_file.h"

namespace {

constexpr int wrong_command_line = 2;
constexpr std::size_t file_size_max = std::size_t{16} * 1024 * 1024;

struct options {
    std::vector<std::string> databases;
    std::vector<std::string> tables;
    std::string output;
    std::string restored;
    bool with_secrets = false;
    bool dry_run = false;
};

void print(const std::string &text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
        throw field::failure("standard output cannot be written");
    }
}

void take(const options &chosen) {
    const field::selection selected = field::select(chosen.databases, chosen.tables);
    std::vector<std::uint8_t> region = field::read_device(selected);
    if (!chosen.with_secrets) {
        field::mask_secrets(region);
    }
    const std::string text = field::snapshot_text(region, selected, !chosen.with_secrets);
    if (chosen.output.empty()) {
        print(text);
    } else {
        qryfiles::write_file(chosen.output, text);
    }
}

std::string number_of(std::size_t number, const char *what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

void restore(const options &chosen) {
    const field::restore_plan plan =
        field::plan_restore(field::parse_snapshot(qryfiles::read_file(chosen.restored, file_size_max)));
    std::string told;
    for (const std::string &line : plan.lines) {
        told += line + "\n";
    }
    told += number_of(plan.changes.size(), "value") + " of " + number_of(plan.records, "record") +
            (chosen.dry_run ? " would change" : " to change") + "\n";
    if (plan.kept_secrets > 0) {
        told += number_of(plan.kept_secrets, "masked value") +
                (plan.kept_secrets == 1 ? " stays as it is" : " stay as they are") + " on the device\n";
    }
    print(told);
    if (!chosen.dry_run) {
        field::carry_out(plan);
        print("done\n");
    }
}

void run(const options &chosen) {
    if (chosen.restored.empty()) {
        take(chosen);
    } else {
        restore(chosen);
    }
}

int parse(int argc, char **argv, options &chosen) {
    CLI::App app("Writes the device's records, default records and settings as a JSON fixture.",
                 "qrylib-snapshot");
    app.get_formatter()->column_width(24);
    app.add_option("FILE", chosen.output, "write to it, and not to standard output");
    app.add_option("--db", chosen.databases, "this database alone; may be repeated")
        ->option_text("NAME")
        ->allow_extra_args(false);
    app.add_option("--table", chosen.tables, "this table alone (adbk_db.PSN_TBL); may be repeated")
        ->option_text("NAME")
        ->allow_extra_args(false);
    app.add_flag("--with-secrets", chosen.with_secrets, "write passwords and codes as they are");
    auto *const restored =
        app.add_option("--restore", chosen.restored, "put a snapshot back, telling what changes")
            ->option_text("FILE");
    app.add_flag("--dry-run", chosen.dry_run, "tell what --restore would change, and end")->needs(restored);
    for (const char *const other : {"FILE", "--db", "--table", "--with-secrets"}) {
        restored->excludes(app.get_option(other));
    }
    app.set_version_flag("--version", qry_lib_version());
    app.footer("See also qrylib-snapshot(1).");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : wrong_command_line;
    }
    return -1;
}

} // namespace

int main(int argc, char **argv) {
    try {
        options chosen;
        if (const int status = parse(argc, argv, chosen); status >= 0) {
            return status;
        }
        run(chosen);
        return 0;
    } catch (const std::exception &error) {
        static_cast<void>(std::fprintf(stderr, "qrylib-snapshot: %s\n", error.what()));
        return 1;
    }
}
