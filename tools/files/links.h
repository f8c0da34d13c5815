// Where the links of a path end.
#pragma once

#include <optional>
#include <string>

namespace qryfiles {

// The path that no link stands under any more, or one of the process's own open files. The last name need not
// be there. Throws `file_error` for a link that must not be followed.
std::string follow_links(const std::string &path);

// The number of the process's own open file that a path names, as /dev/fd/3 does.
std::optional<int> own_open_file(const std::string &path);

} // namespace qryfiles
