// Standard output, standard error, and the pager between the answer and the terminal.
#include "tools/qrysh/printing/output.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include <fmt/format.h>

#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

// The file that stands for standard output.
struct answer_target {
    FILE *file = nullptr;
    std::string path;
    bool for_one_answer = false;
    bool written = false;
};

answer_target &target() {
    static answer_target one;
    return one;
}

// That of the usual terminal where this one does not tell.
winsize terminal_size() {
    winsize size{};
    static_cast<void>(ioctl(STDOUT_FILENO, TIOCGWINSZ, &size));
    size.ws_row = size.ws_row > 0 ? size.ws_row : 24;
    size.ws_col = size.ws_col > 0 ? size.ws_col : 80;
    return size;
}

bool is_long(const std::string &text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) >= terminal_size().ws_row;
}

// A pager that is left early closes the pipe: that is no fault of the answer, so the signal is held off.
bool page(const char *pager, const std::string &text) {
    void (*const previous)(int) = std::signal(SIGPIPE, SIG_IGN);
    // The pager is the user's own command line.  NOLINTNEXTLINE(cert-env33-c)
    FILE *const pipe = popen(pager, "w");
    bool shown = pipe != nullptr;
    if (shown) {
        static_cast<void>(std::fwrite(text.data(), 1, text.size(), pipe));
        constexpr int not_found = 127; // what the system's shell answers for a program that is not there
        const int status = pclose(pipe);
        shown = !(WIFEXITED(status) && WEXITSTATUS(status) == not_found);
    }
    static_cast<void>(std::signal(SIGPIPE, previous));
    return shown;
}

bool wants_colours() {
    const char *const refused = std::getenv("NO_COLOR");
    const char *const terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) != 0 && (refused == nullptr || *refused == '\0') && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

// The shell has one standard error.
qrytext::voice &errors() {
    static qrytext::voice spoken =
        wants_colours() ? qrytext::voice{"\x1B[1;31m", "\x1B[33m", "\x1B[0m", ""} : qrytext::voice{};
    return spoken;
}

// Printable, but for the shell's own colours.
std::string with_colours(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        std::string_view colour;
        for (const std::string_view own : {errors().fault, errors().note, errors().off}) {
            colour = text.substr(0, own.size()) == own ? own : colour;
        }
        const std::size_t end = colour.empty() ? std::min(text.find('\x1B', 1), text.size()) : colour.size();
        out += colour.empty() ? printable_lines(text.substr(0, end)) : std::string(colour);
        text.remove_prefix(end);
    }
    return out;
}

// With whatever steers the terminal.
void say_raw(std::string_view text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

} // namespace

void print(std::string_view raw) {
    const std::string text = output_is_terminal() ? printable_lines(raw) : std::string(raw);
    answer_target &to = target();
    FILE *const stream = to.file == nullptr ? stdout : to.file;
    to.written = true;
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size() || std::fflush(stream) != 0) {
        const int reason = errno;
        const std::string name = to.file == nullptr ? "standard output" : to.path;
        end_redirection();
        throw std::system_error(reason, std::generic_category(), name);
    }
}

void redirect_answers(const std::string &path, bool once) {
    end_redirection();
    constexpr mode_t owners_alone = 0600; // records hold passwords
    const int number = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, owners_alone);
    FILE *const file = number < 0 ? nullptr : ::fdopen(number, "w");
    if (file == nullptr) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    target() = {file, path, once, false};
}

void end_redirection() {
    if (target().file != nullptr) {
        static_cast<void>(std::fclose(target().file)); // each answer was flushed
    }
    target() = {};
}

void end_answer() {
    if (target().for_one_answer && target().written) {
        end_redirection();
    }
}

std::string answer_file() {
    return target().path;
}

void say(std::string_view text) {
    say_raw(complaints_go_to_terminal() ? with_colours(text) : std::string(text));
}

void present(const std::string &text) {
    const char *const pager = std::getenv("PAGER");
    const bool paged = pager != nullptr && *pager != '\0' && output_is_terminal() && is_long(text);
    if (!paged || !page(pager, printable_lines(text))) {
        print(text);
    }
}

const qrytext::voice &error_voice() {
    return errors();
}

void set_error_place(std::string place) {
    errors().place = std::move(place);
}

std::size_t terminal_columns() {
    return output_is_terminal() ? terminal_size().ws_col : 0;
}

std::string in_columns(const std::vector<std::string> &words, std::size_t width) {
    constexpr std::size_t gap = 2;
    std::size_t widest = 0;
    for (const std::string &word : words) {
        widest = std::max(widest, qrytext::text_width(word) + gap);
    }
    const std::size_t columns =
        std::max<std::size_t>((width + gap - 1) / std::max<std::size_t>(widest, 1), 1);
    const std::size_t rows = (words.size() + columns - 1) / columns;
    std::string text;
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t i = row; i < words.size(); i += rows) {
            const bool is_last = i + rows >= words.size();
            text += words[i] + std::string(is_last ? 0 : widest - qrytext::text_width(words[i]), ' ');
        }
        text += '\n';
    }
    return text;
}

bool output_is_terminal() {
    return target().file == nullptr && isatty(STDOUT_FILENO) != 0;
}

bool complaints_go_to_terminal() {
    return isatty(STDERR_FILENO) != 0;
}

bool input_is_terminal() {
    return isatty(STDIN_FILENO) != 0;
}

std::string ask(std::string_view question) {
    say(question);
    std::string line;
    std::getline(std::cin, line);
    return line;
}

progress::progress(std::string_view what, std::size_t total)
    : what_(what), total_(total), shown_(complaints_go_to_terminal()) {}

progress::~progress() {
    if (shown_) {
        say_raw("\r\x1B[K");
    }
}

void progress::advance() {
    ++done_;
    constexpr std::size_t steps = 100;
    if (shown_ && done_ % std::max<std::size_t>(total_ / steps, 1) == 0) {
        say_raw(fmt::format("\r{} {}/{}", what_, done_, total_));
    }
}

} // namespace qrysh
