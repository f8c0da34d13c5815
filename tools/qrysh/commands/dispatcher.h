// The roof of the shell: takes its lines one by one, and has each done by the command or the statement that
// it is.
#pragma once

#include <string>
#include <string_view>

#include "tools/qrysh/commands/session.h"
#include "tools/text/statement_lines.h"

namespace qrysh {

// What a prompt shows before the next line.
constexpr const char *prompt_for(std::string_view unfinished) {
    return unfinished.empty() ? "qrysh> " : "  ...> ";
}

// Answers a whole statement, with or without a semicolon behind it, or a command.
outcome answer(session &shell, std::string_view text);

class dispatcher {
  public:
    explicit dispatcher(session &shell) : shell_(shell) {}

    // Takes the next line: a command that begins with ".", a comment, nothing, or one of a statement, which
    // is answered with its last line.
    outcome run(std::string_view line);

    // To be asked before a line is taken: answers a DELETE or UPDATE that waited for a WHERE which this line
    // is not, and refuses an unfinished statement where the line begins another.
    outcome make_way_for(std::string_view line);

    // Answers the statement whose lines have ended without a semicolon.
    outcome run_rest();

    // The statement to which the next line belongs, as far as it goes; empty when there is none.
    const std::string &unfinished() const { return lines_.text(); }

    // Forgets that statement. False when there is none.
    bool drop_unfinished() { return !lines_.take().empty(); }

  private:
    session &shell_;
    qrytext::statement_lines lines_;
};

} // namespace qrysh
