// .explain: how a statement is understood.
#include "tools/qrysh/commands/actions.h"
#include "tools/text/explanation.h"
#include "tools/text/statement_lines.h"
#include "tools/text/statement_report.h"

namespace qrysh {

outcome explain_statement(session &shell, const std::string &sql) {
    const std::string statement(without_semicolon(sql));
    const explained_statement explained =
        qrytext::explain_statement(shell.database(), statement, shell.traces());
    if (!explained.report.ok) {
        return shell.complain(statement, explained.report);
    }
    shell.show(list_facts(explained.found));
    return outcome::done;
}

} // namespace qrysh
