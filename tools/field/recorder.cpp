// Switches itself on when it is loaded, where QRYLIB_RECORD says so, and takes no part in anything else.
#include "tools/field/recorder.h"

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace field {

namespace {

constexpr std::uint32_t ring_size_min = 16 * 1024;
constexpr std::uint32_t ring_size_max = 1024 * 1024 * 1024;

void say(const char *path, const char *reason) {
    static_cast<void>(std::fprintf(stderr, "libqrylib-record: %s: %s; nothing is recorded\n", path, reason));
}

// "4M", "512K" or bytes; 0 for what is no size.
std::uint32_t size_of(const char *text) {
    char *end = nullptr;
    unsigned long long size = std::strtoull(text, &end, 10);
    if (*end == 'K' || *end == 'M') {
        size *= *end == 'K' ? 1024 : 1024 * 1024;
        ++end;
    }
    const bool is_size = end != text && *end == '\0' && size >= ring_size_min && size <= ring_size_max;
    return is_size ? static_cast<std::uint32_t>(size) & ~3u : 0;
}

// %p becomes the process, %c a comma, %% a percent sign. False when it does not fit.
bool expand(const char *pattern, char *path, std::size_t size) {
    std::size_t used = 0;
    for (; *pattern != '\0'; ++pattern) {
        char part[16] = {*pattern, '\0'};
        if (pattern[0] == '%' && pattern[1] != '\0') {
            ++pattern;
            if (*pattern == 'p') {
                static_cast<void>(std::snprintf(part, sizeof part, "%ld", static_cast<long>(::getpid())));
            } else {
                part[0] = *pattern == 'c' ? ',' : *pattern;
            }
        }
        const std::size_t length = std::strlen(part);
        if (used + length + 1 > size) {
            return false;
        }
        std::memcpy(path + used, part, length);
        used += length;
    }
    path[used] = '\0';
    return used > 0;
}

struct large_memory {
    std::uint8_t *bytes = nullptr;
    large_memory() = default;
    large_memory(const large_memory &) = delete;
    large_memory &operator=(const large_memory &) = delete;
    ~large_memory() {
        std::free(bytes);
        bytes = nullptr;
    }
};

void start_in_child() {
    recorder::get().start_in_child();
}

__attribute__((constructor)) void start_when_loaded() {
    recorder::get().start();
}

} // namespace

// A library that a program opens for itself is not among those that follow: it is asked directly.
void *find_behind_us(const char *name) {
    if (void *const found = ::dlsym(RTLD_NEXT, name)) {
        return found;
    }
    void *const library = ::dlopen("libqrylib.so.1", RTLD_LAZY | RTLD_NOLOAD);
    return library != nullptr ? ::dlsym(library, name) : nullptr;
}

thread_local thread_state thread __attribute__((tls_model("initial-exec")));

bool recorder::is_active = false;
bool recorder::keeps_values = true;

// Never destroyed: other libraries' destructors may still call.
recorder &recorder::get() {
    static recorder *const one = new recorder;
    return *one;
}

std::uint8_t *recorder::large_buffer() {
    thread_local large_memory memory;
    if (memory.bytes == nullptr) {
        memory.bytes = static_cast<std::uint8_t *>(std::malloc(frame_size_max));
    }
    return memory.bytes;
}

bool recorder::read_option(const char *text, std::size_t length) {
    char option[64] = "";
    if (length >= sizeof option) {
        return false;
    }
    std::memcpy(option, text, length);
    const std::string_view whole(option, length);
    if (whole == "values=off") {
        keeps_values = false;
        return true;
    }
    if (whole == "secrets=keep") {
        keeps_secrets_ = true;
        return true;
    }
    if (whole.substr(0, 5) == "size=") {
        ring_size_ = size_of(option + 5);
        return ring_size_ != 0;
    }
    if (whole.substr(0, 5) != "stop=") {
        return false;
    }
    // A code is written in hexadecimal digits, a line in decimal ones.
    const bool is_code = whole.substr(5, 2) == "0x";
    char *end = nullptr;
    const auto number = static_cast<std::int64_t>(std::strtoul(option + 5, &end, is_code ? 16 : 10));
    (is_code ? stop_code_ : stop_line_) = number;
    return end != option + 5 && *end == '\0';
}

bool recorder::read_environment(const char *text) {
    const std::size_t name_length = std::strcspn(text, ",");
    if (name_length == 0 || name_length >= sizeof pattern_) {
        return false;
    }
    std::memcpy(pattern_, text, name_length);
    has_process_in_name_ = std::strstr(pattern_, "%p") != nullptr;
    for (text += name_length; *text == ',';) {
        ++text;
        const std::size_t length = std::strcspn(text, ",");
        if (!read_option(text, length)) {
            return false;
        }
        text += length;
    }
    return true;
}

void recorder::start() {
    const char *const text = ::secure_getenv("QRYLIB_RECORD");
    if (text == nullptr || *text == '\0') {
        return;
    }
    if (!read_environment(text)) {
        say(text, "QRYLIB_RECORD is FILE[,stop=CODE or LINE][,size=SIZE][,values=off][,secrets=keep]");
        return;
    }
    // Programs without the library have nothing to record: a shell that starts the one that is meant, say.
    version_ = reinterpret_cast<const char *(*)()>(::dlsym(RTLD_NEXT, "qry_lib_version"));
    if (version_ == nullptr) {
        return;
    }
    if (!keeps_secrets_ && !masks_.has_key()) {
        say(pattern_, "the system draws no key for the masks");
        return;
    }
    open_file();
    if (is_active) {
        ::pthread_atfork(nullptr, nullptr, &field::start_in_child);
    }
}

// The child of a process whose name has no %p gets a name of its own all the same: two never share a ring.
void recorder::open_file() {
    char path[1100];
    const char *reason = "its name is too long";
    bool is_open = expand(pattern_, path, sizeof path - 16);
    if (is_open && is_child_ && !has_process_in_name_) {
        const std::size_t length = std::strlen(path);
        static_cast<void>(
            std::snprintf(path + length, sizeof path - length, ".%ld", static_cast<long>(::getpid())));
    }
    const std::uint32_t flags =
        (keeps_secrets_ ? 0u : recording_masked) | (keeps_values ? recording_values : 0u);
    is_open = is_open && ring_.create(path, ring_size_, flags, version_(), reason);
    if (!is_open) {
        say(pattern_, reason);
    }
    is_active = is_open;
}

// The parent's ring is the parent's; the thread that forked may be in the middle of a call.
void recorder::start_in_child() {
    const kept_errno kept;
    ring_.forget();
    is_child_ = true;
    if (is_active) {
        masks_ = masking();
        is_active = false;
        if (keeps_secrets_ || masks_.has_key()) {
            open_file();
        }
    }
}

// What happened before is written before.
void recorder::write(frame_writer &frame, frame_kind kind) {
    if (thread.pairs_size != 0) {
        write_pairs();
    }
    if (thread.moved != nullptr && kind != frame_pair) {
        write_move();
    }
    ring_.append(frame.frame(), frame.payload_size(), thread.number, kind, frame.flags());
}

void recorder::write_pairs() {
    const std::uint32_t size = thread.pairs_size;
    thread.pairs_size = 0;
    ring_.append(thread.pairs, size, thread.number, frame_pair, 0);
}

void recorder::write_move() {
    thread.moved = nullptr;
    small_frame<64> move(frame_platform);
    move.put16(service_tbctSTCListTableSetPos);
    move.put32(0);
    move.put16(thread.moved_number);
    move.put16(thread.position);
}

void recorder::add_pair(std::uint16_t list, std::uint16_t position, const void *value, std::uint16_t size) {
    constexpr std::uint32_t head = 8;
    constexpr std::uint32_t room = sizeof thread.pairs - frame_size - 4; // four to fill a frame up
    if (thread.pairs_size + head + size > room) {
        write_pairs();
    }
    std::uint8_t *const place = thread.pairs + frame_size + thread.pairs_size;
    store16(place, list);
    store16(place + 2, position);
    store32(place + 4, size);
    std::memcpy(place + head, value, size);
    thread.pairs_size = static_cast<std::uint16_t>(thread.pairs_size + head + size);
}

void recorder::look_at(std::uint32_t code, std::int32_t line) {
    thread.is_last = thread.is_last || code == stop_code_ || line == stop_line_;
}

// The call in which it happened is recorded to its end.
void recorder::end_call() {
    if (thread.is_last) {
        thread.is_last = false;
        ring_.freeze();
    }
}

} // namespace field
