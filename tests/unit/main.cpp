// Runs the unit tests; with --reach TABLE SOURCES also checks that every fixed trace point was provoked.
#include <gtest/gtest.h>

#include <cstring>

#include "unit/reach.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const int failed = RUN_ALL_TESTS();
    if (argc == 4 && std::strcmp(argv[1], "--reach") == 0) {
        return test::check_reach(argv[2], argv[3]) && failed == 0 ? 0 : 1;
    }
    return failed;
}
