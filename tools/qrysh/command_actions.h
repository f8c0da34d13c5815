// What the commands do. Each answers done, or complains and answers failed; std::runtime_error, with a
// sentence, where a file, the store or the output fails.
#pragma once

#include <string>

#include "tools/qrysh/session.h"

namespace qrysh {

outcome explain_statement(session &shell, const std::string &sql); // explain.cpp
outcome inject_fault(session &shell, const std::string &order);    // fault_command.cpp
outcome watch_statement(session &shell, const std::string &order); // watch.cpp
outcome show_record(session &shell, const std::string &order);     // record_view.cpp
outcome import_file(session &shell, const std::string &order);     // import.cpp
outcome export_answer(session &shell, const std::string &path);    // export.cpp
outcome dump_tables(session &shell, const std::string &order);     // export.cpp

} // namespace qrysh
