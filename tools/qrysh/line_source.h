// Where the shell's lines come from.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qrysh/completion.h"

namespace qrysh {

class line_source {
  public:
    virtual ~line_source() = default;

    // The next line without its line end, or nothing at the end.
    virtual std::optional<std::string> next() = 0;
};

// Completes a line up to the cursor.
using completer = std::function<completion(std::string_view line, std::size_t cursor)>;

std::unique_ptr<line_source> open_arguments(const std::vector<std::string> &arguments);

// A file's lines. Throws std::system_error when it cannot be opened or read.
std::unique_ptr<line_source> open_file(const std::string &path);

// Standard input: lines typed at a prompt where it is a terminal.
std::unique_ptr<line_source> open_input(completer complete_line);

// Lines typed at a prompt. Ctrl-C drops the line; lines are kept for the next run in $QRYSH_HISTORY, or in
// .qrysh_history in the home folder, where the prompt can edit lines.
std::unique_ptr<line_source> open_prompt(completer complete_line);

constexpr const char *prompt_text = "qrysh> ";

} // namespace qrysh
