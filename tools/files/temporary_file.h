// A file's new content, complete and on the disk, under a name that nobody knows.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "tools/files/open_file.h"

namespace qryfiles {

// Sixteen digits that nobody can tell beforehand.
std::string random_digits();

// Deleted with its owner unless it has become the target.
class temporary_file {
  public:
    // Throws `file_error`. `digits` makes the part of the name that differs from try to try.
    temporary_file(const std::string &target, std::string_view content,
                   const std::function<std::string()> &digits = random_digits);
    ~temporary_file() { remove(); }
    temporary_file(const temporary_file &) = delete;
    temporary_file &operator=(const temporary_file &) = delete;

    const std::string &path() const { return path_; }
    void keep() { path_.clear(); }

  private:
    void remove();

    std::string path_;
};

} // namespace qryfiles
