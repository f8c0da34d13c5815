// A prompt with line editing and a history of the session.
#include <histedit.h>

#include <cstdio>
#include <stdexcept>

#include "tools/qrysh/line_source.h"

namespace qrysh {

namespace {

constexpr int history_length = 500;

const char *prompt_of(EditLine * /*editor*/) {
    return prompt_text;
}

struct editor_closer {
    void operator()(EditLine *editor) const { el_end(editor); }
};

struct history_closer {
    void operator()(History *history) const { history_end(history); }
};

class libedit_prompt : public line_source {
  public:
    libedit_prompt() : history_(history_init()), editor_(el_init("qrysh", stdin, stdout, stderr)) {
        if (!history_ || !editor_) {
            throw std::runtime_error("the terminal cannot be used for line editing");
        }
        history(history_.get(), &event_, H_SETSIZE, history_length);
        el_set(editor_.get(), EL_PROMPT, prompt_of);
        el_set(editor_.get(), EL_EDITOR, "emacs");
        el_set(editor_.get(), EL_HIST, history, history_.get());
        el_source(editor_.get(), nullptr);
    }

    std::optional<std::string> next() override {
        int length = 0;
        const char *const typed = el_gets(editor_.get(), &length);
        if (typed == nullptr || length <= 0) {
            return std::nullopt;
        }
        std::string line(typed, static_cast<std::size_t>(length));
        if (line.find_first_not_of(" \n") != std::string::npos) {
            history(history_.get(), &event_, H_ENTER, line.c_str());
        }
        if (line.back() == '\n') {
            line.pop_back();
        }
        return line;
    }

  private:
    HistEvent event_{};
    // The editor reads the history until its own end, so it goes first: members are destroyed from below.
    std::unique_ptr<History, history_closer> history_;
    std::unique_ptr<EditLine, editor_closer> editor_;
};

} // namespace

std::unique_ptr<line_source> open_prompt() {
    return std::make_unique<libedit_prompt>();
}

} // namespace qrysh
