// The ring of a recording: a file of fixed size, mapped, so that what was written outlives the process
// however it ends, without a call of the system for each frame.
#pragma once

#include <atomic>
#include <cstdint>

#include "tools/field/recording_format.h"

namespace field {

// One process's. append() may be called from any thread.
class ring {
  public:
    ring() = default;
    ring(const ring &) = delete;
    ring &operator=(const ring &) = delete;

    // Creates the file, its whole size on the disk, so that a disk that fills up later is nobody's concern. A
    // recording of that name is replaced; anything else of that name is left alone. False with the reason.
    bool create(const char *path, std::uint32_t size, std::uint32_t flags, const char *library,
                const char *&reason);

    // Writes a frame whose payload stands behind `frame_size` bytes of room, which this fills in. It
    // overwrites the oldest frames. What is too large is dropped and counted.
    void append(std::uint8_t *frame, std::uint32_t size, std::uint16_t thread, std::uint8_t kind,
                std::uint8_t flags);

    // A frame that could not even be made.
    void count_dropped();

    // Nothing is written any more.
    void freeze();

    // In a child process: the parent's ring is let go.
    void forget();

    bool is_open() const { return base_ != nullptr; }

  private:
    void write_header(std::uint32_t flags, const char *library);
    void store_live(std::uint32_t place, std::uint32_t value);
    void drop_oldest();
    std::uint32_t make_room(std::uint32_t length);
    void lock();
    void unlock() { lock_.store(false, std::memory_order_release); }

    std::uint8_t *base_ = nullptr; // of the mapping
    std::uint8_t *data_ = nullptr; // of the ring
    std::uint32_t size_ = 0;
    std::uint32_t tail_ = 0;
    std::uint32_t head_ = 0;
    std::uint32_t held_ = 0;   // frames in the ring
    std::uint32_t number_ = 0; // of the next frame
    std::uint32_t dropped_ = 0;
    bool is_frozen_ = false;
    std::atomic<bool> lock_{false};
};

} // namespace field
