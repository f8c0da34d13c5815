// .import: all of a CSV file's rows, or none.
#include <qrylib/query.h>

#include <fmt/format.h>

#include "tools/files/whole_file.h"
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

outcome report_faults(const std::string &path, const import_plan &plan) {
    for (const import_fault &one : plan.faults) {
        session::fail(fmt::format("{}:{}:{}: {}", path, one.place.line, one.place.column, one.sentence));
    }
    if (plan.fault_num > plan.faults.size()) {
        say(fmt::format("and {} more\n", plan.fault_num - plan.faults.size()));
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
    const std::string text = qryfiles::read_file(path, import_size_max);
    import_plan plan;
    {
        const trace_log::pause quiet(shell.traces());
        plan = plan_import(shell.database(), table, text);
    }
    return plan.fault_num == 0 ? write_rows(shell, plan.inserts) : report_faults(path, plan);
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
