// The table of foreign commands.
#include "tools/qrysh/commands/foreign_commands.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/qrysh/commands/command_table.h"
#include "tools/text/near_match.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

struct foreign_command {
    std::string_view name;
    std::string_view advice;
};

constexpr std::string_view columns_are_listed = ".tables lists the tables, .schema TABLE the columns of one";
constexpr std::string_view no_programs = "the shell runs no other programs";
constexpr std::string_view no_dividers = ".mode csv, tabs and list divide values";
constexpr std::string_view no_nulls = "no value is NULL, and what was never set is 0 or ''";

constexpr foreign_command foreign_commands[] = {
    {"?", ".help lists the commands"},
    {"\\!", no_programs},
    {"\\?", ".help lists the commands"},
    {"\\c", ".db NAME sends statements to another database"},
    {"\\connect", ".db NAME sends statements to another database"},
    {"\\copy", ".import FILE TABLE reads a CSV file, .export FILE writes the last answer"},
    {"\\d", columns_are_listed},
    {"\\d+", columns_are_listed},
    {"\\dt", columns_are_listed},
    {"\\dt+", columns_are_listed},
    {"\\e", "the arrow keys bring earlier lines back"},
    {"\\g", "\";\" ends a statement"},
    {"\\h", ".help lists the commands"},
    {"\\i", ".read FILE runs the lines of a file"},
    {"\\l", ".databases lists the databases"},
    {"\\o", ".output FILE writes answers to a file"},
    {"\\p", "the arrow keys bring earlier lines back"},
    {"\\pset", ".mode prints answers in another form, .show lists the settings"},
    {"\\q", ".quit leaves the shell"},
    {"\\r", "Ctrl-C drops a statement"},
    {"\\s", "the arrow keys bring earlier lines back"},
    {"\\set", ".show lists the settings"},
    {"\\t", ".headers off leaves the titles out"},
    {"\\timing", ".timer on prints what each statement cost"},
    {"\\u", ".db NAME sends statements to another database"},
    {"\\watch", ".watch SECONDS SQL repeats a statement"},
    {"\\x", ".mode line prints one value a line"},
    {".backup", ".save FILE writes every record"},
    {".bail", "--bail stops at the first error"},
    {".cd", "names of files may begin with ~/, and be written between quotes"},
    {".clone", ".dump FILE writes every record"},
    {".describe", columns_are_listed},
    {".eqp", ".explain SQL shows how a statement is understood"},
    {".fullschema", ".schema lists every column"},
    {".indexes", "there are no indexes: .schema marks the keys"},
    {".indices", "there are no indexes: .schema marks the keys"},
    {".log", ".trace on prints the library's trace"},
    {".nullvalue", no_nulls},
    {".print", "a line behind -- says something to who reads"},
    {".restore", ".load FILE replaces every record"},
    {".separator", no_dividers},
    {".shell", no_programs},
    {".stats", ".timer on prints what each statement cost"},
    {".system", no_programs},
    {".timeout", "a call waits ten seconds for others, and says who they are"},
    {".version", "--version prints the version"},
    {".width", "columns are as wide as their values, and nothing is cut"},
};

} // namespace

std::string no_such_command(std::string_view name) {
    const auto *foreign = std::find_if(std::begin(foreign_commands), std::end(foreign_commands),
                                       [&](const foreign_command &row) { return row.name == name; });
    if (foreign != std::end(foreign_commands)) {
        return fmt::format("there is no command {}: {}", name, foreign->advice);
    }
    const std::string near = did_you_mean(name, command_names());
    return fmt::format("there is no command {}{}", printable(name),
                       near.empty() ? "; .help lists them" : near);
}

} // namespace qrysh
