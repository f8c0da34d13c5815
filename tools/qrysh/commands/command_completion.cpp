// Candidates for commands and their words.
#include "tools/qrysh/commands/command_completion.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "platform/host/qryhost.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/commands/command_table.h"
#include "tools/text/meter.h"
#include "tools/text/printers.h"
#include "tools/text/schema.h"

namespace qrysh {

using namespace qrytext;

namespace {

enum class kind { nothing, calls, commands, databases, files, modes, switches, statement, tables };

// What a command's words are.
struct command_words {
    std::string_view name;
    kind first;
    kind second = kind::nothing;
};

constexpr command_words words_of_commands[] = {
    {".changes", kind::switches},
    {".db", kind::databases},
    {".dump", kind::tables, kind::files},
    {".echo", kind::switches},
    {".explain", kind::statement},
    {".export", kind::files},
    {".fault", kind::calls, kind::statement},
    {".headers", kind::switches},
    {".help", kind::commands},
    {".import", kind::files, kind::tables},
    {".load", kind::files},
    {".mode", kind::modes},
    {".once", kind::files},
    {".open", kind::files},
    {".output", kind::files},
    {".read", kind::files},
    {".record", kind::tables},
    {".save", kind::files},
    {".schema", kind::tables},
    {".strict", kind::switches},
    {".timer", kind::switches},
    {".trace", kind::switches},
    {".watch", kind::nothing, kind::statement},
};

std::vector<std::string> mode_list() {
    std::string names = mode_names();
    std::replace(names.begin(), names.end(), ',', ' ');
    return split_words(names);
}

std::vector<std::string> call_list() {
    std::vector<std::string> names = {"off", "sweep"};
    for (int call = 0; call < QRYHOST_CALL_NUM; ++call) {
        names.emplace_back(call_name(static_cast<qryhost_call>(call)));
    }
    return names;
}

std::vector<std::string> words_of(kind wanted, const std::string &db_name) {
    switch (wanted) {
    case kind::calls:
        return call_list();
    case kind::commands:
        return command_names();
    case kind::databases:
        return database_names();
    case kind::modes:
        return mode_list();
    case kind::switches:
        return {"off", "on"};
    case kind::tables:
        return table_names(db_name);
    default:
        return {};
    }
}

// The files and folders that begin so, a folder with a "/" behind it. Their names keep their case.
std::vector<std::string> files_at(const std::string &typed) {
    namespace fs = std::filesystem;
    const std::size_t name = typed.rfind('/') + 1; // 0 where there is none
    const std::string folder = typed.substr(0, name);
    std::vector<std::string> found;
    std::error_code failed;
    const std::string opened = folder.empty() ? "." : one_name(folder);
    for (fs::directory_iterator entry(opened, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const std::string file = entry->path().filename().string();
        const bool is_hidden = file.front() == '.' && typed.substr(name, 1) != ".";
        if (file.compare(0, typed.size() - name, typed, name) == 0 && !is_hidden &&
            file.find(' ') == std::string::npos) { // such a name is typed between quotes
            std::error_code ignored;
            found.push_back(folder + file + (entry->is_directory(ignored) ? "/" : ""));
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

// `line` is a statement from `begin` on.
completion complete_behind(const std::string &db_name, std::string_view line, std::size_t begin,
                           std::size_t cursor) {
    completion found = complete(db_name, line.substr(begin), cursor - begin);
    found.word_begin += begin;
    return found;
}

completion complete_word(const std::string &db_name, kind wanted, std::string_view line, std::size_t begin,
                         std::size_t cursor) {
    if (wanted == kind::statement) {
        return complete_behind(db_name, line, begin, cursor);
    }
    if (wanted == kind::files) {
        return {begin, files_at(std::string(line.substr(begin, cursor - begin)))};
    }
    return complete_from(words_of(wanted, db_name), line, cursor);
}

std::size_t behind_blanks(std::string_view line, std::size_t place) {
    return std::min(line.find_first_not_of(' ', place), line.size());
}

} // namespace

completion complete_line(const std::string &db_name, std::string_view line, std::size_t cursor) {
    const std::string_view typed = line.substr(0, cursor);
    if (typed.substr(0, 1) != ".") {
        return complete(db_name, line, cursor);
    }
    const std::size_t name_end = typed.find(' ');
    if (name_end == std::string_view::npos) {
        return complete_from(command_names(), line, cursor);
    }
    const auto *row =
        std::find_if(std::begin(words_of_commands), std::end(words_of_commands),
                     [&](const command_words &w) { return w.name == typed.substr(0, name_end); });
    const std::size_t first = behind_blanks(typed, name_end);
    const std::size_t first_end = typed.find(' ', first);
    if (row == std::end(words_of_commands)) {
        return {cursor, {}};
    }
    if (row->first == kind::statement || first_end == std::string_view::npos) {
        return complete_word(db_name, row->first, line, first, cursor);
    }
    const std::size_t second = behind_blanks(typed, first_end);
    const bool takes_another = row->second == kind::statement || typed.find(' ', second) == typed.npos;
    return complete_word(db_name, takes_another ? row->second : kind::nothing, line, second, cursor);
}

} // namespace qrysh
