// The table of commands, and its help.
#include "tools/qrysh/commands/command_table.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/text/near_match.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

constexpr command commands[] = {
    {".databases", argument::none, touches::nothing, ".databases",
     "list the databases, capacities, records in use", ""},
    {".db", argument::required, touches::nothing, ".db NAME", "send statements to another database", ""},
    {".dump", argument::optional, touches::nothing, ".dump [TABLE] [FILE]",
     "write every record, as statements or to a file",
     "Without FILE the records of the current database, or of TABLE, are printed as statements that\n"
     "this shell reads. With FILE its ending decides: .sql, .json, .jsonl, .csv (the last two for one\n"
     "table), or .sqlite and .db for a SQLite database with typed columns and primary keys.\n"},
    {".echo", argument::required, touches::nothing, ".echo on|off", "print each line above its answer", ""},
    {".exit", argument::none, touches::nothing, ".exit", "leave the shell", ""},
    {".explain", argument::required, touches::nothing, ".explain SQL", "show how a statement is understood",
     "Prints the analyzed query, the queries and links of a join, and the filter keys in the order in\n"
     "which the search tests them. Nothing is read or written but the default record.\n"},
    {".export", argument::required, touches::files, ".export FILE", "write the last answer to a file",
     "The ending decides as for .dump: .csv, .json, .jsonl, .md, .sql, .sqlite or .db.\n"},
    {".fault", argument::required, touches::nothing, ".fault ...", "make platform calls fail",
     ".fault CALL SKIP TIMES CODE  lets SKIP calls through, fails the next TIMES with CODE\n"
     ".fault off                   ends it\n"
     ".fault sweep SQL             runs SQL with each of its calls failed in turn; the records are\n"
     "                             put back after each run\n"
     "CALL is a name as .timer prints it, such as alloc or get_table. CODE may be hexadecimal (0x5241).\n"},
    {".help", argument::optional, touches::nothing, ".help [COMMAND]", "print this, or more on one command",
     ""},
    {".import", argument::required, touches::files_and_records, ".import FILE TABLE",
     "insert the rows of a CSV file",
     "The first line names columns. Every row is checked before the first is written: number of fields,\n"
     "numbers within their range, texts that fit and are UTF-8, keys that are set and not repeated, and\n"
     "room for the new records. A row whose key exists overwrites that record's named columns.\n"},
    {".load", argument::required, touches::files_and_records, ".load FILE",
     "replace every record by those of a JSON file", ""},
    {".mode", argument::required, touches::nothing, ".mode MODE", "print answers in another form",
     "The modes are box (default on a terminal), table (default elsewhere), csv, json, jsonl, markdown,\n"
     "line and insert.\n"},
    {".quit", argument::none, touches::nothing, ".quit", "leave the shell", ""},
    {".record", argument::required, touches::nothing, ".record TABLE N",
     "show one record, element by element",
     "N counts from 1 to the table's capacity; 0 is the default record. Free records can be shown too.\n"},
    {".save", argument::required, touches::files, ".save FILE", "write every record to a JSON file", ""},
    {".schema", argument::optional, touches::nothing, ".schema [TABLE]",
     "list the columns of a table, or of all", ""},
    {".strict", argument::required, touches::nothing, ".strict on|off", "refuse statements that get a note",
     "A note tells what of a statement was ignored, narrowed, or is read otherwise than it looks.\n"},
    {".tables", argument::none, touches::nothing, ".tables", "list the tables, capacities, records in use",
     ""},
    {".timer", argument::required, touches::nothing, ".timer on|off", "print what each statement cost",
     "Time, blocks taken from the memory partition, the most bytes of them held at once, platform calls\n"
     "by kind.\n"},
    {".trace", argument::required, touches::nothing, ".trace on|off",
     "print the library's trace, with causes", ""},
    {".watch", argument::required, touches::nothing, ".watch SECONDS SQL", "repeat a statement until Ctrl-C",
     ""},
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

} // namespace

const command *find_command(std::string_view name) {
    const auto *found = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const command &c) { return c.name == name; });
    return found == std::end(commands) ? nullptr : found;
}

std::string no_such_command(std::string_view name) {
    const std::string near = did_you_mean(name, command_names());
    return fmt::format("there is no command {}{}", printable(name),
                       near.empty() ? "; .help lists them" : near);
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
