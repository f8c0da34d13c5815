// A platform that keeps what the library asks of it, in order: the calls stand between the library and the
// workstation in this program.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

// Calls from now on: "take 1", "give 1" with a number for each block in the order of taking, "give" for a
// block from before; "trace function:line 0xCODE", without the line where it is the source line; "delete
// list"; "deregister".
void start_recording();
std::vector<std::string> stop_recording();

// Reads of the element end with their last character from now on: the terminator and what lies behind it are
// not written, as by a platform whose element is shorter than the schema's column. 0 ends it.
void read_without_end(std::uint32_t element);

} // namespace test
