// Standard output, standard error, and the pager between the answer and the terminal.
#include "tools/qrysh/printing/output.h"

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

namespace qrysh {

namespace {

std::size_t terminal_lines() {
    winsize size{};
    constexpr std::size_t usual_lines = 24;
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 ? size.ws_row : usual_lines;
}

bool is_long(const std::string &text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) >= terminal_lines();
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

} // namespace

void print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw std::system_error(errno, std::generic_category(), "standard output");
    }
}

void say(std::string_view text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

void present(const std::string &text) {
    const char *const pager = std::getenv("PAGER");
    const bool paged = pager != nullptr && *pager != '\0' && output_is_terminal() && is_long(text);
    if (!paged || !page(pager, text)) {
        print(text);
    }
}

bool output_is_terminal() {
    return isatty(STDOUT_FILENO) != 0;
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
    : what_(what), total_(total), shown_(isatty(STDERR_FILENO) != 0) {}

progress::~progress() {
    if (shown_) {
        say("\r\x1B[K");
    }
}

void progress::advance() {
    ++done_;
    constexpr std::size_t steps = 100;
    if (shown_ && done_ % std::max<std::size_t>(total_ / steps, 1) == 0) {
        say(fmt::format("\r{} {}/{}", what_, done_, total_));
    }
}

} // namespace qrysh
