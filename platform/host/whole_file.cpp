// Reading with a limit; replacing through a synced temporary file and a rename.
#include "platform/host/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/host/control.h"

namespace qryhost {

namespace {

[[noreturn]] void fail(const std::string &path, const char *step, int error = errno) {
    throw refusal(path + ": " + step + ": " + std::generic_category().message(error));
}

class open_file {
  public:
    open_file(const std::string &path, int flags) : number_(::open(path.c_str(), flags | O_CLOEXEC, 0666)) {}
    open_file(const open_file &) = delete;
    open_file &operator=(const open_file &) = delete;
    ~open_file() {
        if (is_open()) {
            ::close(number_);
        }
    }

    bool is_open() const { return number_ >= 0; }
    int number() const { return number_; }
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

// Deletes the temporary file unless it has become the target.
class temporary_file {
  public:
    explicit temporary_file(std::string path) : path_(std::move(path)) {}
    temporary_file(const temporary_file &) = delete;
    temporary_file &operator=(const temporary_file &) = delete;
    ~temporary_file() {
        if (!path_.empty()) {
            ::unlink(path_.c_str());
        }
    }

    void keep() { path_.clear(); }

  private:
    std::string path_;
};

std::string temporary_name(const std::string &path) {
    static std::atomic<unsigned> counter{0};
    return path + "." + std::to_string(::getpid()) + "." + std::to_string(++counter) + ".tmp";
}

void write_all(int file, const std::string &content, const std::string &path) {
    for (std::size_t written = 0; written < content.size();) {
        const ssize_t now = ::write(file, content.data() + written, content.size() - written);
        if (now < 0 && errno != EINTR) {
            fail(path, "cannot be written");
        }
        written += now > 0 ? static_cast<std::size_t>(now) : 0;
    }
}

// The new name is on the disk only when the folder is. Some file systems cannot sync folders.
void sync_folder_of(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const open_file opened(folder, O_RDONLY | O_DIRECTORY);
    if (!opened.is_open() || (::fsync(opened.number()) != 0 && errno != EINVAL)) {
        fail(folder, "cannot be synced");
    }
}

} // namespace

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
    const std::string fresh = temporary_name(path);
    open_file file(fresh, O_WRONLY | O_CREAT | O_EXCL);
    if (!file.is_open()) {
        fail(fresh, "cannot be created");
    }
    temporary_file unfinished(fresh);
    write_all(file.number(), content, fresh);
    if (::fsync(file.number()) != 0 || !file.close()) {
        fail(fresh, "cannot be written");
    }
    if (::rename(fresh.c_str(), path.c_str()) != 0) {
        fail(path, "cannot be replaced");
    }
    unfinished.keep();
    sync_folder_of(path);
}

} // namespace qryhost
