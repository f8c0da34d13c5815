// What the file system under a device image must give: memory that all processes see, and room for every
// byte.
#pragma once

#include <cstdint>
#include <string>

#include "platform/host/open_file.h"

namespace qryhost {

// Why processes cannot safely share memory in files of this file system; empty when they can.
std::string unshared_reason(const open_file &file);

// Takes the room on the disk for the file's first bytes: a process that touches a mapped byte that has none
// is killed. Throws `refusal` when there is no room.
void reserve_room(const std::string &path, const open_file &file, std::uint32_t bytes);

// The same for a file that may only be read: where reading takes room too, it must have it already.
void require_room(const std::string &path, const open_file &file, std::uint32_t bytes);

} // namespace qryhost
