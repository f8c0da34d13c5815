// Devices, pipes and the process's own open files.
#include "tools/files/write_through.h"

#include <pthread.h>
#include <sys/stat.h>

#include <csignal>
#include <ctime>

#include "tools/files/links.h"
#include "tools/files/open_file.h"

namespace qryfiles {

namespace {

// A pipe whose reader has left is a failure of this file, not the end of the program.
class held_pipe_signal {
  public:
    held_pipe_signal() {
        sigset_t pending;
        sigemptyset(&signals_);
        sigaddset(&signals_, SIGPIPE);
        was_pending_ = sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &signals_, &former_);
    }
    ~held_pipe_signal() {
        const timespec at_once{};
        if (!was_pending_) {
            sigtimedwait(&signals_, nullptr, &at_once);
        }
        pthread_sigmask(SIG_SETMASK, &former_, nullptr);
    }
    held_pipe_signal(const held_pipe_signal &) = delete;
    held_pipe_signal &operator=(const held_pipe_signal &) = delete;

  private:
    sigset_t signals_;
    sigset_t former_;
    bool was_pending_;
};

// Of the process's own open file a second number, so that the place in it goes on from where it is.
open_file open_stream(const std::string &path) {
    if (const auto number = own_open_file(path)) {
        return open_file(::fcntl(*number, F_DUPFD_CLOEXEC, 0));
    }
    open_file file(path, O_WRONLY | O_NOCTTY);
    struct stat status {};
    if (file.is_open() && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode)) {
        throw file_error(path + ": was exchanged for a file meanwhile");
    }
    return file;
}

} // namespace

void write_all(const open_file &file, std::string_view content, const std::string &path) {
    while (!content.empty()) {
        const ssize_t now = ::write(file.number(), content.data(), content.size());
        if (now < 0 && errno != EINTR) {
            fail(path, "cannot be written");
        }
        content.remove_prefix(now > 0 ? static_cast<std::size_t>(now) : 0);
    }
}

void write_through(const std::string &path, std::string_view content) {
    const held_pipe_signal held;
    open_file file = open_stream(path);
    if (!file.is_open()) {
        fail(path, "cannot be opened");
    }
    write_all(file, content, path);
    if (!file.close()) {
        fail(path, "cannot be written");
    }
}

} // namespace qryfiles
