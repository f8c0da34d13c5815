// The table of commands, and its help.
#include "tools/qrysh/commands/command_table.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace qrysh {

namespace {

constexpr command commands[] = {
    {".changes", argument::required, touches::nothing, ".changes on|off", "say what a statement changed",
     "Until then it is said in the modes that people read.\n"},
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
     "Prints the analyzed query, the queries and links of a join, and the filter keys\n"
     "in the order in which the search tests them. Nothing is read or written but the\n"
     "default record.\n"},
    {".export", argument::required, touches::files, ".export FILE", "write the last answer to a file",
     "The ending decides as for .dump: .csv, .json, .jsonl, .md, .sql, .sqlite or .db.\n"},
    {".fault", argument::required, touches::nothing, ".fault ...", "make platform calls fail",
     ".fault CALL SKIP TIMES CODE  lets SKIP calls through, fails the next TIMES\n"
     ".fault off                   ends it\n"
     ".fault sweep SQL             runs SQL with each of its calls failed in turn, on\n"
     "                             a copy of the records\n"
     "CALL is a name as .timer prints it, such as alloc or get_table. CODE may be\n"
     "hexadecimal (0x5241).\n"},
    {".headers", argument::required, touches::nothing, ".headers on|off",
     "print the columns' titles above rows", ""},
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
     "The modes are box (default on a terminal), table (default elsewhere), csv, tabs,\n"
     "list, json, jsonl, markdown, line and insert. On a terminal a box or table that\n"
     "is wider becomes lines.\n"},
    {".once", argument::required, touches::files, ".once FILE", "write the next answer to a file",
     "The file is replaced. What is no answer, such as an error, is printed as ever.\n"},
    {".open", argument::required, touches::files, ".open DEVICE", "open another device",
     ".open FILE          a device image that is there\n"
     ".open --new FILE    one that is created\n"
     ".open --sample      the sample device, in memory\n"
     "Records that were in memory are dropped.\n"},
    {".output", argument::optional, touches::files, ".output [FILE]", "write answers to a file",
     "The file is replaced. Without FILE answers are printed again.\n"},
    {".prompt", argument::optional, touches::nothing, ".prompt [A] [B]", "prompt otherwise",
     "A stands before a statement's first line, B before the others. Put quotes around\n"
     "blanks.\n"},
    {".quit", argument::none, touches::nothing, ".quit", "leave the shell", ""},
    {".read", argument::required, touches::files, ".read FILE", "run the lines of a file", ""},
    {".record", argument::required, touches::nothing, ".record TABLE N",
     "show one record, element by element",
     "N counts from 1 to the table's capacity; 0 is the default record. Free records\n"
     "can be shown too.\n"},
    {".save", argument::required, touches::files, ".save FILE", "write every record to a JSON file", ""},
    {".schema", argument::optional, touches::nothing, ".schema [TABLE]",
     "list the columns of a table, or of all", ""},
    {".show", argument::none, touches::nothing, ".show", "list the settings and the open device", ""},
    {".strict", argument::required, touches::nothing, ".strict on|off", "refuse statements that get a note",
     "A note tells what of a statement was ignored, narrowed, or is read otherwise\n"
     "than it looks.\n"},
    {".tables", argument::none, touches::nothing, ".tables", "list the tables, capacities, records in use",
     ""},
    {".timer", argument::required, touches::nothing, ".timer on|off", "print what each statement cost",
     "Time, blocks taken from the memory partition, the most bytes of them held at\n"
     "once, platform calls by kind.\n"},
    {".trace", argument::required, touches::nothing, ".trace on|off",
     "print the library's trace, with causes", ""},
    {".watch", argument::required, touches::nothing, ".watch SECONDS SQL", "repeat a statement until Ctrl-C",
     ""},
};

constexpr std::string_view statement_help =
    "\n"
    "Names of files may be written between quotes, and begin with ~/.\n"
    "\n"
    "Anything else is a statement. One that stands whole on a line needs no \";\"\n"
    "behind it; one whose first line is not whole, such as a SELECT without FROM,\n"
    "goes on to the line that ends with \";\". A line that begins with \"--\" is a\n"
    "comment.\n"
    "\n"
    "Keywords and names are upper case. SELECT, DELETE FROM, DROP TABLE (deletes\n"
    "every record) and CREATE (no effect) are texts that the library reads. It reads\n"
    "no INSERT and no UPDATE: the shell does, and hands them over as statement\n"
    "records.\n"
    "\n"
    "  INSERT INTO TABLE (COLUMN, ...) VALUES (VALUE, ...)\n"
    "  UPDATE TABLE SET COLUMN = VALUE, ... [WHERE CONDITION]\n"
    "\n"
    "A value is a number or a text between single quotes; '' inside it is one quote.\n"
    "That holds in these lists alone: in a condition there is no escape.\n";

} // namespace

const command *find_command(std::string_view name) {
    const auto *found = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const command &c) { return c.name == name; });
    return found == std::end(commands) ? nullptr : found;
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
