// The roof of the shell: takes its lines one by one, and has each done by the command or the statement that
// it is.
#pragma once

#include <string>
#include <string_view>

#include "tools/qrysh/commands/session.h"
#include "tools/qrysh/prompt/line_source.h"
#include "tools/text/statement_lines.h"

namespace qrysh {

// Answers a whole statement, with or without a semicolon behind it, or a command.
outcome answer(session &shell, std::string_view text);

// Runs the lines of a file as those of a script are: nobody is asked anything.
outcome run_file(session &shell, const std::string &path);

class dispatcher {
  public:
    explicit dispatcher(session &shell) : shell_(shell) {}

    // Takes every line of a source. Answers quit where one left the shell, failed where one ended the run,
    // and else done; the session knows whether any failed.
    outcome run_all(line_source &lines);

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

    // What a prompt shows before the next line.
    const char *prompt() const;

    // The statement or command that ends with this line; nothing where it goes on.
    std::optional<std::string> whole(std::string_view line) const;

    // Forgets that statement. False when there is none.
    bool drop_unfinished() { return !lines_.take().empty(); }

  private:
    outcome run_line(const std::optional<std::string> &line);
    outcome run_piece(std::string_view piece);
    bool ends_run(outcome answered) const;

    session &shell_;
    qrytext::statement_lines lines_;
    std::string place_; // of the line that is taken
    bool waits_ = true; // for a line that is there already
};

} // namespace qrysh
