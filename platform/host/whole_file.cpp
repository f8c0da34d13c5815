// Reading with a limit; creating and replacing through a synced temporary file beside the target.
#include "platform/host/whole_file.h"

#include <sys/stat.h>

#include <atomic>
#include <utility>

#include "platform/host/open_file.h"

namespace qryhost {

namespace {

// Records hold passwords: nobody else reads a new file of theirs.
constexpr mode_t own_mode = 0600;

// Process numbers repeat, in containers above all, and what a killed one left behind stays there: the next
// name is tried.
open_file open_temporary(const std::string &target, std::string &path) {
    static std::atomic<unsigned> counter{0};
    constexpr int tries = 10000;
    for (int i = 0; i < tries; ++i) {
        path = target + "." + std::to_string(::getpid()) + "." + std::to_string(++counter) + ".tmp";
        open_file file(path, O_WRONLY | O_CREAT | O_EXCL, own_mode);
        if (file.is_open() || errno != EEXIST) {
            return file;
        }
    }
    return {};
}

// The new file is read by whom the old one was read by. Where its group cannot be kept, no other one takes
// over what that group could do.
void keep_mode_of(const std::string &target, int file) {
    struct stat old {};
    struct stat fresh {};
    if (::stat(target.c_str(), &old) != 0 || !S_ISREG(old.st_mode)) {
        return;
    }
    const bool is_kept = ::fchown(file, old.st_uid, old.st_gid) == 0;
    const bool has_group = ::fstat(file, &fresh) == 0 && fresh.st_gid == old.st_gid;
    const mode_t lost = is_kept || has_group ? 0 : S_IRWXG;
    if (::fchmod(file, old.st_mode & 0777 & ~lost) != 0) {
        fail(target, "its mode cannot be kept");
    }
}

// The target's new content, complete and on the disk. Deleted unless it has become the target.
class temporary_file {
  public:
    temporary_file(const std::string &target, const std::string &content);
    temporary_file(const temporary_file &) = delete;
    temporary_file &operator=(const temporary_file &) = delete;
    ~temporary_file() {
        if (!path_.empty()) {
            ::unlink(path_.c_str());
        }
    }

    const std::string &path() const { return path_; }
    void keep() { path_.clear(); }

  private:
    std::string path_;
};

void write_all(int file, const std::string &content, const std::string &path) {
    for (std::size_t written = 0; written < content.size();) {
        const ssize_t now = ::write(file, content.data() + written, content.size() - written);
        if (now < 0 && errno != EINTR) {
            fail(path, "cannot be written");
        }
        written += now > 0 ? static_cast<std::size_t>(now) : 0;
    }
}

temporary_file::temporary_file(const std::string &target, const std::string &content) {
    open_file file = open_temporary(target, path_);
    if (!file.is_open()) {
        fail(target, "cannot be created");
    }
    try {
        keep_mode_of(target, file.number());
        write_all(file.number(), content, target);
        if (::fsync(file.number()) != 0 || !file.close()) {
            fail(target, "cannot be written");
        }
    } catch (...) {
        ::unlink(path_.c_str());
        throw;
    }
}

// The new name is on the disk only when the folder is. Some file systems cannot sync folders.
void sync_folder_of(const std::string &path) {
    const std::string folder = folder_of(path);
    const open_file opened(folder, O_RDONLY | O_DIRECTORY);
    if (!opened.is_open() || (::fsync(opened.number()) != 0 && errno != EINVAL)) {
        fail(folder, "cannot be synced");
    }
}

} // namespace

std::string folder_of(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string read_whole_file(const std::string &path, std::size_t size_max) {
    const open_file file(path, O_RDONLY | O_NONBLOCK); // opening a pipe must not wait for its writer
    struct stat status {};
    if (!file.is_open() || ::fstat(file.number(), &status) != 0) {
        fail(path, "cannot be opened");
    }
    if (!S_ISREG(status.st_mode)) {
        throw refusal(path + ": is not a file");
    }
    std::string content;
    char buffer[65536];
    for (;;) {
        const ssize_t now = ::read(file.number(), buffer, sizeof buffer);
        if (now < 0 && errno != EINTR) {
            fail(path, "cannot be read");
        }
        if (now == 0) {
            return content;
        }
        content.append(buffer, now > 0 ? static_cast<std::size_t>(now) : 0);
        if (content.size() > size_max) {
            throw refusal(path + ": is larger than " + std::to_string(size_max) + " bytes");
        }
    }
}

void replace_whole_file(const std::string &path, const std::string &content) {
    temporary_file fresh(path, content);
    if (::rename(fresh.path().c_str(), path.c_str()) != 0) {
        fail(path, "cannot be replaced");
    }
    fresh.keep();
    sync_folder_of(path);
}

void create_whole_file(const std::string &path, const std::string &content) {
    const temporary_file fresh(path, content);
    if (::link(fresh.path().c_str(), path.c_str()) != 0 && errno != EEXIST) {
        fail(path, "cannot be created");
    }
    sync_folder_of(path);
}

} // namespace qryhost
