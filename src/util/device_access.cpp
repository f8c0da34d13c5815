// Device access: a file in the current directory that stands in for byte-addressed device storage.

// An offset has 32 bits without a sign, which a 32-bit file position cannot reach.
#define _FILE_OFFSET_BITS 64

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>

#include <qrylib/device_data.h>
#include <qrylib/types.h>

namespace {

constexpr char storage_name[] = "test_file_debug.dat";

constexpr std::uint32_t not_opened = 1;

struct close_file {
    void operator()(std::FILE *file) const { static_cast<void>(std::fclose(file)); }
};
using open_file = std::unique_ptr<std::FILE, close_file>;

// Opens the storage; null, announced on standard output, when it is not there.
open_file open_storage(const char *mode, const char *complaint) {
    open_file file(std::fopen(storage_name, mode));
    if (file == nullptr) {
        static_cast<void>(std::fputs(complaint, stdout));
    }
    return file;
}

// Without this position a transfer would be made at the start of the file, so a failure leaves it out.
bool seek(const open_file &file, std::uint32_t offset) {
    return fseeko(file.get(), static_cast<off_t>(offset), SEEK_SET) == 0;
}

} // namespace

extern "C" {

void qry_lib_dev_access_init(std::uint32_t size) {
    if (open_file(std::fopen(storage_name, "rb")) != nullptr) {
        return;
    }
    const open_file file(std::fopen(storage_name, "wb"));
    if (file == nullptr) {
        return;
    }
    constexpr std::uint8_t zeros[4096] = {};
    for (std::uint32_t left = size; left != 0;) {
        const std::uint32_t part = std::min<std::uint32_t>(left, sizeof zeros);
        if (std::fwrite(zeros, part, 1, file.get()) != 1) {
            return;
        }
        left -= part;
    }
}

std::uint32_t qry_lib_dev_access_read(std::uint32_t, std::uint32_t offset, void *buffer, std::uint32_t size) {
    if (buffer == nullptr) {
        return QRY_LIB_BAD_PARAMETER;
    }
    const open_file file = open_storage("rb", "*** test.data file open err(r)\n");
    if (file == nullptr) {
        return not_opened;
    }
    if (seek(file, offset)) {
        static_cast<void>(std::fread(buffer, 1, size, file.get()));
    }
    return 0;
}

std::uint32_t qry_lib_dev_access_write(std::uint32_t, std::uint32_t offset, const void *buffer,
                                       std::uint32_t size) {
    if (buffer == nullptr) {
        return QRY_LIB_BAD_PARAMETER;
    }
    const open_file file = open_storage("rb+", "*** test.data file open err(r+)\n");
    if (file == nullptr) {
        return not_opened;
    }
    if (seek(file, offset)) {
        static_cast<void>(std::fwrite(buffer, 1, size, file.get()));
    }
    return 0;
}

} // extern "C"
