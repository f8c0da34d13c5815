// What of a statement was ignored, narrowed, or is read otherwise than it looks.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qrytext {

struct note {
    std::size_t from; // in bytes
    std::size_t to;   // behind the last one
    std::string text;
    std::string hint; // what to write instead; may be empty
};

// Compares the text with what the library's analysis keeps of it, in the order of the text. Nothing is noted
// of a statement that the library does not accept: its refusal says more. Traces.
std::vector<note> find_notes(const std::string &db_name, const std::string &sql);

} // namespace qrytext
