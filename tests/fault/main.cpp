// Runs the fault sweep: fault_tests POINTS SOURCES FIXTURE [--table], which names the table of trace points,
// the library's sources and the device to work on; --table prints what was swept.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "fault/sweep.h"
#include "fault/trace_chain.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (argc < 4 || !fault::load_points(argv[1], argv[2])) {
        std::fputs("usage: fault_tests POINTS SOURCES FIXTURE [--table]\n", stderr);
        return 2;
    }
    fault::set_fixture(argv[3]);
    const int failed = RUN_ALL_TESTS();
    if (argc > 4 && std::strcmp(argv[4], "--table") == 0) {
        fault::print_table();
    }
    return failed;
}
