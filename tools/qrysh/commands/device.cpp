// Images that must be there, images that must not, and the sample device.
#include "tools/qrysh/commands/device.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "tools/text/text.h"

namespace qrysh {

namespace fs = std::filesystem;

namespace {

constexpr const char *sample_name = "the sample device";

// A link to nothing is there: the platform says what is wrong with it.
bool is_there(const std::string &path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

std::string image_of_environment() {
    const char *const path = std::getenv("QRYLIB_IMAGE");
    return path == nullptr ? "" : path;
}

outcome refuse_missing(const std::string &path, std::string_view why) {
    return session::fail(fmt::format("{}: is not there; {}", printable(path), why));
}

// The platform creates the image that the environment names when it first needs it.
outcome keep_device(session &shell) {
    const std::string image = image_of_environment();
    if (image.empty()) {
        return outcome::done;
    }
    if (shell.options().readonly && !is_there(image)) {
        return refuse_missing(image, "the shell was started with --readonly");
    }
    shell.set_device(image);
    return outcome::done;
}

outcome create_image(session &shell, const std::string &path) {
    if (shell.options().readonly) {
        return session::fail("a new image is a change: the shell was started with --readonly");
    }
    if (is_there(path)) {
        return session::fail(fmt::format("{}: is there already; --image opens it", printable(path)));
    }
    return shell.open(path);
}

outcome load_sample(session &shell) {
    if (session::load(sample_file()) == outcome::failed) {
        return outcome::failed;
    }
    if (shell.device() == private_memory) {
        shell.set_device(sample_name);
    }
    return outcome::done;
}

} // namespace

std::string sample_file() {
    const fs::path program = fs::read_symlink("/proc/self/exe");
    return (program.parent_path() / QRYSH_DATA_FOLDER / "office.json").lexically_normal().string();
}

outcome open_device(session &shell, const device_choice &chosen) {
    if (!chosen.image.empty() && (chosen.sample || !chosen.new_image.empty())) {
        return session::fail("one device is opened: an image, a new one, or the sample device");
    }
    outcome opened = outcome::done;
    if (!chosen.new_image.empty()) {
        opened = create_image(shell, chosen.new_image);
    } else if (!chosen.image.empty()) {
        opened = is_there(chosen.image) ? shell.open(chosen.image)
                                        : refuse_missing(chosen.image, "--new creates an image");
    } else if (chosen.sample) {
        opened = shell.open("");
    } else {
        opened = keep_device(shell);
    }
    return opened == outcome::done && chosen.sample ? load_sample(shell) : opened;
}

} // namespace qrysh
