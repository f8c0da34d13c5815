// File access over real files: FOLDER/AREA/DIRECTORY/NAME, with area and directory as decimal numbers. FOLDER
// is QRYLIB_FILES or, while that is unset, a temporary folder of the process's own that goes with it.
//
// Codes beside 0 and 5 (not there): 1 an argument that no device could serve, 4 access is not permitted,
// 35 too many files are open, 36 no space is left, 40 anything else, a short read included.
#include "platform/file_access.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/host/environment.h"
#include "platform/host/faults.h"
#include "platform/host/guard.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t bad_argument = 1;
constexpr std::uint32_t not_permitted = 4;
constexpr std::uint32_t not_there = 5;
constexpr std::uint32_t too_many_open = 35;
constexpr std::uint32_t no_space = 36;
constexpr std::uint32_t other_failure = 40;

std::uint32_t code_of(int error) {
    switch (error) {
    case 0:
        return 0;
    case ENOENT:
    case ENOTDIR:
        return not_there;
    case EACCES:
    case EPERM:
    case EROFS:
        return not_permitted;
    case EMFILE:
    case ENFILE:
        return too_many_open;
    case ENOSPC:
    case EDQUOT:
        return no_space;
    default:
        return other_failure;
    }
}

// The process's own folder. A child of fork has its own, and does not remove its parent's.
class temporary_folder {
  public:
    ~temporary_folder() {
        if (owner_ == ::getpid()) {
            std::error_code ignored;
            fs::remove_all(path_, ignored);
        }
    }

    const std::string &path() {
        const qryhost::guard hold(lock_);
        if (owner_ != ::getpid()) {
            std::string name = (fs::temp_directory_path() / "qrylib-XXXXXX").string();
            if (::mkdtemp(name.data()) == nullptr) {
                throw std::system_error(errno, std::generic_category());
            }
            path_ = name;
            owner_ = ::getpid();
        }
        return path_;
    }

  private:
    qryhost::guard_mutex lock_{qryhost::lock_rank::temporary_folder};
    std::string path_ QRYLIB_GUARDED_BY(lock_);
    ::pid_t owner_ QRYLIB_GUARDED_BY(lock_) = 0;
};

fs::path root_folder() {
    if (const char *named = qryhost::environment("QRYLIB_FILES")) {
        return named;
    }
    static temporary_folder own;
    return own.path();
}

fs::path directory_path(std::uint32_t area, std::uint32_t directory) {
    return root_folder() / std::to_string(area) / std::to_string(directory);
}

// A name is one file in its directory, and leads nowhere else.
bool is_name(const char *name) {
    return name != nullptr && *name != '\0' && std::strchr(name, '/') == nullptr &&
           std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0;
}

// The frame of every call: an injected fault first, then the work; no exception leaves it.
template <typename Work>
std::uint32_t file_call(qryhost_call call, Work work) noexcept {
    if (const std::uint32_t fault = qryhost::injected_fault(call)) {
        return fault;
    }
    try {
        return work();
    } catch (const std::system_error &failure) {
        return code_of(failure.code().value());
    } catch (const std::exception &) {
        return other_failure;
    }
}

// The open files. A file's number is its position plus 1; one lock is enough for files this small.
class open_files {
  public:
    open_files() noexcept { descriptors_.fill(closed); }

    std::uint32_t open(const fs::path &path, int flags, std::uint32_t &number) {
        const qryhost::guard hold(lock_);
        for (std::size_t i = 0; i < descriptors_.size(); ++i) {
            if (descriptors_[i] == closed) {
                const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
                if (descriptor < 0) {
                    return code_of(errno);
                }
                descriptors_[i] = descriptor;
                number = static_cast<std::uint32_t>(i + 1);
                return 0;
            }
        }
        return too_many_open;
    }

