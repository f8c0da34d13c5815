// qrylib-replay: shows a recording, and runs it against the library.
#include <qrylib/version.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>

#include "tools/field/replay.h"
#include "tools/files/whole_file.h"

namespace {

constexpr int wrong_command_line = 2;
constexpr std::size_t file_size_max = std::size_t{1024} * 1024 * 1024 + field::header_size;

struct options {
    std::string file;
    std::string copy;
    int listed = -1; // 0: all calls; above: the values before that call
    bool slowest = false;
    bool failed = false;
    unsigned times = 1;
};

void print(const std::string &text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
        throw std::runtime_error("standard output cannot be written");
    }
}

// A recording that is still written is read twice: what the second look finds overwritten was not whole at
// the first.
std::string read(const std::string &path) {
    std::string file = qryfiles::read_file(path, file_size_max);
    const std::string again = qryfiles::read_file(path, file_size_max);
    if (file.size() == again.size() && file.size() >= field::header_size) {
        file.replace(field::place_tail, sizeof(std::uint32_t), again, field::place_tail,
                     sizeof(std::uint32_t));
    }
    return file;
}

void list(const field::recording &recorded, const options &chosen) {
    if (chosen.listed > 0) {
        print(field::values_before(recorded, static_cast<std::uint32_t>(chosen.listed)));
        return;
    }
    const field::listing order = chosen.slowest  ? field::listing::slowest
                                 : chosen.failed ? field::listing::failed
                                                 : field::listing::in_order;
    print(field::about(recorded) + field::call_table(recorded, order));
}

int run_replay(const field::recording &recorded, const options &chosen) {
    print(field::about(recorded));
    if (!recorded.has_values) {
        throw std::runtime_error("it was recorded without values, and can only be listed");
    }
    const auto begin = std::chrono::steady_clock::now();
    field::replay_result result;
    for (unsigned i = 0; i < chosen.times; ++i) {
        result = field::replay(recorded);
    }
    const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
    if (chosen.times == 1) {
        for (const std::string &line : result.incomplete) {
            print(line + "\n");
        }
    }
    print(result.first + field::sums_text(result.sums));
    if (chosen.times > 1) {
        char line[96];
        static_cast<void>(std::snprintf(line, sizeof line, "%u times, %.1f microseconds each\n", chosen.times,
                                        taken.count() / chosen.times));
        print(line);
    }
    return result.sums.different == 0 ? 0 : 1;
}

field::recording understand(const std::string &file, const std::string &path) {
    try {
        return field::read_recording(file);
    } catch (const std::runtime_error &error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

int run(const options &chosen) {
    const std::string file = read(chosen.file);
    if (!chosen.copy.empty()) {
        qryfiles::write_file(chosen.copy, file);
        return 0;
    }
    const field::recording recorded = understand(file, chosen.file);
    if (chosen.listed >= 0 || chosen.slowest || chosen.failed) {
        list(recorded, chosen);
        return 0;
    }
    return run_replay(recorded, chosen);
}

int parse(int argc, char **argv, options &chosen) {
    CLI::App app("Runs the calls of a recording against the library and tells the first difference.",
                 "qrylib-replay");
    app.get_formatter()->column_width(24);
    app.add_option("FILE", chosen.file, "what libqrylib-record.so wrote")->required();
    app.add_option("--list", chosen.listed, "show the calls, or the values seen before one")
        ->option_text("[N]")
        ->expected(0, 1)
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--slowest", chosen.slowest, "show the calls, the slowest first");
    app.add_flag("--failed", chosen.failed, "show the calls that failed");
    app.add_option("--times", chosen.times, "run this often, and tell how long it took")
        ->option_text("N")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--copy", chosen.copy, "copy a recording that is still written")->option_text("TO");
    app.set_version_flag("--version", qry_lib_version());
    app.footer("See also qrylib-replay(1).");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : wrong_command_line;
    }
    if (app.count("--list") != 0 && chosen.listed < 0) {
        chosen.listed = 0;
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
        return run(chosen);
    } catch (const std::exception &error) {
        static_cast<void>(std::fprintf(stderr, "qrylib-replay: %s\n", error.what()));
        return wrong_command_line;
    }
}
