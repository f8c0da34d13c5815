// Links are followed by hand, so that it is known what is replaced.
#include "tools/files/links.h"

#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <climits>
#include <cstdlib>
#include <memory>

#include "tools/files/open_file.h"

namespace qryfiles {

namespace {

std::string last_name(const std::string &path) {
    return path.substr(path.rfind('/') + 1);
}

std::string real_path(const std::string &path) {
    struct freed {
        void operator()(char *text) const { std::free(text); }
    };
    const std::unique_ptr<char, freed> found(::realpath(path.c_str(), nullptr));
    return found ? found.get() : "";
}

bool is_link(const std::string &path, struct stat &status) {
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// In a folder like /tmp anybody may have put the link there, to have something of ours replaced.
void refuse_planted(const std::string &path, const struct stat &link) {
    struct stat folder {};
    constexpr mode_t open_to_all = S_ISVTX | S_IWOTH;
    if (::stat(folder_of(path).c_str(), &folder) == 0 && (folder.st_mode & open_to_all) == open_to_all &&
        link.st_uid != ::geteuid() && link.st_uid != folder.st_uid) {
        throw file_error(path + ": is somebody else's link, in a folder that everybody may write to");
    }
}

std::string target_of(const std::string &path) {
    char target[PATH_MAX];
    const ssize_t size = ::readlink(path.c_str(), target, sizeof target);
    if (size <= 0) {
        fail(path, "the link cannot be read");
    }
    const std::string_view text(target, static_cast<std::size_t>(size));
    const bool is_relative = text.front() != '/' && path.find('/') != std::string::npos;
    return (is_relative ? folder_of(path) : "") + std::string(text);
}

} // namespace

std::optional<int> own_open_file(const std::string &path) {
    const std::string name = last_name(path);
    int number = -1;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    const bool is_number = error == std::errc() && end == name.data() + name.size() && number >= 0;
    if (!is_number || real_path(folder_of(path)) != "/proc/" + std::to_string(::getpid()) + "/fd") {
        return std::nullopt;
    }
    return number;
}

std::string follow_links(const std::string &path) {
    constexpr int links_max = 40; // as many as the system follows
    std::string place = path;
    struct stat status {};
    for (int i = 0; is_link(place, status) && !own_open_file(place); ++i) {
        if (i == links_max) {
            throw file_error(path + ": is a link that leads nowhere");
        }
        refuse_planted(place, status);
        place = target_of(place);
    }
    return place;
}

} // namespace qryfiles
