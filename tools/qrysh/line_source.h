// Where the shell's lines come from.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qrysh {

class line_source {
  public:
    virtual ~line_source() = default;

    // The next line without its line end, or nothing at the end.
    virtual std::optional<std::string> next() = 0;
};

// Each argument is a line; without any, standard input is read, with a prompt where it is a terminal.
std::unique_ptr<line_source> open_lines(const std::vector<std::string> &arguments);

// Lines typed at a prompt.
std::unique_ptr<line_source> open_prompt();

constexpr const char *prompt_text = "qrysh> ";

} // namespace qrysh
