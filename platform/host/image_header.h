// What stands at the start of this build's device images, and how another file is told from one.
#pragma once

#include <cstdint>
#include <string>

#include "platform/host/store_memory.h"

namespace qryhost {

// The only header that is accepted.
const image_header &expected_header();

// Throws `refusal` when a file of `file_size` bytes that starts with `header` is no image of this build.
void check_header(const std::string &path, const image_header &header, std::uint64_t file_size);

} // namespace qryhost
