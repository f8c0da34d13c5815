// Images that must be there, images that must not, and the sample device.
#include "tools/qrysh/commands/device.h"

#include <qrylib/version.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

#include "platform/host/qryhost.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/engine.h"
#include "tools/text/filter_key_text.h"
#include "tools/text/schema.h"
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

// Records that are never free are not counted: they tell nothing of the device.
std::int64_t records_taken(const std::string &db_name, const std::string &table) {
    const std::int64_t in_use = records_in_use(db_name, table); // throws where there is no store
    return free_keys(db_name, table).empty() ? 0 : in_use;
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

fs::path program_folder() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

std::string sample_file() {
    return (program_folder() / QRYSH_DATA_FOLDER / "office.json").lexically_normal().string();
}

std::string describe_device(session &shell) {
    const trace_log::pause quiet(shell.traces());
    std::int64_t in_use = 0;
    for (const std::string &db_name : database_names()) {
        for (const std::string &table : table_names(db_name)) {
            in_use += records_taken(db_name, table);
        }
    }
    return fmt::format("{}: {} {} in use", printable(shell.device()),
                       in_use == 0 ? "no" : std::to_string(in_use), in_use == 1 ? "record" : "records");
}

// A store that cannot be opened does not keep the shell from starting: .open opens another.
void greet(session &shell, std::string_view program) {
    say(fmt::format("{} {}; .help lists the commands\n", program, qry_lib_version()));
    try {
        say(fmt::format("{}{}\n", describe_device(shell),
                        shell.device() == private_memory ? "; .open --sample opens one with records" : ""));
    } catch (const std::runtime_error &error) {
        const std::string reason = qryhost_error();
        session::fail(reason.empty() ? error.what() : reason);
    }
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
