// An open file, closed with its owner, and the sentence about a step that failed.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/files/whole_file.h"

namespace qryfiles {

[[noreturn]] inline void fail(const std::string &path, const char *step, int error = errno) {
    throw file_error(path + ": " + step + ": " + std::generic_category().message(error));
}

class open_file {
  public:
    open_file() = default;
    explicit open_file(int number) : number_(number) {}
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

// Writes all of it. Throws `file_error` about `path`.
void write_all(const open_file &file, std::string_view content, const std::string &path);

} // namespace qryfiles
