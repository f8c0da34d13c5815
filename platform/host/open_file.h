// An open file, closed with its owner, and the sentence about a step that failed.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "platform/host/refusal.h"

namespace qryhost {

[[noreturn]] inline void fail(const std::string &path, const char *step, int error = errno) {
    throw refusal(path + ": " + step + ": " + std::generic_category().message(error));
}

class open_file {
  public:
    open_file() = default;
    open_file(const std::string &path, int flags, mode_t mode = 0)
        : number_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    open_file(open_file &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    open_file &operator=(open_file &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~open_file() {
        if (is_open()) {
            ::close(number_);
        }
    }

    bool is_open() const { return number_ >= 0; }
    int number() const { return number_; }
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_ = -1;
};

} // namespace qryhost
