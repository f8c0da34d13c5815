// The table of commands, and the short ones.
#include "tools/qrysh/commands.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/qrysh/command_actions.h"
#include "tools/qrysh/listings.h"
#include "tools/qrysh/near_match.h"
#include "tools/qrysh/output.h"
#include "tools/qrysh/schema.h"
#include "tools/qrysh/text.h"

namespace qrysh {

namespace {

enum class argument { none, optional, required };

// What --safe and --readonly refuse of a command.
enum class touches { nothing, files, files_and_records };

struct command {
    std::string_view name;
    argument takes;
    touches effect;
    std::string_view usage;
    std::string_view help;
    outcome (*run)(session &shell, const std::string &argument);
    std::string_view details; // what .help NAME adds
};

outcome show_tables(session &shell, const std::string & /*unused*/) {
    const trace_log::pause quiet(shell.traces());
    shell.show(list_tables(shell.database()));
    return outcome::done;
}

outcome show_schema(session &shell, const std::string &table) {
    if (!table.empty() && !table_exists(shell.database(), table)) {
        const std::string near = did_you_mean(table, table_names(shell.database()));
        return session::fail(fmt::format("there is no table \"{}\" in {}{}", printable(table),
                                         shell.database(), near.empty() ? "; .tables lists them" : near));
    }
    shell.show(list_columns(shell.database(), table));
    return outcome::done;
}

outcome show_databases(session &shell, const std::string & /*unused*/) {
    const trace_log::pause quiet(shell.traces());
    shell.show(list_databases());
    return outcome::done;
}

outcome use_database(session &shell, const std::string &name) {
    return shell.use_database(name);
}
outcome use_mode(session &shell, const std::string &name) {
    return shell.use_mode(name);
}
outcome quit(session & /*shell*/, const std::string & /*unused*/) {
    return outcome::quit;
}

outcome load(session & /*shell*/, const std::string &path) {
    return session::load(path);
}
outcome save(session & /*shell*/, const std::string &path) {
    return session::save(path);
}

template <typename Setter>
outcome switch_setting(const std::string &word, Setter set) {
    if (word != "on" && word != "off") {
        return session::fail(fmt::format("expected on or off, not \"{}\"", printable(word)));
    }
    set(word == "on");
    return outcome::done;
}
outcome switch_trace(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.traces().set_printing(on); });
}
outcome switch_echo(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().echo = on; });
}
outcome switch_timer(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().timer = on; });
}

outcome show_help(session & /*shell*/, const std::string &name);

constexpr command commands[] = {
    {".databases", argument::none, touches::nothing, ".databases",
     "list the databases, capacities, records in use", show_databases, ""},
    {".db", argument::required, touches::nothing, ".db NAME", "send statements to another database",
     use_database, ""},
    {".dump", argument::optional, touches::nothing, ".dump [TABLE] [FILE]",
     "write every record, as statements or to a file", dump_tables,
     "Without FILE the records of the current database, or of TABLE, are printed as statements that\n"
     "this shell reads. With FILE its ending decides: .sql, .json, .jsonl, .csv (the last two for one\n"
     "table), or .sqlite and .db for a SQLite database with typed columns and primary keys.\n"},
    {".echo", argument::required, touches::nothing, ".echo on|off", "print each line above its answer",
     switch_echo, ""},
    {".exit", argument::none, touches::nothing, ".exit", "leave the shell", quit, ""},
    {".explain", argument::required, touches::nothing, ".explain SQL", "show how a statement is understood",
     explain_statement,
     "Prints the analyzed query, the queries and links of a join, and the filter keys in the order in\n"
     "which the search tests them. Nothing is read or written but the default record.\n"},
    {".export", argument::required, touches::files, ".export FILE", "write the last answer to a file",
     export_answer, "The ending decides as for .dump: .csv, .json, .jsonl, .md, .sql, .sqlite or .db.\n"},
    {".fault", argument::required, touches::nothing, ".fault ...", "make platform calls fail", inject_fault,
     ".fault CALL SKIP TIMES CODE  lets SKIP calls through, fails the next TIMES with CODE\n"
     ".fault off                   ends it\n"
     ".fault sweep SQL             runs SQL with each of its calls failed in turn; the records are\n"
     "                             put back after each run\n"
     "CALL is a name as .timer prints it, such as alloc or get_table. CODE may be hexadecimal (0x5241).\n"},
    {".help", argument::optional, touches::nothing, ".help [COMMAND]", "print this, or more on one command",
     show_help, ""},
    {".import", argument::required, touches::files_and_records, ".import FILE TABLE",
     "insert the rows of a CSV file", import_file,
     "The first line names columns. Every row is checked before the first is written: number of fields,\n"
     "numbers within their range, texts that fit and are UTF-8, keys that are set and not repeated, and\n"
     "room for the new records. A row whose key exists overwrites that record's named columns.\n"},
    {".load", argument::required, touches::files_and_records, ".load FILE",
     "replace every record by those of a JSON file", load, ""},
    {".mode", argument::required, touches::nothing, ".mode MODE", "print answers in another form", use_mode,
     "The modes are box (default on a terminal), table (default elsewhere), csv, json, jsonl, markdown,\n"
     "line and insert.\n"},
    {".quit", argument::none, touches::nothing, ".quit", "leave the shell", quit, ""},
    {".record", argument::required, touches::nothing, ".record TABLE N",
     "show one record, element by element", show_record,
     "N counts from 1 to the table's capacity; 0 is the default record. Free records can be shown too.\n"},
    {".save", argument::required, touches::files, ".save FILE", "write every record to a JSON file", save,
     ""},
    {".schema", argument::optional, touches::nothing, ".schema [TABLE]",
     "list the columns of a table, or of all", show_schema, ""},
    {".tables", argument::none, touches::nothing, ".tables", "list the tables, capacities, records in use",
     show_tables, ""},
    {".timer", argument::required, touches::nothing, ".timer on|off", "print what each statement cost",
     switch_timer,
     "Time, blocks taken from the memory partition, the most bytes of them held at once, platform calls\n"
     "by kind.\n"},
    {".trace", argument::required, touches::nothing, ".trace on|off",
     "print the library's trace, with causes", switch_trace, ""},
    {".watch", argument::required, touches::nothing, ".watch SECONDS SQL", "repeat a statement until Ctrl-C",
     watch_statement, ""},
};

