// A prompt with line editing, completion, and a history that is kept between runs.
#include <histedit.h>

#include <cstdio>
#include <stdexcept>

#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/interrupt.h"
#include "tools/qrysh/prompt/line_source.h"
#include "tools/qrysh/prompt/personal_file.h"

namespace qrysh {

namespace {

constexpr int history_length = 500;

struct editor_closer {
    void operator()(EditLine *editor) const { el_end(editor); }
};

struct history_closer {
    void operator()(History *history) const { history_end(history); }
};

class libedit_prompt : public line_source {
  public:
    explicit libedit_prompt(prompt_hooks hooks)
        : hooks_(std::move(hooks)), path_(personal_file("QRYSH_HISTORY", ".qrysh_history")),
          history_(history_init()), editor_(el_init("qrysh", stdin, stdout, stderr)) {
        if (!history_ || !editor_) {
            throw std::runtime_error("the terminal cannot be used for line editing");
        }
        history(history_.get(), &event_, H_SETSIZE, history_length);
        history(history_.get(), &event_, H_SETUNIQUE, 1);
        if (!path_.empty()) {
            history(history_.get(), &event_, H_LOAD, path_.c_str());
        }
        set_up_editor();
        catch_interrupts();
    }

    std::optional<std::string> next() override {
        for (;;) {
            int length = 0;
            take_interrupt(); // one that came before, while an answer was shown, is not this line's
            const char *const typed = el_gets(editor_.get(), &length);
            const bool interrupted = take_interrupt();
            if (!interrupted && typed != nullptr && length > 0) {
                return keep(std::string(typed, static_cast<std::size_t>(length)));
            }
            print("\n"); // what is said next stands on a line of its own
            if (!hooks_.drop() && !interrupted) {
                return std::nullopt;
            }
            el_reset(editor_.get());
        }
    }

  private:
    void set_up_editor() {
        el_set(editor_.get(), EL_CLIENTDATA, this);
        el_set(editor_.get(), EL_PROMPT, prompt_text);
        el_set(editor_.get(), EL_EDITOR, "emacs");
        el_set(editor_.get(), EL_HIST, history, history_.get());
        el_set(editor_.get(), EL_ADDFN, "qrysh-complete", "Complete the word", complete_word);
        el_set(editor_.get(), EL_BIND, "^I", "qrysh-complete", nullptr);
        el_source(editor_.get(), nullptr);
    }

    // Written after every line, so that a shell that is killed loses none.
    std::string keep(std::string line) {
        if (line.find_first_not_of(" \n") != std::string::npos) {
            history(history_.get(), &event_, H_ENTER, line.c_str());
            if (!path_.empty()) {
                history(history_.get(), &event_, H_SAVE, path_.c_str());
            }
        }
        if (line.back() == '\n') {
            line.pop_back();
        }
        return line;
    }

    static libedit_prompt &prompt_of(EditLine *editor) {
        libedit_prompt *prompt = nullptr;
        el_get(editor, EL_CLIENTDATA, &prompt);
        return *prompt;
    }

    static const char *prompt_text(EditLine *editor) { return prompt_of(editor).hooks_.prompt(); }

    // Replaces the word by what all candidates begin with; lists them where that adds nothing.
    static unsigned char complete_word(EditLine *editor, int /*key*/) {
        const LineInfo *const info = el_line(editor);
        const std::string line(info->buffer, info->lastchar);
        const auto cursor = static_cast<std::size_t>(info->cursor - info->buffer);
        const completion found = prompt_of(editor).hooks_.complete(line, cursor);
        if (found.candidates.empty()) {
            return CC_ERROR;
        }
        const std::string word = line.substr(found.word_begin, cursor - found.word_begin);
        std::string start = common_start(found.candidates);
        if (found.candidates.size() == 1) {
            start += ' ';
        } else if (start.size() <= word.size()) {
            list(found.candidates);
            return CC_REDISPLAY;
        }
        el_deletestr(editor, static_cast<int>(word.size()));
        el_insertstr(editor, start.c_str());
        return CC_REFRESH;
    }

    static void list(const std::vector<std::string> &candidates) {
        std::string text = "\n";
        for (const std::string &candidate : candidates) {
            text += candidate + "  ";
        }
        print(text + '\n');
    }

    prompt_hooks hooks_;
    std::string path_;
    HistEvent event_{};
    // The editor reads the history until its own end, so it goes first: members are destroyed from below.
    std::unique_ptr<History, history_closer> history_;
    std::unique_ptr<EditLine, editor_closer> editor_;
};

} // namespace

std::unique_ptr<line_source> open_prompt(prompt_hooks hooks) {
    return std::make_unique<libedit_prompt>(std::move(hooks));
}

} // namespace qrysh
