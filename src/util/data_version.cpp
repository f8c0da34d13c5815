// The data version: the file "version" of a directory in the device's file store.
#include <cstdint>

#include <qrylib/device_data.h>

#include "platform/file_access.h"
#include "util/trace.h"

using norvane::trace_return;

namespace {

constexpr char version_name[] = "version";
constexpr std::uint32_t version_size = 4;
constexpr std::uint32_t mode_read = 0;
constexpr std::uint32_t mode_write = 1;
constexpr std::uint32_t file_missing = 5;
constexpr std::uint32_t directory_renewed = 1;

// How the file store's codes are reported. A code without a row becomes other_file_code.
constexpr struct {
    std::uint32_t platform;
    std::uint32_t library;
} file_codes[] = {{0, 0}, {1, 5}, {4, 2}, {35, 3}, {36, 4}};
constexpr std::uint32_t other_file_code = 257;

std::uint32_t library_code(std::uint32_t platform_code) {
    for (const auto &row : file_codes) {
        if (row.platform == platform_code) {
            return row.library;
        }
    }
    return other_file_code;
}

// Any answer but "missing" counts as there: the next step then fails with a code that says why.
bool exists(std::uint32_t area, std::uint32_t directory, const char *name) {
    return fsa_fio_existfile(area, directory, name) != file_missing;
}

// Reads the version file into `version`. Traces under the name of the exported function that is running.
std::uint32_t read_version(const char *function, std::uint32_t area, std::uint32_t directory,
                           std::uint32_t &version) {
    std::uint32_t file = 0;
    if (const auto code = library_code(fsa_fio_fopen(area, directory, version_name, mode_read, &file))) {
        return trace_return(function, 267, code);
    }
    std::uint8_t bytes[version_size] = {};
    const std::uint32_t read_code = library_code(fsa_fio_fread(file, bytes, version_size));
    const std::uint32_t close_code = library_code(fsa_fio_fclose(file));
    if (read_code != 0) {
        return trace_return(function, 276, read_code);
    }
    if (close_code != 0) {
        return trace_return(function, 284, close_code);
    }
    version = 0;
    for (const std::uint8_t byte : bytes) {
        version = version << 8 | byte;
    }
    return 0;
}

// Writes the version file. Traces under the name of the exported function that is running.
std::uint32_t write_version(const char *function, std::uint32_t area, std::uint32_t directory,
                            std::uint32_t version) {
    std::uint32_t file = 0;
    if (const auto code = library_code(fsa_fio_fopen(area, directory, version_name, mode_write, &file))) {
        return trace_return(function, 321, code);
    }
    const std::uint8_t bytes[version_size] = {
        static_cast<std::uint8_t>(version >> 24), static_cast<std::uint8_t>(version >> 16),
        static_cast<std::uint8_t>(version >> 8), static_cast<std::uint8_t>(version)};
    const std::uint32_t write_code = library_code(fsa_fio_fwrite(file, bytes, version_size));
    const std::uint32_t close_code = library_code(fsa_fio_fclose(file));
    if (write_code != 0) {
        return trace_return(function, 330, write_code);
    }
    if (close_code != 0) {
        return trace_return(function, 338, close_code);
    }
    return 0;
}

// The file store refused for a reason that says nothing about the stored data, which must survive it.
bool keeps_directory(std::uint32_t code) {
    return code == 2 || code == 3 || code == 4;
}

// Replaces whatever the directory holds by the version file alone.
std::uint32_t renew(const char *function, std::uint32_t area, std::uint32_t directory,
                    std::uint32_t version) {
    if (exists(area, directory, nullptr)) {
        if (const auto code = library_code(fsa_fio_remove(area, directory))) {
            return trace_return(function, 154, code);
        }
    }
    if (const auto code = library_code(fsa_fio_mkdir(area, directory))) {
        return trace_return(function, 164, code);
    }
    if (const auto code = write_version(function, area, directory, version)) {
        return trace_return(function, 173, code);
    }
    return directory_renewed;
}

} // namespace

extern "C" {

std::uint32_t qry_lib_write_data_version(std::uint32_t area, std::uint32_t directory, std::uint32_t version) {
    if (!exists(area, directory, nullptr)) {
        if (const auto code = library_code(fsa_fio_mkdir(area, directory))) {
            return trace_return(__func__, 220, code);
        }
    }
    if (const auto code = write_version(__func__, area, directory, version)) {
        return trace_return(__func__, 230, code);
    }
    return 0;
}

std::uint32_t qry_lib_check_data_version(std::uint32_t area, std::uint32_t directory,
                                         std::uint32_t expected) {
    if (!exists(area, directory, version_name)) {
        return renew(__func__, area, directory, expected);
    }
    std::uint32_t stored = 0;
    const std::uint32_t read_code = read_version(__func__, area, directory, stored);
    if (read_code == 0 && stored == expected) {
        return 0;
    }
    if (keeps_directory(read_code)) {
        return trace_return(__func__, 128, read_code);
    }
    if (read_code != 0) {
        if (const auto code = library_code(fsa_fio_remove(area, directory))) {
            return trace_return(__func__, 138, code);
        }
    }
    return renew(__func__, area, directory, expected);
}

} // extern "C"
