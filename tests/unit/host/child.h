// Child processes of a test.
#pragma once

#include <csignal>
#include <cstdio>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

namespace test {

// Runs `work` in a child of fork, which ends with whether work answered true. Nothing of the parent's is
// cleaned up there: its temporary folders and buffered output stay the parent's.
class child_process {
  public:
    template <typename Work>
    explicit child_process(Work work) {
        std::fflush(nullptr);
        id_ = fork();
        if (id_ == 0) {
            const bool good = work();
            std::fflush(nullptr);
            _exit(good ? 0 : 1);
        }
    }
    child_process(child_process &&other) noexcept : id_(std::exchange(other.id_, -1)) {}
    child_process &operator=(child_process &&) = delete;
    ~child_process() {
        if (id_ > 0) {
            kill();
        }
    }

    pid_t id() const { return id_; }

    // Waits for the child's end. -1: it did not end by itself.
    int exit_status() {
        int status = 0;
        const pid_t child = std::exchange(id_, -1);
        const bool has_ended = child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status);
        return has_ended ? WEXITSTATUS(status) : -1;
    }
    bool succeeded() { return exit_status() == 0; }

    // Somebody else has waited for its end.
    void release() { id_ = -1; }

    // Ends the child wherever it is. False: it had ended before.
    bool kill() {
        int status = 0;
        const pid_t child = std::exchange(id_, -1);
        ::kill(child, SIGKILL);
        return waitpid(child, &status, 0) == child && WIFSIGNALED(status);
    }

  private:
    pid_t id_ = -1;
};

// Under emulation the system does not tell of a lock whose holder died.
inline bool dead_holders_are_told() {
    void *head = nullptr;
    std::size_t length = 0;
    return syscall(SYS_get_robust_list, 0, &head, &length) == 0;
}

template <typename Work>
bool in_child(Work work) {
    return child_process(std::move(work)).succeeded();
}

} // namespace test
