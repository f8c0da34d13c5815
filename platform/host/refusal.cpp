// The sentence about the last call that failed, for each thread.
#include "platform/host/refusal.h"

#include <cstdio>

namespace qryhost {

namespace {

// A fixed array: telling that memory ran out takes none.
thread_local char error_sentence[1024] = "";

} // namespace

const char *required_path(const char *path) {
    if (path == nullptr || *path == '\0') {
        throw refusal("no file is named");
    }
    return path;
}

void set_error(const char *sentence) noexcept {
    static_cast<void>(std::snprintf(error_sentence, sizeof error_sentence, "%s", sentence));
}

const char *last_error() noexcept {
    return error_sentence;
}

} // namespace qryhost