constexpr std::string_view statement_help =
    "\n"
    "Anything else is a statement. One that stands whole on a line needs no \";\" behind it; one whose\n"
    "first line is not whole, such as a SELECT without FROM, goes on to the line that ends with \";\". A\n"
    "line that begins with \"--\" is a comment.\n"
    "\n"
    "Keywords and names are upper case. SELECT, DELETE FROM, DROP TABLE (deletes every record) and CREATE\n"
    "(no effect) are texts that the library reads. It reads no INSERT and no UPDATE: the shell does, and\n"
    "hands them over as statement records.\n"
    "\n"
    "  INSERT INTO TABLE (COLUMN, ...) VALUES (VALUE, ...)\n"
    "  UPDATE TABLE SET COLUMN = VALUE, ... [WHERE CONDITION]\n"
    "\n"
    "A value is a number or a text between single quotes; '' inside it is one quote. That holds in these\n"
    "lists alone: in a condition there is no escape.\n";

const command *find_command(std::string_view name) {
    const auto *found = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const command &c) { return c.name == name; });
    return found == std::end(commands) ? nullptr : found;
}

outcome no_such_command(std::string_view name) {
    const std::string near = did_you_mean(name, command_names());
    return session::fail(
        fmt::format("there is no command {}{}", printable(name), near.empty() ? "; .help lists them" : near));
}

outcome show_help(session & /*shell*/, const std::string &name) {
    if (name.empty()) {
        present(command_help());
        return outcome::done;
    }
    const command *found = find_command(name.front() == '.' ? name : '.' + name);
    if (found == nullptr) {
        return no_such_command(name.front() == '.' ? name : '.' + name);
    }
    print(fmt::format("{}  {}\n{}", found->usage, found->help, found->details));
    return outcome::done;
}

} // namespace

outcome run_command(session &shell, std::string_view line) {
    const std::size_t name_end = std::min(line.find(' '), line.size());
    const std::string_view name = line.substr(0, name_end);
    const std::string word(trim(line.substr(name_end)));
    const command *found = find_command(name);
    if (found == nullptr) {
        return no_such_command(name);
    }
    if (found->takes == argument::none && !word.empty()) {
        return session::fail(fmt::format("{} takes no argument", name));
    }
    if (found->takes == argument::required && word.empty()) {
        return session::fail(fmt::format("{} needs an argument: {}", name, found->usage));
    }
    if (shell.options().safe && found->effect != touches::nothing) {
        return session::fail(fmt::format("{} touches files: the shell was started with --safe", name));
    }
    if (shell.options().readonly && found->effect == touches::files_and_records) {
        return session::fail(fmt::format("{} changes records: the shell was started with --readonly", name));
    }
    try {
        return found->run(shell, word);
    } catch (const std::runtime_error &error) { // a file, the store or the output failed: the shell goes on
        return session::fail(error.what());
    }
}

std::string command_help() {
    std::string text;
    for (const command &entry : commands) {
        text += fmt::format("{:<20}  {}\n", entry.usage, entry.help);
    }
    return text.append(statement_help);
}

std::vector<std::string> command_names() {
    std::vector<std::string> names;
    for (const command &entry : commands) {
        names.emplace_back(entry.name);
    }
    return names;
}

} // namespace qrysh
