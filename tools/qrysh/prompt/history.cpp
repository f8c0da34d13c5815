// The history's file.
#include "tools/qrysh/prompt/history.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace qrysh {

namespace {

constexpr int history_length = 500;
constexpr std::size_t longest_file = std::size_t{2} * history_length; // in lines; then the oldest are left out

// What the editor's own history writes first, and escapes blanks behind it.
constexpr std::string_view earlier_form = "_HiStOrY_V2_";

void keep_to_owner(const std::string &path) {
    std::error_code ignored;
    std::filesystem::permissions(
        path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
}

} // namespace

typed_history::typed_history(std::string path) : path_(std::move(path)), history_(history_init()) {
    if (!history_) {
        throw std::runtime_error("there is no memory for a history");
    }
    history(history_.get(), &event_, H_SETSIZE, history_length);
    history(history_.get(), &event_, H_SETUNIQUE, 1);
    if (!path_.empty()) {
        read();
    }
}

void typed_history::enter(const std::string &line) {
    history(history_.get(), &event_, H_ENTER, line.c_str());
}

void typed_history::read() {
    std::ifstream file(path_);
    std::string line;
    if (!std::getline(file, line)) {
        return;
    }
    if (line == earlier_form) {
        history(history_.get(), &event_, H_LOAD, path_.c_str());
        write_anew();
        return;
    }
    std::size_t lines = 0;
    do {
        enter(line);
        ++lines;
    } while (std::getline(file, line));
    if (lines > longest_file) {
        write_anew();
    }
}

void typed_history::write_anew() {
    std::ofstream file(path_, std::ios::trunc);
    keep_to_owner(path_);
    for (int more = history(history_.get(), &event_, H_LAST); more != -1;
         more = history(history_.get(), &event_, H_PREV)) {
        const std::string_view line = event_.str;
        file << line.substr(0, line.find('\n')) << '\n';
    }
}

void typed_history::add(const std::string &text) {
    if (text.find_first_not_of(' ') == std::string::npos) {
        return;
    }
    const bool is_new = !path_.empty() && !std::filesystem::exists(path_);
    std::ofstream file;
    if (!path_.empty()) {
        file.open(path_, std::ios::app);
    }
    if (is_new) {
        keep_to_owner(path_);
    }
    for (std::size_t begin = 0; begin <= text.size();) { // a value may hold line ends
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        enter(line);
        file << line << '\n';
        begin = end + 1;
    }
}

} // namespace qrysh
