// Lines from the arguments or from standard input.
#include "tools/qrysh/line_source.h"

#include <unistd.h>

#include <iostream>

namespace qrysh {

namespace {

class argument_lines : public line_source {
  public:
    explicit argument_lines(const std::vector<std::string> &arguments) : arguments_(arguments) {}

    std::optional<std::string> next() override {
        return index_ < arguments_.size() ? std::optional(arguments_[index_++]) : std::nullopt;
    }

  private:
    std::vector<std::string> arguments_;
    std::size_t index_ = 0;
};

class stream_lines : public line_source {
  public:
    std::optional<std::string> next() override {
        std::string line;
        return std::getline(std::cin, line) ? std::optional(std::move(line)) : std::nullopt;
    }
};

} // namespace

std::unique_ptr<line_source> open_lines(const std::vector<std::string> &arguments) {
    if (!arguments.empty()) {
        return std::make_unique<argument_lines>(arguments);
    }
    if (isatty(STDIN_FILENO) != 0) {
        return open_prompt();
    }
    return std::make_unique<stream_lines>();
}

} // namespace qrysh
