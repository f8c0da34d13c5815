// Creating and opening device images.
#include "platform/host/image_file.h"

#include <sys/stat.h>

#include <cstring>

#include "platform/host/image_header.h"
#include "platform/host/value_lock.h"
#include "platform/host/whole_file.h"

namespace qryhost {

namespace {

constexpr off_t opening_byte = 0;
constexpr off_t using_byte = 1;

// Whether the file lock was obtained. Belongs to the open file, so it survives the closing of any other
// descriptor of this file, and children of the process keep it alive as they keep the mapping.
bool lock_byte(const open_file &file, off_t byte, short kind, bool wait) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    while (::fcntl(file.number(), wait ? F_OFD_SETLKW : F_OFD_SETLK, &range) != 0) {
        if (errno == EAGAIN || errno == EACCES) {
            return false;
        }
        if (errno != EINTR) {
            throw refusal("a device image cannot be locked here: " + std::generic_category().message(errno));
        }
    }
    return true;
}

// The file is open; it is refused unless it is an image of this build.
void check_image(const std::string &path, const open_file &file) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) {
        fail(path, "cannot be opened");
    }
    if (S_ISDIR(status.st_mode)) {
        throw refusal(path + ": is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        throw refusal(path + ": is not a file");
    }
    image_header header{};
    if (::pread(file.number(), &header, sizeof header, 0) < 0) {
        fail(path, "cannot be read");
    }
    check_header(path, header, static_cast<std::uint64_t>(status.st_size));
}

// Runs alone. A write in progress that none can have been is damage: no process leaves that behind.
void prepare(const std::string &path, store_memory &memory) {
    for (std::size_t i = 0; i < store_layout::get().categories().size(); ++i) {
        if (is_writing(memory, i) && !names_a_write(memory, i)) {
            throw refusal(path + ": is a damaged device image: a write in progress names no value");
        }
        settle_write(memory, i);
    }
    memory.create_locks(true);
}

store_memory map_for_writing(const std::string &path, open_file opened) {
    lock_byte(opened, opening_byte, F_WRLCK, true);
    const bool is_alone = lock_byte(opened, using_byte, F_WRLCK, false);
    store_memory memory = store_memory::mapped(std::move(opened), false);
    if (is_alone) {
        prepare(path, memory);
    }
    lock_byte(memory.file(), using_byte, F_RDLCK, true);
    lock_byte(memory.file(), opening_byte, F_UNLCK, true);
    return memory;
}

std::string empty_image() {
    const image_header &header = expected_header();
    std::string content(memory_shape::get().bytes, '\0');
    std::memcpy(content.data(), &header, sizeof header);
    return content;
}

// Asks for the name itself: a link to nothing is not followed to create a file elsewhere.
void create_if_absent(const std::string &path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) {
        if (S_ISLNK(status.st_mode) && ::stat(path.c_str(), &status) != 0 && errno == ENOENT) {
            throw refusal(path + ": is a link to nothing");
        }
        return;
    }
    if (errno == ENOENT) {
        create_whole_file(path, empty_image());
    }
}

bool may_be_readable(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EISDIR || error == ETXTBSY;
}

} // namespace

store_memory open_image(const std::string &path) {
    create_if_absent(path);
    open_file file(path, O_RDWR | O_NONBLOCK); // opening a pipe must not wait
    if (!file.is_open() && may_be_readable(errno)) {
        return open_image_for_reading(path);
    }
    if (!file.is_open()) {
        fail(path, "cannot be opened");
    }
    check_image(path, file);
    return map_for_writing(path, std::move(file));
}

store_memory open_image_for_reading(const std::string &path) {
    open_file file(path, O_RDONLY | O_NONBLOCK);
    if (!file.is_open()) {
        fail(path, "cannot be opened");
    }
    check_image(path, file);
    return store_memory::mapped(std::move(file), true);
}

} // namespace qryhost
