// The command line.
#pragma once

#include <string>
#include <vector>

namespace qrysh {

struct options {
    std::string image; // empty: private memory, or what QRYLIB_IMAGE names
    std::string check; // not empty: examine this image and do nothing else
    std::string fixture;
    std::string db;
    std::string mode;
    bool trace = false;
    bool echo = false;
    std::vector<std::string> statements;
    int exit_status = -1; // 0 or above: everything has been said, for example by --help
};

options parse_options(int argc, char **argv);

} // namespace qrysh
