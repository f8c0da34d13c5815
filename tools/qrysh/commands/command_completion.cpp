// Candidates for commands and their words.
#include "tools/qrysh/commands/command_completion.h"

#include "tools/qrysh/commands/command_table.h"
#include "tools/text/schema.h"

namespace qrysh {

using namespace qrytext;

namespace {

bool takes_statement(std::string_view command) {
    return command == ".explain" || command == ".watch" || command == ".fault";
}

// The words that may stand at `begin` of a command's line.
std::vector<std::string> command_words(const std::string &db_name, std::string_view name, std::size_t begin) {
    if (begin == 0 || name == ".help") {
        return command_names();
    }
    return name == ".db" ? database_names() : table_names(db_name);
}

} // namespace

completion complete_line(const std::string &db_name, std::string_view line, std::size_t cursor) {
    const std::string_view name = line.substr(0, line.find(' '));
    const std::size_t begin = word_before(line, cursor);
    const bool is_command = line.substr(0, cursor).substr(0, 1) == ".";
    if (!is_command || (begin > 0 && takes_statement(name))) {
        return complete(db_name, line, cursor);
    }
    return complete_from(command_words(db_name, name, begin), line, cursor);
}

} // namespace qrysh
