// .export and .dump: answers and tables written to files of other programs' forms.
#include <utility>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/transfer/file_forms.h"
#include "tools/text/schema.h"

namespace qrysh {

namespace {

void change_rows(std::vector<sqlite_table> &all, result (*change)(result)) {
    for (sqlite_table &table : all) {
        table.rows = change(std::move(table.rows));
    }
}

outcome write_tables(session &shell, const std::string &path, const std::string &db_name,
                     std::vector<sqlite_table> all) {
    if (shell.options().csv_safe && is_csv(path)) {
        change_rows(all, guarded_answer);
    }
    return shell.write_file(path, content_for(path, db_name, all));
}

outcome dump(session &shell, const std::vector<std::string> &names, const std::string &path) {
    const trace_log::pause quiet(shell.traces());
    std::vector<sqlite_table> all;
    all.reserve(names.size());
    for (const std::string &name : names) {
        all.push_back(read_table(shell.database(), name));
    }
    if (!path.empty()) {
        return write_tables(shell, path, shell.database(), std::move(all));
    }
    if (output_is_terminal()) {
        change_rows(all, printable_answer);
    }
    present(as_statements(shell.database(), all));
    return outcome::done;
}

} // namespace

outcome export_answer(session &shell, const std::string &path) {
    const std::optional<result> &answer = shell.last_answer();
    if (!answer) {
        return session::fail("there is no answer yet");
    }
    return write_tables(shell, path, "", {describe_answer(*answer)});
}

// A table's name has no point in it, and a file's has.
outcome dump_tables(session &shell, const std::string &order) {
    word_and_rest parts = split_first_word(order);
    const bool names_table = !parts.word.empty() && parts.word.find('.') == std::string::npos;
    const std::string path = one_name(names_table ? parts.rest : order);
    if (names_table && !table_exists(shell.database(), parts.word)) {
        return shell.refuse_table(parts.word);
    }
    if (!path.empty() && shell.options().safe) {
        return session::fail(".dump to a file touches files: the shell was started with --safe");
    }
    return dump(shell, names_table ? std::vector<std::string>{parts.word} : table_names(shell.database()),
                path);
}

} // namespace qrysh
