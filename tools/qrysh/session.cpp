// Dispatch of lines, and the way of each kind of statement into the library and back.
#include "tools/qrysh/session.h"

#include <qrylib/query.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fmt/format.h>

#include "platform/host/qryhost.h"
#include "tools/qrysh/code_text.h"
#include "tools/qrysh/commands.h"
#include "tools/qrysh/listings.h"
#include "tools/qrysh/result_reader.h"
#include "tools/qrysh/statement_builder.h"
#include "tools/qrysh/text.h"
#include "tools/qrysh/trace_explainer.h"

namespace qrysh {

namespace {

void print_trace(void * /*context*/, std::uint32_t /*destination*/, std::uint32_t /*module*/,
                 std::uint32_t /*level*/, const char *text) {
    fmt::print(stderr, "{}\n", explain_trace(text));
}

void print_finding(void * /*context*/, int is_damage, const char *text) {
    print(fmt::format("{}: {}\n", is_damage != 0 ? "damage" : "note", printable(text)));
}

std::string first_word_in_capitals(std::string_view text) {
    std::string word;
    for (const char c : text) {
        const bool is_lower = c >= 'a' && c <= 'z';
        if (!is_lower && (c < 'A' || c > 'Z')) {
            break;
        }
        word += is_lower ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return word;
}

// The statement itself: one ";" behind it is the shell's. All else stays, blanks at the end included, since
// they matter to the library: "ORDER BY " has a sort phrase, though an empty one, and "ORDER BY" has none.
std::string_view without_semicolon(std::string_view line) {
    const std::size_t last = line.find_last_not_of(' ');
    return last != std::string_view::npos && line[last] == ';' ? line.substr(0, last) : line;
}

outcome report_host(int result) {
    return result == 0 ? outcome::done : session::fail(qryhost_error());
}

} // namespace

void print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw std::system_error(errno, std::generic_category(), "standard output");
    }
}

outcome session::run(std::string_view line) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    if (echo_) {
        print(line.empty() ? "\n" : fmt::format("qrysh> {}\n", line));
    }
    const std::string_view text = trim(line);
    if (text.empty() || text.substr(0, 2) == "--") {
        return outcome::done;
    }
    if (text.find('\0') != std::string_view::npos) {
        return fail("a line must not hold a zero byte");
    }
    if (text.front() == '.') {
        return run_command(*this, text);
    }
    return run_statement(std::string(without_semicolon(line)));
}

// The case of the first word does not matter here: whoever reads the text then, the library or the shell's
// own grammar, refuses what is not in capitals and says so.
outcome session::run_statement(const std::string &sql) {
    if (trim(sql).empty()) {
        return outcome::done;
    }
    const std::string word = first_word_in_capitals(trim(sql));
    if (word == "SELECT") {
        return run_select(sql);
    }
    if (word == "INSERT" || word == "UPDATE") {
        return run_write(sql);
    }
    statement bound(database_);
    return finish(qry_lib_db_exec(bound.get(), sql.c_str()));
}

outcome session::run_select(const std::string &sql) {
    statement bound(database_);
    rowset rows;
    const std::uint32_t code = qry_lib_db_exec_query(bound.get(), sql.c_str(), rows.get());
    if (code != QRY_LIB_OK) {
        return fail(describe_code(code));
    }
    show(read_result(*rows.get(), sql));
    return outcome::done;
}

outcome session::run_write(const std::string &sql) {
    try {
        statement record(database_, parse_write_statement(sql));
        return finish(qry_lib_db_stmt_exec(record.get()));
    } catch (const syntax_error &error) {
        return fail(error.what());
    }
}

outcome session::finish(std::uint32_t code) const {
    if (code != QRY_LIB_OK) {
        return fail(describe_code(code));
    }
    if (mode_ == output_mode::table) {
        print("ok\n");
    }
    return outcome::done;
}

outcome session::use_database(const std::string &name) {
    if (!database_exists(name)) {
        return fail(fmt::format("there is no database \"{}\"; .databases lists them", printable(name)));
    }
    database_ = name;
    return outcome::done;
}

outcome session::use_mode(const std::string &name) {
    const std::optional<output_mode> mode = mode_named(name);
    if (!mode) {
        return fail(
            fmt::format("there is no mode \"{}\"; the modes are table, csv and json", printable(name)));
    }
    mode_ = *mode;
    return outcome::done;
}

outcome session::open(const std::string &image_path) {
    return report_host(qryhost_open(image_path.c_str()));
}

outcome session::load(const std::string &path) {
    return report_host(qryhost_load(path.c_str()));
}

outcome session::save(const std::string &path) {
    return report_host(qryhost_save(path.c_str()));
}

outcome session::check(const std::string &image_path) {
    return report_host(qryhost_check(image_path.c_str(), print_finding, nullptr));
}

void session::set_trace(bool on) {
    qryhost_set_trace_sink(on ? print_trace : nullptr, nullptr);
}

void session::show(const result &answer) const {
    print(format_result(mode_, answer));
}

outcome session::fail(std::string_view sentence) {
    fmt::print(stderr, "error: {}\n", sentence);
    return outcome::failed;
}

} // namespace qrysh
