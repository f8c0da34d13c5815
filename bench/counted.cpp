// Runs one statement so many times, for its instructions to be counted: counted STATEMENT TIMES. Ends with
// what is mapped where. Without arguments it says what it was built with, and names the statements.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gnu/libc-version.h>

#include "library.h"
#include "platform/host/qryhost.h"
#include "statements.h"

namespace {

void print_mappings() {
    std::FILE *maps = std::fopen("/proc/self/maps", "r");
    bench::require(maps != nullptr, "nobody tells what is mapped");
    char line[512];
    while (std::fgets(line, sizeof line, maps) != nullptr) {
        std::fputs(line, stdout);
    }
    std::fclose(maps);
}

} // namespace

int main(int argc, char **argv) {
    const std::vector<bench::call> calls = bench::library_calls();
    if (argc != 3) {
        std::printf("compiler %s, C library %s\n", __VERSION__, gnu_get_libc_version());
        for (const bench::call &call : calls) {
            std::puts(call.name.c_str());
        }
        return 0;
    }
    qryhost_set_trace_sink(nullptr, nullptr);
    bench::fill_element_tables();
    for (const bench::call &call : calls) {
        if (call.name == argv[1]) {
            for (long times = std::strtol(argv[2], nullptr, 10); times > 0; --times) {
                call.run();
            }
            print_mappings();
            return 0;
        }
    }
    std::fprintf(stderr, "no statement is named %s\n", argv[1]);
    return 1;
}
