// A prompt without line editing.
#include <iostream>

#include "tools/qrysh/line_source.h"

namespace qrysh {

namespace {

class plain_prompt : public line_source {
  public:
    std::optional<std::string> next() override {
        std::cout << prompt_text << std::flush;
        std::string line;
        return std::getline(std::cin, line) ? std::optional(std::move(line)) : std::nullopt;
    }
};

} // namespace

std::unique_ptr<line_source> open_prompt() {
    return std::make_unique<plain_prompt>();
}

} // namespace qrysh
