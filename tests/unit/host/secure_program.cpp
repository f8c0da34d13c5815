// A program that is run with more rights than its user: it tells whether it obeys that user's environment.
#include <sys/auxv.h>
#include <unistd.h>

#include <cstdint>

#include "platform/element_table.h"
#include "platform/file_access.h"
#include "platform/trace.h"

int main() {
    constexpr std::uint32_t settings = 0x04050300;
    constexpr std::uint32_t setting = 0x85004860;
    constexpr int no_more_rights = 77;
    if (getauxval(AT_SECURE) == 0) {
        return no_more_rights;
    }
    pfwGENTrcPrintf(0, 258, 2, "line\n");
    fsa_fio_existfile(1, 2, nullptr);
    std::uint32_t mode = 7;
    const bool is_written = tbctSTCSetStatus(0x2301, settings, setting, &mode) == 0;
    _exit(is_written ? 0 : 1); // a sanitizer's look for leaks is not allowed here
}
