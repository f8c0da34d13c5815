// A temporary file, renamed.
#include "tools/qrysh/transfer/file_writer.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>

#include <fmt/format.h>

namespace qrysh {

void replace_file(const std::string &path, const std::function<void(const std::string &temporary)> &write) {
    const std::string temporary = fmt::format("{}.{}.tmp", path, getpid());
    try {
        write(temporary);
        if (std::rename(temporary.c_str(), path.c_str()) != 0) {
            throw std::system_error(errno, std::generic_category(), path);
        }
    } catch (...) {
        static_cast<void>(std::remove(temporary.c_str()));
        throw;
    }
}

void write_file(const std::string &path, const std::string &text) {
    replace_file(path, [&](const std::string &temporary) {
        errno = 0;
        std::ofstream file(temporary, std::ios::binary);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        if (!file) {
            throw std::system_error(errno, std::generic_category(), path);
        }
    });
}

} // namespace qrysh
