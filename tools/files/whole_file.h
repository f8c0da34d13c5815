// Files read and written whole. Whatever writes a file that a user named does so by this, so that one set of
// rules holds:
//
//   - A file is written under a name of its own beside the target, synced, and then given the target's
//     name: a crash at any moment leaves the old content or the new, and nobody ever sees a part of it.
//     Left-over names of a killed process are in nobody's way.
//   - A link is followed, and what it leads to is replaced; except somebody else's link in a folder that
//     everybody may write to.
//   - The new file has the mode of the one that it replaces. A new name is its owner's alone (0600): records
//     hold passwords.
//   - What is no regular file (a device, a pipe) is written through, and so are the process's own open files
//     (/dev/stdout, /dev/fd/3).
//   - A SQLite database file that does not carry `database_mark` is refused: it holds somebody's other
//     tables.
//
// Asking before a file is replaced is the caller's business; what_stands() tells whether there is one.
//
//   try {
//       qryfiles::write_file(path, text);
//   } catch (const qryfiles::file_error &error) {
//       complain(error.what()); // "report.csv: cannot be created: Permission denied"
//   }
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qryfiles {

// What was refused or failed. The sentence begins with the path, whose bytes are as they were given.
struct file_error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The application number in the header of a SQLite file of ours: "QRYS".
constexpr std::uint32_t database_mark = 0x51525953;

// What a name leads to.
enum class standing {
    nothing,          // the name is free, and so is the one that a link leads to
    file,             // a regular file
    foreign_database, // a SQLite file of another program
    stream            // written through
};

// Throws `file_error` where a link must not be followed.
standing what_stands(const std::string &path);

enum class care {
    usual,
    none // a foreign database is replaced too
};

// Throws `file_error`; a regular file then stays as it was.
void write_file(const std::string &path, std::string_view content, care taken = care::usual);

// Creates a file unless one of that name is there, or appears meanwhile. Links are not followed. Throws
// `file_error`.
void create_file(const std::string &path, std::string_view content);

// The content of a regular file of at most `size_max` bytes. Never waits for a pipe. Throws `file_error`.
std::string read_file(const std::string &path, std::size_t size_max);

// The folder that a path's last name stands in, with the slash where there is one.
std::string folder_of(const std::string &path);

} // namespace qryfiles
