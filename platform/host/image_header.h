// What stands at the start of this build's device images, and how another file is told from one.
#pragma once

#include <cstdint>
#include <string>

#include "platform/host/store_memory.h"

namespace qryhost {

// The header of every image that is written here.
const image_header &expected_header();

// That of images of the earlier format version.
const image_header &earlier_header();

// How a file may be used.
struct image_use {
    const memory_shape *shape;
    std::string read_only_reason; // empty: it may be written
};

// Throws `refusal` when a file of `file_size` bytes that starts with `header` is no image of this build.
image_use check_header(const std::string &path, const image_header &header, std::uint64_t file_size);

} // namespace qryhost
