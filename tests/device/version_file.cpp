// Writes or checks a data-version file, for a comparison of two builds:
//     version_file write|check VERSION
#include <qrylib/device_data.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char **argv) {
    constexpr std::uint32_t area = 1;
    constexpr std::uint32_t directory = 2;
    if (argc != 3) {
        return 2;
    }
    const auto version = static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 0));
    const bool writes = std::strcmp(argv[1], "write") == 0;
    const std::uint32_t code = writes ? qry_lib_write_data_version(area, directory, version)
                                      : qry_lib_check_data_version(area, directory, version);
    std::printf("%s 0x%08lX: 0x%04lX\n", argv[1], static_cast<unsigned long>(version),
                static_cast<unsigned long>(code));
    return code == 0 ? 0 : 1;
}
