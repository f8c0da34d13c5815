// The statements that are measured.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// A SELECT that both engines understand.
struct select {
    const char *name;
    const char *sql;
};

extern const std::vector<select> selects;

// Changes and other calls of this library alone. Each answers 0, or what it read.
std::uint64_t update_one();
std::uint64_t delete_and_insert();
std::uint64_t record_select();
std::uint64_t unused_id();

struct call {
    std::string name;
    std::function<std::uint64_t()> run;
};

// Every statement as this library runs it.
std::vector<call> library_calls();

} // namespace bench
