// One statement of every kind, each with what it needs beforehand.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fault {

struct statement {
    std::string name;
    std::string entry;                            // the function whose trace ends the chain; "" for none
    std::function<void()> prepare = [] {};        // what lies outside the element tables
    std::function<std::uint32_t()> run = nullptr; // the call alone
    std::function<std::string()> answer = [] { return std::string(); }; // what it left with its caller
    std::function<void()> finish = [] {};  // gives back what prepare and run took
    std::vector<std::uint32_t> again = {}; // answers to the same call after a failure, beside the first

    // What a failed call leaves as it was; "" where the element tables are all.
    std::function<std::string()> state = [] { return std::string(); };
    bool first_in_process = false; // each run needs a process that never ran it before
};

const std::vector<statement> &statements();

// The device whose records the statements work on, loaded from the sample fixture.
void load_device(const std::string &fixture_path);

} // namespace fault