    // Moves `size` bytes by calls of `step(descriptor, bytes done)`, which answers as read and write do.
    template <typename Step>
    std::uint32_t transfer(std::uint32_t number, std::uint32_t size, Step step) {
        const qryhost::guard hold(lock_);
        if (!is_open(number)) {
            return bad_argument;
        }
        for (std::size_t done = 0; done < size;) {
            const ssize_t now = step(descriptors_[number - 1], done);
            if (now == 0) {
                return other_failure;
            }
            if (now < 0 && errno != EINTR) {
                return code_of(errno);
            }
            done += now > 0 ? static_cast<std::size_t>(now) : 0;
        }
        return 0;
    }

    std::uint32_t close(std::uint32_t number) {
        const qryhost::guard hold(lock_);
        if (!is_open(number)) {
            return bad_argument;
        }
        const int result = ::close(descriptors_[number - 1]);
        descriptors_[number - 1] = closed;
        return result == 0 ? 0 : code_of(errno);
    }

  private:
    static constexpr int closed = -1;

    bool is_open(std::uint32_t number) const QRYLIB_REQUIRES(lock_) {
        return number != 0 && number <= descriptors_.size() && descriptors_[number - 1] != closed;
    }

    qryhost::guard_mutex lock_{qryhost::lock_rank::files};
    std::array<int, 64> descriptors_ QRYLIB_GUARDED_BY(lock_);
};

open_files files;

} // namespace

extern "C" {

std::uint32_t fsa_fio_existfile(std::uint32_t area, std::uint32_t directory, const char *name) {
    return file_call(QRYHOST_FILE_EXIST, [=]() -> std::uint32_t {
        if (name != nullptr && !is_name(name)) {
            return bad_argument;
        }
        const fs::path folder = directory_path(area, directory);
        return fs::exists(name == nullptr ? folder : folder / name) ? 0 : not_there;
    });
}

std::uint32_t fsa_fio_mkdir(std::uint32_t area, std::uint32_t directory) {
    return file_call(QRYHOST_FILE_MKDIR, [=]() -> std::uint32_t {
        const fs::path folder = directory_path(area, directory);
        fs::create_directories(folder.parent_path());
        return fs::create_directory(folder) ? 0 : other_failure; // it exists already
    });
}

std::uint32_t fsa_fio_remove(std::uint32_t area, std::uint32_t directory) {
    return file_call(QRYHOST_FILE_REMOVE, [=]() -> std::uint32_t {
        return fs::remove_all(directory_path(area, directory)) != 0 ? 0 : not_there;
    });
}

std::uint32_t fsa_fio_fopen(std::uint32_t area, std::uint32_t directory, const char *name, std::uint32_t mode,
                            std::uint32_t *file) {
    return file_call(QRYHOST_FILE_OPEN, [=]() -> std::uint32_t {
        constexpr int flags[] = {O_RDONLY, O_WRONLY | O_CREAT | O_TRUNC};
        if (!is_name(name) || mode > 1 || file == nullptr) {
            return bad_argument;
        }
        return files.open(directory_path(area, directory) / name, flags[mode], *file);
    });
}

std::uint32_t fsa_fio_fread(std::uint32_t file, void *buffer, std::uint32_t size) {
    return file_call(QRYHOST_FILE_READ, [=]() -> std::uint32_t {
        if (buffer == nullptr) {
            return bad_argument;
        }
        return files.transfer(file, size, [=](int descriptor, std::size_t done) {
            return ::read(descriptor, static_cast<char *>(buffer) + done, size - done);
        });
    });
}

std::uint32_t fsa_fio_fwrite(std::uint32_t file, const void *buffer, std::uint32_t size) {
    return file_call(QRYHOST_FILE_WRITE, [=]() -> std::uint32_t {
        if (buffer == nullptr) {
            return bad_argument;
        }
        return files.transfer(file, size, [=](int descriptor, std::size_t done) {
            return ::write(descriptor, static_cast<const char *>(buffer) + done, size - done);
        });
    });
}

// A close that is to fail closes the file first: its number is never used again, and must not stay taken.
std::uint32_t fsa_fio_fclose(std::uint32_t file) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_FILE_CLOSE);
    const std::uint32_t code = files.close(file);
    return fault != 0 ? fault : code;
}

} // extern "C"
