// The command line.
#pragma once

#include <string>
#include <vector>

namespace qrysh {

struct options {
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
