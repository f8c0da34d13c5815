// Taking a byte's lock, and finding out who has it.
#include "platform/host/file_lock.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/host/wait_limit.h"

namespace qryhost {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds patience{1};

struct flock range_of(off_t byte, short kind) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    return range;
}

// How /proc names a file: its device's numbers and its own.
std::string proc_name(const struct stat &file) {
    char device[32];
    static_cast<void>(
        std::snprintf(device, sizeof device, "%02x:%02x:", major(file.st_dev), minor(file.st_dev)));
    return device + std::to_string(file.st_ino);
}

// Whether a line of /proc/PID/fdinfo/FILE tells of a lock on the byte of the file: "lock:", a number, two
// words, READ or WRITE, a process, the file, the first byte, the last byte or EOF.
bool tells_of_lock(const std::string &line, const std::string &file, off_t byte) {
    std::istringstream words(line);
    std::string word[9];
    for (std::string &one : word) {
        words >> one;
    }
    return word[0] == "lock:" && word[6] == file && std::strtoll(word[7].c_str(), nullptr, 10) <= byte &&
           (word[8] == "EOF" || std::strtoll(word[8].c_str(), nullptr, 10) >= byte);
}

bool has_lock(const fs::path &process, const std::string &file, off_t byte) {
    std::error_code ignored;
    for (const fs::directory_entry &entry : fs::directory_iterator(process / "fdinfo", ignored)) {
        std::ifstream lines(entry.path());
        for (std::string line; std::getline(lines, line);) {
            if (tells_of_lock(line, file, byte)) {
                return true;
            }
        }
    }
    return false;
}

// The system tells a process's number only for locks of the other kind, so /proc is searched as far as it may
// be read. The own process holds the file too, but not this lock.
std::string holder_of(const open_file &opened, off_t byte) {
    struct stat file {};
    std::error_code ignored;
    if (::fstat(opened.number(), &file) == 0) {
        for (const fs::directory_entry &entry : fs::directory_iterator("/proc", ignored)) {
            const std::string name = entry.path().filename();
            const bool is_process = name.find_first_not_of("0123456789") == std::string::npos;
            if (is_process && has_lock(entry.path(), proc_name(file), byte)) {
                return "process " + name;
            }
        }
    }
    return "another process";
}

} // namespace

bool lock_byte(const open_file &file, off_t byte, short kind) {
    struct flock range = range_of(byte, kind);
    while (::fcntl(file.number(), F_OFD_SETLK, &range) != 0) {
        if (errno == EAGAIN || errno == EACCES) {
            return false;
        }
        if (errno != EINTR) {
            throw refusal("a device image cannot be locked here: " + std::generic_category().message(errno));
        }
    }
    return true;
}

void wait_for_byte(const std::string &path, const open_file &file, off_t byte, short kind) {
    wait_limit limit(patience);
    while (!lock_byte(file, byte, kind)) {
        if (!limit.pause()) {
            throw refusal(path + ": " + holder_of(file, byte) + " holds the image locked");
        }
    }
}

} // namespace qryhost
