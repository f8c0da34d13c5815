// Locks on single bytes of a file, which the system releases when their process dies.
#pragma once

#include <string>

#include "platform/host/open_file.h"

namespace qryhost {

// Takes a lock of a kind (F_RDLCK, F_WRLCK, F_UNLCK) without waiting; false: another process is in its way.
// It belongs to the open file, so it survives the closing of any other descriptor of this file, and children
// of the process keep it alive as they keep the mapping.
bool lock_byte(const open_file &file, off_t byte, short kind);

// The same, waiting for a second: whoever may only read the file can hold such a lock as long as it likes.
// Throws `refusal`, with the process where the system shows it.
void wait_for_byte(const std::string &path, const open_file &file, off_t byte, short kind);

} // namespace qryhost
