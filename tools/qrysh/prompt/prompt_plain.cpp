// A prompt without line editing.
#include <cstdio>
#include <iostream>

#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/interrupt.h"
#include "tools/qrysh/prompt/line_source.h"

namespace qrysh {

namespace {

class plain_prompt : public line_source {
  public:
    explicit plain_prompt(prompt_hooks hooks) : hooks_(std::move(hooks)) { catch_interrupts(); }

    std::optional<std::string> next() override {
        for (;;) {
            print(hooks_.prompt());
            take_interrupt(); // one that came before is not this line's
            std::string line;
            if (std::getline(std::cin, line)) {
                return line;
            }
            const bool interrupted = take_interrupt();
            if (!hooks_.drop() && !interrupted) {
                return std::nullopt;
            }
            std::clearerr(stdin);
            std::cin.clear();
            print("\n");
        }
    }

    bool goes_on() const override { return false; }

  private:
    prompt_hooks hooks_;
};

} // namespace

std::unique_ptr<line_source> open_prompt(prompt_hooks hooks) {
    return std::make_unique<plain_prompt>(std::move(hooks));
}

} // namespace qrysh
