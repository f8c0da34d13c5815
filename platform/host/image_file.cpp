// Creating and opening device images.
#include "platform/host/image_file.h"

#include <sys/stat.h>

#include <cstring>

#include "platform/host/file_lock.h"
#include "platform/host/file_system.h"
#include "platform/host/image_header.h"
#include "platform/host/write_in_progress.h"
#include "tools/files/whole_file.h"

namespace qryhost {

namespace {

constexpr off_t opening_byte = 0;
constexpr off_t using_byte = 1;

// The file is open; it is refused unless it is an image of this build.
image_use check_image(const std::string &path, const open_file &file) {
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
    image_use use = check_header(path, header, static_cast<std::uint64_t>(status.st_size));
    if (const std::string reason = unshared_reason(file); use.read_only_reason.empty() && !reason.empty()) {
        use.read_only_reason = path + ": " + reason;
    }
    return use;
}

// Runs alone. A write in progress that none can have been is damage: no process leaves that behind. All are
// looked at before the first is settled, so that an image that is refused stays as it was.
void prepare(const std::string &path, store_memory &memory) {
    const std::size_t category_num = store_layout::get().categories().size();
    for (std::size_t i = 0; i < category_num; ++i) {
        if (is_writing(memory, i) && named_write(memory, i).kind == write_none) {
            throw refusal(path + ": is a damaged device image: a write in progress names no value");
        }
    }
    for (std::size_t i = 0; i < category_num; ++i) {
        settle_write(memory, i);
        memory.guard(i).holder.store(0, std::memory_order_relaxed);
    }
    memory.create_locks(true);
}

store_memory map_for_writing(const std::string &path, open_file opened) {
    wait_for_byte(path, opened, opening_byte, F_WRLCK);
    const bool is_alone = lock_byte(opened, using_byte, F_WRLCK);
    store_memory memory = store_memory::mapped_for_writing(std::move(opened));
    if (is_alone) {
        prepare(path, memory);
    }
    wait_for_byte(path, memory.file(), using_byte, F_RDLCK);
    lock_byte(memory.file(), opening_byte, F_UNLCK);
    return memory;
}

store_memory map_for_reading(const std::string &path, open_file opened, const image_use &use) {
    require_room(path, opened, use.shape->bytes);
    const std::string &reason = use.read_only_reason;
    return store_memory::mapped_for_reading(std::move(opened), *use.shape,
                                            reason.empty() ? unwritable_reason : reason);
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
    if (errno != ENOENT) {
        return;
    }
    const std::string folder = qryfiles::folder_of(path);
    if (const open_file opened(folder, O_RDONLY | O_DIRECTORY); opened.is_open()) {
        if (const std::string reason = unshared_reason(opened); !reason.empty()) {
            throw refusal(path + ": " + reason);
        }
    }
    qryfiles::create_file(path, empty_image());
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
    const image_use use = check_image(path, file);
    if (!use.read_only_reason.empty()) {
        return map_for_reading(path, std::move(file), use);
    }
    reserve_room(path, file, use.shape->bytes);
    return map_for_writing(path, std::move(file));
}

store_memory open_image_for_reading(const std::string &path) {
    open_file file(path, O_RDONLY | O_NONBLOCK);
    if (!file.is_open()) {
        fail(path, "cannot be opened");
    }
    const image_use use = check_image(path, file);
    return map_for_reading(path, std::move(file), use);
}

} // namespace qryhost
