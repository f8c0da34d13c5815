// Several processes on one store: what each engine does in one of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// An engine's store, open in one process.
class session {
  public:
    virtual ~session() = default;

    // Reads NAME and TOTAL_M of a department by its id, counted from 1.
    virtual void read(int id) = 0;

    // Changes TOTAL_M of one.
    virtual void write(int id, std::uint32_t value) = 0;
};

struct engine {
    const char *name;

    // Creates the store with its records in a folder.
    void (*create)(const std::string &folder);
    std::unique_ptr<session> (*open)(const std::string &folder);
};

// Those of the program. Everything exits with a sentence on any failure.
extern const std::vector<engine> engines;

} // namespace bench
