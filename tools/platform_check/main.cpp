// qrylib-platform-check: exercises a device's platform and says what the library would miss there.
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "tools/platform_check/checks.h"

namespace {

constexpr int wrong_command_line = 2;

bool parse_number(const char *text, std::uint32_t &number) {
    char *end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text, &end, 0);
    if (errno != 0 || end == text || *end != '\0' || *text == '-' || value > UINT32_MAX) {
        return false;
    }
    number = static_cast<std::uint32_t>(value);
    return true;
}

} // namespace

int main(int argc, char **argv) {
    platform_check::options where;
    const bool is_understood = argc == 1 || (argc == 3 && parse_number(argv[1], where.area) &&
                                             parse_number(argv[2], where.directory));
    if (!is_understood) {
        static_cast<void>(std::fputs(
            "usage: qrylib-platform-check [AREA DIRECTORY]\n"
            "Exercises every function that the library calls on this device and puts back what it changes.\n"
            "AREA DIRECTORY: where files may be made and removed (1 32767). Exit status: 0 when the "
            "platform\n"
            "does what the library needs, 1 when something is missing or different.\n",
            stderr));
        return wrong_command_line;
    }
    const platform_check::report found = platform_check::check_platform(where);
    static_cast<void>(std::fputs(found.text().c_str(), stdout));
    return found.finding_num() == 0 ? 0 : 1;
}
