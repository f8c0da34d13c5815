// Which device the shell works on, and how it is opened.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "tools/qrysh/commands/session.h"

namespace qrysh {

// What may be opened: one image, a new one, the sample device, or a new image with the sample device's
// records.
struct device_choice {
    std::string image;
    std::string new_image;
    bool sample = false;
};

// Opens what was chosen, or leaves the store as it is where nothing was: memory, or what QRYLIB_IMAGE names.
// Creates no file but the new image, and none at all for a shell that must not change records.
outcome open_device(session &shell, const device_choice &chosen);

// "NAME: N records in use".
std::string describe_device(session &shell);

// What is said at a terminal before the first prompt; `program` is how the shell is called.
void greet(session &shell, std::string_view program);

// Where the program lies.
std::filesystem::path program_folder();

// The file with the sample device's records, which lies where the program's own files do.
std::string sample_file();

} // namespace qrysh
