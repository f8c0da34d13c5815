// The command line.
#pragma once

#include <string>
#include <vector>

namespace qrysh {

struct script {
    bool is_file; // -f: "-" is standard input
    std::string text;
};

struct options {
    std::string image;     // empty: private memory, or what QRYLIB_IMAGE names
    std::string new_image; // not empty: create this one
    std::string check;     // not empty: examine this image and do nothing else
    std::vector<std::string> diff; // two fixtures to compare, and nothing else
    std::string fixture;
    std::string db;
    std::string mode;
    std::vector<script> scripts;         // -c and -f in their order
    std::vector<std::string> statements; // after them
    bool sample = false;
    bool roomy = false;
    bool trace = false;
    bool echo = false;
    bool bail = false;
    bool readonly = false;
    bool safe = false;
    bool strict = false;
    bool safe_updates = false;
    bool force = false;
    bool csv_safe = false;
    int exit_status = -1; // 0 or above: everything has been said, for example by --help
};

options parse_options(int argc, char **argv);

} // namespace qrysh
