// The table of commands and what each does.
#include "tools/qrysh/commands.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/qrysh/listings.h"
#include "tools/qrysh/text.h"

namespace qrysh {

namespace {

enum class argument { none, optional, required };

struct command {
    std::string_view name;
    argument takes;
    std::string_view usage;
    std::string_view help;
    outcome (*run)(session &shell, const std::string &argument);
};

outcome show_tables(session &shell, const std::string & /*unused*/) {
    shell.show(list_tables(shell.database()));
    return outcome::done;
}

outcome show_schema(session &shell, const std::string &table) {
    if (!table.empty() && !table_exists(shell.database(), table)) {
        return session::fail(fmt::format("there is no table \"{}\" in {}; .tables lists them",
                                         printable(table), shell.database()));
    }
    shell.show(list_columns(shell.database(), table));
    return outcome::done;
}

outcome show_databases(session &shell, const std::string & /*unused*/) {
    shell.show(list_databases());
    return outcome::done;
}

outcome use_database(session &shell, const std::string &name) {
    return shell.use_database(name);
}
outcome use_mode(session &shell, const std::string &name) {
    return shell.use_mode(name);
}
outcome load(session &shell, const std::string &path) {
    return shell.load(path);
}
outcome save(session &shell, const std::string &path) {
    return shell.save(path);
}
outcome quit(session & /*shell*/, const std::string & /*unused*/) {
    return outcome::quit;
}

outcome switch_setting(session &shell, const std::string &word, void (session::*set)(bool)) {
    if (word != "on" && word != "off") {
        return session::fail(fmt::format("expected on or off, not \"{}\"", printable(word)));
    }
    (shell.*set)(word == "on");
    return outcome::done;
}

outcome switch_trace(session &shell, const std::string &word) {
    return switch_setting(shell, word, &session::set_trace);
}

outcome switch_echo(session &shell, const std::string &word) {
    return switch_setting(shell, word, &session::set_echo);
}

outcome show_help(session & /*shell*/, const std::string & /*unused*/) {
    print(command_help());
    return outcome::done;
}

constexpr command commands[] = {
    {".databases", argument::none, ".databases", "list the databases", show_databases},
    {".db", argument::required, ".db NAME", "send statements to another database", use_database},
    {".echo", argument::required, ".echo on|off", "print each line above its answer", switch_echo},
    {".help", argument::none, ".help", "print this", show_help},
    {".load", argument::required, ".load FILE", "replace every record by those of a JSON file", load},
    {".mode", argument::required, ".mode MODE", "print answers as table, csv or json", use_mode},
    {".quit", argument::none, ".quit", "leave the shell", quit},
    {".save", argument::required, ".save FILE", "write every record to a JSON file", save},
    {".schema", argument::optional, ".schema [TABLE]", "list the columns of a table, or of all", show_schema},
    {".tables", argument::none, ".tables", "list the database's tables", show_tables},
    {".trace", argument::required, ".trace on|off", "print the library's trace, with causes", switch_trace},
};

constexpr std::string_view statement_help =
    "\n"
    "Anything else is a statement, one a line, with or without \";\" behind it; a line that begins with\n"
    "\"--\" is a comment. Keywords and names are upper case. SELECT, DELETE FROM, DROP TABLE (deletes every\n"
    "record) and CREATE (no effect) are texts that the library reads. It reads no INSERT and no UPDATE:\n"
    "the shell does, and hands them over as statement records.\n"
    "\n"
    "  INSERT INTO TABLE (COLUMN, ...) VALUES (VALUE, ...)\n"
    "  UPDATE TABLE SET COLUMN = VALUE, ... [WHERE CONDITION]\n"
    "\n"
    "A value is a number or a text between single quotes; '' inside it is one quote. That holds in these\n"
    "lists alone: in a condition there is no escape.\n";

} // namespace

outcome run_command(session &shell, std::string_view line) {
    const std::size_t name_end = std::min(line.find(' '), line.size());
    const std::string_view name = line.substr(0, name_end);
    const std::string word(trim(line.substr(name_end)));
    const auto *found = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const command &c) { return c.name == name; });
    if (found == std::end(commands)) {
        return session::fail(fmt::format("there is no command {}; .help lists them", printable(name)));
    }
    if (found->takes == argument::none && !word.empty()) {
        return session::fail(fmt::format("{} takes no argument", name));
    }
    if (found->takes == argument::required && word.empty()) {
        return session::fail(fmt::format("{} needs an argument: {}", name, found->usage));
    }
    return found->run(shell, word);
}

std::string command_help() {
    std::string text;
    for (const command &entry : commands) {
        text += fmt::format("{:<16}  {}\n", entry.usage, entry.help);
    }
    return text.append(statement_help);
}

} // namespace qrysh
