// Device images: files that hold a store, shared by every process that opens them.
//
// An image is created complete or not at all. Opening refuses every file that is not this build's own. Two
// bytes of the file serve as locks between processes, which the system releases when a process dies: the
// first is held while opening, the second is shared by all who use the image. Who opens it and finds the
// second free is alone: it puts back what a dead process left half written and makes fresh mutexes, since
// those in the file may be held by someone who no longer exists. Nobody waits for these bytes longer than a
// second: whoever may only read the file can hold them too.
#pragma once

#include <string>

#include "platform/host/store_memory.h"

namespace qryhost {

// What is said to who wants to write where the system allows only reading.
constexpr char unwritable_reason[] = "the device image can only be read";

// Opens an image, and creates it first when there is none; one that cannot be written, or not safely, is
// opened for reading. Throws `refusal`.
store_memory open_image(const std::string &path);

// Opens an image that must exist for reading, and changes nothing.
store_memory open_image_for_reading(const std::string &path);

} // namespace qryhost
