// .explain: how a statement is understood.
#include "tools/qrysh/commands/actions.h"
#include "tools/text/diagnosis.h"
#include "tools/text/explanation.h"
#include "tools/text/statement_lines.h"
#include "tools/text/statement_text.h"

namespace qrysh {

outcome explain_statement(session &shell, const std::string &sql) {
    const std::string statement(without_semicolon(sql));
    shell.traces().clear();
    try {
        const explanation found = explain(shell.database(), statement);
        if (found.code != 0) {
            const trace_log::pause quiet(shell.traces());
            return shell.complain(statement, found.code,
                                  diagnose(shell.database(), statement, found.code, shell.traces().lines()));
        }
        shell.show(list_facts(found));
        return outcome::done;
    } catch (const syntax_error &error) {
        return session::fail(error.what());
    }
}

} // namespace qrysh
