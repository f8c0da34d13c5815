// .import: all of a CSV file's rows, or none.
#include <qrylib/query.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/transfer/import_check.h"
#include "tools/text/code_text.h"
#include "tools/text/near_match.h"
#include "tools/text/schema.h"
#include "tools/text/statement_builder.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

constexpr std::size_t faults_shown = 20;

std::string read_whole_file(const std::string &path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text;
    if (file) {
        text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    if (!file || errno != 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    return text;
}

outcome report_faults(const std::string &path, const std::vector<import_fault> &faults) {
    const std::size_t shown = std::min(faults.size(), faults_shown);
    for (std::size_t i = 0; i < shown; ++i) {
        session::fail(fmt::format("{}:{}:{}: {}", path, faults[i].place.line, faults[i].place.column,
                                  faults[i].sentence));
    }
    if (faults.size() > shown) {
        say(fmt::format("and {} more\n", faults.size() - shown));
    }
    say("nothing was imported\n");
    return outcome::failed;
}

outcome write_rows(session &shell, const std::vector<write_statement> &inserts) {
    std::size_t written = 0;
    {
        progress shown("rows imported", inserts.size());
        for (const write_statement &insert : inserts) {
            shell.traces().clear();
            statement record(shell.database(), insert);
            if (const std::uint32_t code = qry_lib_db_stmt_exec(record.get()); code != QRY_LIB_OK) {
                session::fail(describe_code(code));
                say(fmt::format("{} of {} rows were imported before this\n", written, inserts.size()));
                return outcome::failed;
            }
            ++written;
            shown.advance();
        }
    }
    say(fmt::format("{} {} imported\n", written, written == 1 ? "row" : "rows"));
    return outcome::done;
}

outcome import_into(session &shell, const std::string &path, const std::string &table) {
    import_plan plan;
    {
        const trace_log::pause quiet(shell.traces());
        try {
            plan = plan_import(shell.database(), table, read_csv(read_whole_file(path)));
        } catch (const csv_error &error) {
            plan.faults.push_back({error.place(), error.what()});
        }
    }
    return plan.faults.empty() ? write_rows(shell, plan.inserts) : report_faults(path, plan.faults);
}

} // namespace

outcome import_file(session &shell, const std::string &order) {
    const std::size_t blank = order.rfind(' ');
    if (blank == std::string::npos) {
        return session::fail("expected a file and a table: .import FILE TABLE");
    }
    const std::string path = one_name(trim(order.substr(0, blank)));
    const std::string table = order.substr(blank + 1);
    if (!table_exists(shell.database(), table)) {
        return shell.refuse_table(table);
    }
    return import_into(shell, path, table);
}

} // namespace qrysh
