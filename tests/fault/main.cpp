// Runs the fault sweep: fault_tests POINTS SOURCES FIXTURE [TABLE], which names the table of trace points,
// the library's sources, the device to work on and the file for a table of what was swept.
#include <gtest/gtest.h>

#include <cstdio>

#include "fault/sweep.h"
#include "fault/trace_chain.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (argc < 4 || !fault::load_points(argv[1], argv[2])) {
        std::fputs("usage: fault_tests POINTS SOURCES FIXTURE [TABLE]\n", stderr);
        return 2;
    }
    fault::set_fixture(argv[3]);
    const int failed = RUN_ALL_TESTS();
    if (argc > 4 && !fault::write_table(argv[4])) {
        std::fprintf(stderr, "%s cannot be written\n", argv[4]);
        return 2;
    }
    return failed;
}
