// A frame counts once the head stands behind it, and no longer once the tail stands behind it; so the file is
// in order at every moment, a kill between two instructions included.
#include "tools/field/ring.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "tools/field/element_shapes.h"

namespace field {

namespace {

// A name that is free, or that of an earlier recording.
bool may_replace(const char *path) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0) {
        struct stat there {};
        return ::lstat(path, &there) != 0;
    }
    char magic[8] = "";
    const bool is_recording = ::read(file, magic, sizeof magic) == static_cast<ssize_t>(sizeof magic) &&
                              std::memcmp(magic, recording_magic, sizeof magic) == 0;
    ::close(file);
    return is_recording;
}

// A recording that another process still writes keeps its file: only the name is given away.
int create_file(const char *path, std::uint32_t size, const char *&reason) {
    if (!may_replace(path)) {
        reason = "it is there, and is no recording";
        return -1;
    }
    ::unlink(path);
    const int file = ::open(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0) {
        reason = "it cannot be created";
        return -1;
    }
    if (::posix_fallocate(file, 0, static_cast<off_t>(size)) != 0) {
        reason = "the disk has no room";
        ::close(file);
        ::unlink(path);
        return -1;
    }
    return file;
}

} // namespace

bool ring::create(const char *path, std::uint32_t size, std::uint32_t flags, const char *library,
                  const char *&reason) {
    const int file = create_file(path, header_size + size, reason);
    if (file < 0) {
        return false;
    }
    void *const mapped = ::mmap(nullptr, header_size + size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (mapped == MAP_FAILED) {
        reason = "it cannot be mapped";
        return false;
    }
    static_cast<void>(::mlock(mapped, header_size + size)); // so that no read of the disk can fail later
    base_ = static_cast<std::uint8_t *>(mapped);
    data_ = base_ + header_size;
    size_ = size;
    tail_ = head_ = held_ = number_ = dropped_ = 0;
    is_frozen_ = false;
    write_header(flags, library);
    return true;
}

// The magic comes last: a file without it is no recording.
void ring::write_header(std::uint32_t flags, const char *library) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const std::uint64_t started =
        static_cast<std::uint64_t>(now.tv_sec) * 1000000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000;
    store32(base_ + place_version, format_version);
    store32(base_ + place_header_size, header_size);
    std::memcpy(base_ + place_byte_order, &byte_order_mark, sizeof byte_order_mark);
    store32(base_ + place_word_size, sizeof(void *));
    store32(base_ + place_ring_size, size_);
    store32(base_ + place_flags, flags);
    store32(base_ + place_process, static_cast<std::uint32_t>(::getpid()));
    store32(base_ + place_started, static_cast<std::uint32_t>(started));
    store32(base_ + place_started + 4, static_cast<std::uint32_t>(started >> 32));
    store32(base_ + place_schema, schema_number());
    std::strncpy(reinterpret_cast<char *>(base_ + place_library), library, library_size - 1);
    std::atomic_thread_fence(std::memory_order_release);
    std::memcpy(base_, recording_magic, 8);
    store32(base_ + place_checksum, checksum(base_, place_checksum, 0));
}

// One store, so that nobody ever finds half a number.
void ring::store_live(std::uint32_t place, std::uint32_t value) {
    std::uint32_t bytes = 0;
    store32(&bytes, value);
    __atomic_store_n(reinterpret_cast<std::uint32_t *>(base_ + place), bytes, __ATOMIC_RELEASE);
}

void ring::lock() {
    constexpr int tries = 100;
    for (int i = 0; lock_.exchange(true, std::memory_order_acquire); ++i) {
        if (i >= tries) {
            ::sched_yield();
        }
    }
}

void ring::drop_oldest() {
    tail_ += load32(data_ + tail_);
    --held_;
    if (held_ == 0) {
        tail_ = head_;
    } else if (tail_ == size_ || load32(data_ + tail_) == 0) {
        tail_ = 0;
    }
}

// Where a frame of this length may stand. The ring is never full, so that an equal head and tail mean: empty.
std::uint32_t ring::make_room(std::uint32_t length) {
    std::uint32_t at = head_;
    if (size_ - at < length) {
        while (held_ > 0 && tail_ >= at) {
            drop_oldest();
        }
        at = 0;
    }
    while (held_ > 0 && tail_ >= at && tail_ <= at + length) {
        drop_oldest();
    }
    return at;
}

void ring::append(std::uint8_t *frame, std::uint32_t size, std::uint16_t thread, std::uint8_t kind,
                  std::uint8_t flags) {
    const std::uint32_t length = (frame_size + size + 3) & ~3u;
    std::memset(frame + frame_size + size, 0, length - frame_size - size);
    store32(frame + frame_length, length);
    store16(frame + frame_thread, thread);
    frame[frame_kind_at] = kind;
    frame[frame_flags_at] = flags;
    lock();
    if (is_frozen_ || base_ == nullptr) {
        unlock();
        return;
    }
    if (length > size_ / 4) {
        store_live(place_dropped, ++dropped_);
        unlock();
        return;
    }
    store32(frame + frame_number, number_++);
    store32(frame + frame_checksum, frame_sum(frame, length));
    const std::uint32_t old_tail = tail_;
    const std::uint32_t at = make_room(length);
    const bool was_empty = held_ == 0;
    if (was_empty || tail_ != old_tail) {
        store_live(place_tail, tail_);
    }
    if (at != head_ && head_ != size_) {
        store32(data_ + head_, 0);
    }
    std::memcpy(data_ + at, frame, length);
    head_ = at + length;
    ++held_;
    store_live(place_head, head_);
    if (was_empty) { // until now the oldest frame was where the ring is told to go on
        tail_ = at;
        store_live(place_tail, tail_);
    }
    store_live(place_frames, number_);
    unlock();
}

void ring::count_dropped() {
    lock();
    if (base_ != nullptr && !is_frozen_) {
        store_live(place_dropped, ++dropped_);
    }
    unlock();
}

void ring::freeze() {
    lock();
    if (base_ != nullptr) {
        is_frozen_ = true;
        store_live(place_frozen, 1);
    }
    unlock();
}

void ring::forget() {
    if (base_ != nullptr) {
        ::munmap(base_, header_size + size_);
    }
    base_ = nullptr;
    lock_.store(false, std::memory_order_relaxed);
}

} // namespace field
