// Files that are read, created and replaced as a whole.
#pragma once

#include <cstddef>
#include <string>

namespace qryhost {

// The folder that a path's last name stands in.
std::string folder_of(const std::string &path);

// The content of a regular file of at most `size_max` bytes. Throws `refusal`.
std::string read_whole_file(const std::string &path, std::size_t size_max);

// Replaces a file by way of a temporary file beside it: a crash at any moment leaves the old content or the
// new. Throws `refusal`, the old content then stays.
void replace_whole_file(const std::string &path, const std::string &content);

// Creates a file unless one of that name is there, or appears meanwhile: nobody ever sees a part of it.
// Throws `refusal`.
void create_whole_file(const std::string &path, const std::string &content);

} // namespace qryhost
