// A prompt without line editing.
#include <cstdio>
#include <iostream>

#include "tools/qrysh/interrupt.h"
#include "tools/qrysh/line_source.h"
#include "tools/qrysh/output.h"

namespace qrysh {

namespace {

class plain_prompt : public line_source {
  public:
    plain_prompt() { catch_interrupts(); }

    std::optional<std::string> next() override {
        for (;;) {
            print(prompt_text);
            take_interrupt(); // one that came before is not this line's
            std::string line;
            if (std::getline(std::cin, line)) {
                return line;
            }
            if (!take_interrupt()) {
                return std::nullopt;
            }
            std::clearerr(stdin);
            std::cin.clear();
            print("\n");
        }
    }
};

} // namespace

std::unique_ptr<line_source> open_prompt(completer /*complete_line*/) {
    return std::make_unique<plain_prompt>();
}

} // namespace qrysh
