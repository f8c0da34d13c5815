// Runs the unit tests. `--record FILE` writes the trace points that they provoked to a file; `--reach TABLE
// SOURCES FILE...` checks that every fixed point was provoked, here or in the runs that wrote the files.
#include <gtest/gtest.h>

#include <cstring>

#include "unit/reach.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const int failed = RUN_ALL_TESTS();
    if (failed != 0 || argc < 3) {
        return failed;
    }
    if (std::strcmp(argv[1], "--record") == 0) {
        return test::write_reached(argv[2]) ? 0 : 1;
    }
    if (std::strcmp(argv[1], "--reach") == 0 && argc >= 4) {
        return test::check_reach(argv[2], argv[3], {argv + 4, argv + argc}) ? 0 : 1;
    }
    return 2;
}
