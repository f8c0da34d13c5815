// A prompt with line editing, completion, pastes, and a history that is kept between runs.
#include <histedit.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <deque>
#include <stdexcept>

#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/history.h"
#include "tools/qrysh/prompt/interrupt.h"
#include "tools/qrysh/prompt/line_source.h"
#include "tools/qrysh/prompt/personal_file.h"
#include "tools/text/text.h"

namespace qrysh {

namespace {

// A terminal that knows them puts these around what is pasted once it is told to.
constexpr const char *mark_pastes = "\x1B[?2004h";
constexpr const char *mark_no_pastes = "\x1B[?2004l";
constexpr const char *paste_begins = "\\e[200~";
constexpr std::wstring_view paste_ends = L"\x1B[201~";

// At once: what is asked next goes to another stream.
void tell_terminal(const char *order) {
    const char *const kind = std::getenv("TERM");
    if (kind != nullptr && std::string_view(kind) != "dumb") {
        static_cast<void>(std::fputs(order, stdout));
        static_cast<void>(std::fflush(stdout));
    }
}

struct editor_closer {
    void operator()(EditLine *editor) const { el_end(editor); }
};

std::string narrow(const std::wstring &text) {
    std::string bytes;
    std::mbstate_t state{};
    char character[MB_LEN_MAX];
    for (const wchar_t c : text) {
        const std::size_t length = std::wcrtomb(character, c, &state);
        bytes.append(character, length == static_cast<std::size_t>(-1) ? 0 : length);
    }
    return bytes;
}

// What the editor takes for letters: a tab would complete a word, and an escape begin a key.
std::string as_keys(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }, ' ');
    return text;
}

class libedit_prompt : public line_source {
  public:
    explicit libedit_prompt(prompt_hooks hooks)
        : hooks_(std::move(hooks)), history_(personal_file("QRYSH_HISTORY", ".qrysh_history")),
          editor_(el_init("qrysh", stdin, stdout, stderr)) {
        if (!editor_) {
            throw std::runtime_error("the terminal cannot be used for line editing");
        }
        set_up_editor();
        catch_interrupts();
    }

    std::optional<std::string> next() override {
        if (take_interrupt()) { // what was pasted goes with the answer that was not waited for
            pasted_.clear();
        }
        if (!pasted_.empty()) {
            const std::string line = pasted_.front();
            pasted_.pop_front();
            print(hooks_.prompt() + printable(line) + '\n');
            return keep(line);
        }
        return read_typed();
    }

    bool goes_on() const override { return !pasted_.empty() || !begun_.empty(); }

  private:
    std::optional<std::string> read_typed() {
        for (;;) {
            const std::string begun = std::exchange(begun_, {});
            if (!begun.empty()) {
                el_push(editor_.get(), begun.c_str());
            }
            int length = 0;
            take_interrupt(); // one that came before, while an answer was shown, is not this line's
            tell_terminal(mark_pastes);
            const char *const typed = el_gets(editor_.get(), &length);
            const bool interrupted = take_interrupt();
            tell_terminal(mark_no_pastes);
            if (!interrupted && typed != nullptr && length > 0) {
                return keep(std::string(typed, static_cast<std::size_t>(length)));
            }
            pasted_.clear();
            begun_.clear();
            print("\n"); // what is said next stands on a line of its own
            if (!hooks_.drop() && !interrupted) {
                return std::nullopt;
            }
            el_reset(editor_.get());
        }
    }

    void set_up_editor() {
        el_set(editor_.get(), EL_CLIENTDATA, this);
        el_set(editor_.get(), EL_PROMPT, prompt_text);
        el_set(editor_.get(), EL_EDITOR, "emacs");
        el_set(editor_.get(), EL_HIST, history, history_.get());
        el_set(editor_.get(), EL_ADDFN, "qrysh-complete", "Complete the word", complete_word);
        el_set(editor_.get(), EL_BIND, "^I", "qrysh-complete", nullptr);
        el_set(editor_.get(), EL_ADDFN, "qrysh-paste", "Take what is pasted", take_paste);
        el_set(editor_.get(), EL_BIND, paste_begins, "qrysh-paste", nullptr);
        el_source(editor_.get(), nullptr);
    }

    // The history has whole statements: a line that begins one waits for those that end it.
    std::string keep(std::string line) {
        if (!line.empty() && line.back() == '\n') {
            line.pop_back();
        }
        if (const std::optional<std::string> whole = hooks_.whole(line)) {
            history_.add(*whole);
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
            start += start.back() == '/' ? "" : " ";
        } else if (start.size() <= word.size()) {
            print('\n' + in_columns(found.candidates, terminal_columns()));
            return CC_REDISPLAY;
        }
        el_deletestr(editor, static_cast<int>(word.size()));
        el_insertstr(editor, start.c_str());
        return CC_REFRESH;
    }

    // A paste is text, whatever keys its characters are. Its whole lines are taken one by one; what stands
    // behind the last line end can be edited.
    static unsigned char take_paste(EditLine *editor, int /*key*/) {
        std::wstring text;
        const auto has_ended = [&] {
            return text.size() >= paste_ends.size() &&
                   text.compare(text.size() - paste_ends.size(), paste_ends.size(), paste_ends) == 0;
        };
        while (!has_ended()) {
            wchar_t c = 0;
            if (el_wgetc(editor, &c) != 1) {
                return CC_ERROR;
            }
            text += c == L'\r' ? L'\n' : c; // as a terminal sends line ends
        }
        text.resize(text.size() - paste_ends.size());
        return prompt_of(editor).insert(narrow(text));
    }

    unsigned char insert(const std::string &text) {
        const std::size_t first_end = text.find('\n');
        if (first_end == std::string::npos) {
            el_insertstr(editor_.get(), as_keys(text).c_str());
            return CC_REFRESH;
        }
        std::size_t begin = first_end + 1;
        for (std::size_t end = text.find('\n', begin); end != std::string::npos;
             end = text.find('\n', begin)) {
            pasted_.push_back(text.substr(begin, end - begin));
            begin = end + 1;
        }
        begun_ = as_keys(text.substr(begin));
        el_push(editor_.get(), (as_keys(text.substr(0, first_end)) + '\n').c_str());
        return CC_NORM;
    }

    prompt_hooks hooks_;
    std::deque<std::string> pasted_; // lines that are still to be taken
    std::string begun_;              // and what stood behind the last of them
    // The editor reads the history until its own end, so it goes first: members are destroyed from below.
    typed_history history_;
    std::unique_ptr<EditLine, editor_closer> editor_;
};

} // namespace

std::unique_ptr<line_source> open_prompt(prompt_hooks hooks) {
    return std::make_unique<libedit_prompt>(std::move(hooks));
}

} // namespace qrysh
