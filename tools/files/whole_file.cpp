// What stands under a name, and reading, writing and creating it.
#include "tools/files/whole_file.h"

#include <sys/stat.h>

#include <algorithm>

#include "tools/files/links.h"
#include "tools/files/open_file.h"
#include "tools/files/temporary_file.h"
#include "tools/files/write_through.h"

namespace qryfiles {

namespace {

// The head of a SQLite file: its first bytes, and where the number of the program stands, big-endian.
constexpr std::string_view database_magic("SQLite format 3\0", 16);
constexpr std::size_t mark_place = 68;
constexpr std::size_t head_size = 100;

bool is_foreign_database(const std::string &path) {
    const open_file file(path, O_RDONLY | O_NONBLOCK);
    char head[head_size] = {};
    if (!file.is_open() || ::read(file.number(), head, sizeof head) < 0) {
        return false;
    }
    std::uint32_t mark = 0;
    for (std::size_t i = mark_place; i < mark_place + sizeof mark; ++i) {
        mark = mark << 8 | static_cast<unsigned char>(head[i]);
    }
    return std::equal(database_magic.begin(), database_magic.end(), head) && mark != database_mark;
}

// The same of a path without links.
standing what_stands_at(const std::string &path) {
    struct stat status {};
    if (own_open_file(path)) {
        return standing::stream;
    }
    if (::stat(path.c_str(), &status) != 0) {
        return standing::nothing;
    }
    if (S_ISDIR(status.st_mode)) {
        throw file_error(path + ": cannot be replaced: it is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        return standing::stream;
    }
    return is_foreign_database(path) ? standing::foreign_database : standing::file;
}

// The new name is on the disk only when the folder is. Some file systems cannot sync folders.
void sync_folder_of(const std::string &path) {
    const std::string folder = folder_of(path);
    const open_file opened(folder, O_RDONLY | O_DIRECTORY);
    if (!opened.is_open() || (::fsync(opened.number()) != 0 && errno != EINVAL)) {
        fail(folder, "cannot be synced");
    }
}

void replace(const std::string &path, std::string_view content) {
    temporary_file fresh(path, content);
    if (::rename(fresh.path().c_str(), path.c_str()) != 0) {
        fail(path, "cannot be replaced");
    }
    fresh.keep();
    sync_folder_of(path);
}

} // namespace

std::string folder_of(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

standing what_stands(const std::string &path) {
    return what_stands_at(follow_links(path));
}

void write_file(const std::string &path, std::string_view content, care taken) {
    const std::string place = follow_links(path);
    const standing there = what_stands_at(place);
    if (there == standing::stream) {
        write_through(place, content);
        return;
    }
    if (there == standing::foreign_database && taken == care::usual) {
        throw file_error(path + ": is a SQLite file of another program, which is not replaced");
    }
    replace(place, content);
}

void create_file(const std::string &path, std::string_view content) {
    const temporary_file fresh(path, content);
    if (::link(fresh.path().c_str(), path.c_str()) != 0 && errno != EEXIST) {
        fail(path, "cannot be created");
    }
    sync_folder_of(path);
}

std::string read_file(const std::string &path, std::size_t size_max) {
    const open_file file(path, O_RDONLY | O_NONBLOCK); // opening a pipe must not wait for its writer
    struct stat status {};
    if (!file.is_open() || ::fstat(file.number(), &status) != 0) {
        fail(path, "cannot be opened");
    }
    if (!S_ISREG(status.st_mode)) {
        throw file_error(path + ": is not a file");
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
            throw file_error(path + ": is larger than " + std::to_string(size_max) + " bytes");
        }
    }
}

} // namespace qryfiles
