// Proof of reach: which trace points the tests have provoked, against the table of fixed points.
#pragma once

#include <string>
#include <vector>

namespace test {

// Remembers the point of a trace line; other lines are ignored. May be called from any thread.
void record_reached(const char *line);

// Writes what was reached to a file, for the check that another program makes.
bool write_reached(const std::string &path);

// Compares what was reached, here and by those who wrote the files, with the table at `table_path` and with
// the library's sources under `source_path`, and prints every fixed point that no test reached, every fixed
// number that the table does not have, and every unreachable point that was reached after all. True when
// there is none.
bool check_reach(const std::string &table_path, const std::string &source_path,
                 const std::vector<std::string> &reached_elsewhere);

} // namespace test
