// Created, given the target's mode, filled and synced.
#include "tools/files/temporary_file.h"

#include <sys/random.h>
#include <sys/stat.h>

namespace qryfiles {

namespace {

// Records hold passwords: nobody else reads a new file of theirs.
constexpr mode_t own_mode = 0600;

// What is left of the longest name that a folder takes.
constexpr std::size_t name_max = 200;

// A name that is taken, a planted link included, is left alone, and the next one is tried.
open_file open_new(const std::string &target, std::string &path, const std::function<std::string()> &digits) {
    constexpr int tries = 100;
    const std::size_t name = target.rfind('/') + 1;
    const std::string beginning = target.substr(0, name) + target.substr(name, name_max) + '.';
    for (int i = 0; i < tries; ++i) {
        path = beginning + digits() + ".tmp";
        open_file file(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, own_mode);
        if (file.is_open()) {
            return file;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    path.clear();
    fail(target, "cannot be created");
}

// The new file is read by whom the old one was read by. Where its group cannot be kept, no other one takes
// over what that group could do.
void keep_mode_of(const std::string &target, const open_file &file) {
    struct stat old {};
    struct stat fresh {};
    if (::lstat(target.c_str(), &old) != 0 || !S_ISREG(old.st_mode)) {
        return;
    }
    const bool is_kept = ::fchown(file.number(), old.st_uid, old.st_gid) == 0;
    const bool has_group = ::fstat(file.number(), &fresh) == 0 && fresh.st_gid == old.st_gid;
    const mode_t lost = is_kept || has_group ? 0 : S_IRWXG;
    if (::fchmod(file.number(), old.st_mode & 0777 & ~lost) != 0) {
        fail(target, "its mode cannot be kept");
    }
}

} // namespace

std::string random_digits() {
    constexpr std::size_t bytes = 8;
    constexpr char digits[] = "0123456789abcdef";
    unsigned char drawn[bytes] = {};
    // The kernel's source gives so few bytes at once; should it fail, the name is a tried one all the same.
    static_cast<void>(::getrandom(drawn, sizeof drawn, 0));
    std::string text;
    for (const unsigned char byte : drawn) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

temporary_file::temporary_file(const std::string &target, std::string_view content,
                               const std::function<std::string()> &digits) {
    open_file file = open_new(target, path_, digits);
    try {
        keep_mode_of(target, file);
        write_all(file, content, target);
        if (::fsync(file.number()) != 0 || !file.close()) {
            fail(target, "cannot be written");
        }
    } catch (...) {
        remove();
        throw;
    }
}

void temporary_file::remove() {
    if (!path_.empty()) {
        ::unlink(path_.c_str());
    }
}

} // namespace qryfiles
