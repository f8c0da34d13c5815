// Where the shell's lines come from.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/text/completion.h"

namespace qrysh {

using namespace qrytext;

class line_source {
  public:
    virtual ~line_source() = default;

    // The next line without its line end, or nothing at the end.
    virtual std::optional<std::string> next() = 0;

    // "FILE:LINE" of that line; empty where it stands before everybody's eyes.
    virtual std::string place() const { return ""; }

    // Whether further lines are there already: then a statement may wait for the next one.
    virtual bool goes_on() const { return true; }
};

// What a prompt asks and tells the shell behind it.
struct prompt_hooks {
    // Completes a line up to the cursor.
    std::function<completion(std::string_view line, std::size_t cursor)> complete;

    // What stands before the line that is to be typed.
    std::function<const char *()> prompt;

    // Forgets the statement that the lines before began. False when there is none.
    std::function<bool()> drop;

    // The statement or command that ends with this line; nothing where it goes on.
    std::function<std::optional<std::string>(std::string_view line)> whole;
};

// The lines of one argument.
std::unique_ptr<line_source> open_argument(const std::string &argument);

// A file's lines. Throws std::system_error when it cannot be opened or read.
std::unique_ptr<line_source> open_file(const std::string &path);

// Standard input: lines typed at a prompt where it is a terminal.
std::unique_ptr<line_source> open_input(prompt_hooks hooks);

// Lines typed at a prompt. Ctrl-C drops the line and the statement that it belongs to, Ctrl-D that statement
// or else the prompt; where the prompt can edit lines, statements are kept for the next run in
// $QRYSH_HISTORY, or in .qrysh_history in the home folder.
std::unique_ptr<line_source> open_prompt(prompt_hooks hooks);

} // namespace qrysh
