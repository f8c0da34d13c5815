// What the commands do. Each answers done, or complains and answers failed; std::runtime_error, with a
// sentence, where a file, the store or the output fails.
#pragma once

#include <functional>
#include <string>

#include "tools/qrysh/commands/session.h"

namespace qrysh {

// small_commands.cpp
outcome show_databases(session &shell, const std::string &argument);
outcome show_tables(session &shell, const std::string &argument);
outcome show_schema(session &shell, const std::string &argument);
outcome use_database(session &shell, const std::string &argument);
outcome use_mode(session &shell, const std::string &argument);
outcome load(session &shell, const std::string &argument);
outcome save(session &shell, const std::string &argument);
outcome open_other_device(session &shell, const std::string &order);
outcome redirect_once(session &shell, const std::string &path);
outcome redirect_all(session &shell, const std::string &path);
outcome quit(session &shell, const std::string &argument);

// settings_commands.cpp
outcome set_prompt(session &shell, const std::string &order);
outcome show_settings(session &shell, const std::string &argument);
outcome switch_changes(session &shell, const std::string &argument);
outcome switch_echo(session &shell, const std::string &argument);
outcome switch_headers(session &shell, const std::string &argument);
outcome switch_strict(session &shell, const std::string &argument);
outcome switch_timer(session &shell, const std::string &argument);
outcome switch_trace(session &shell, const std::string &argument);

outcome explain_statement(session &shell, const std::string &sql); // explain_command.cpp
outcome inject_fault(session &shell, const std::string &order);    // fault_command.cpp
outcome show_record(session &shell, const std::string &order);     // record_command.cpp
outcome import_file(session &shell, const std::string &order);     // import_command.cpp
outcome export_answer(session &shell, const std::string &path);    // export_command.cpp
outcome dump_tables(session &shell, const std::string &order);     // export_command.cpp

// watch_command.cpp; `answer` takes the line that is repeated, which may be a command too.
outcome watch_line(const std::string &order, const std::function<outcome(const std::string &line)> &answer);

} // namespace qrysh
