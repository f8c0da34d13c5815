// Builds a frame in a buffer: numbers, texts and values one behind the other.
#pragma once

#include <cstdint>
#include <cstring>

#include "tools/field/recording_format.h"

namespace field {

// What does not fit is left out, and the frame is marked as cut.
class frame_writer {
  public:
    // The buffer has room for `frame_size` bytes before the first one that is put.
    frame_writer(std::uint8_t *buffer, std::uint32_t capacity) : buffer_(buffer), capacity_(capacity) {}

    void put8(std::uint32_t value) {
        if (has_room(1)) {
            buffer_[size_++] = static_cast<std::uint8_t>(value);
        }
    }
    void put16(std::uint32_t value) {
        if (has_room(2)) {
            store16(buffer_ + size_, static_cast<std::uint16_t>(value));
            size_ += 2;
        }
    }
    void put32(std::uint32_t value) {
        if (has_room(4)) {
            store32(buffer_ + size_, value);
            size_ += 4;
        }
    }
    void put64(std::uint64_t value) {
        put32(static_cast<std::uint32_t>(value));
        put32(static_cast<std::uint32_t>(value >> 32));
    }
    // Tells objects apart, and means nothing else.
    void put_pointer(const void *pointer) { put64(reinterpret_cast<std::uintptr_t>(pointer)); }

    // Its length and its bytes. Returns where they stand, for masking; null when they did not fit.
    std::uint8_t *put_bytes(const void *bytes, std::uint32_t size) {
        put32(size);
        if (!has_room(size)) {
            return nullptr;
        }
        std::uint8_t *const place = buffer_ + size_;
        if (size != 0) {
            std::memcpy(place, bytes, size);
        }
        size_ += size;
        return place;
    }

    void mark(std::uint8_t flag) { flags_ = static_cast<std::uint8_t>(flags_ | flag); }

    std::uint8_t *frame() { return buffer_; }
    std::uint32_t payload_size() const { return size_ - frame_size; }
    std::uint8_t flags() const { return flags_; }

  private:
    // Room for the filling bytes too.
    bool has_room(std::uint32_t bytes) {
        const bool fits =
            (flags_ & flag_cut) == 0 && capacity_ - size_ >= 4 && bytes <= capacity_ - size_ - 4;
        if (!fits) {
            mark(flag_cut);
        }
        return fits;
    }

    std::uint8_t *buffer_;
    std::uint32_t capacity_;
    std::uint32_t size_ = frame_size;
    std::uint8_t flags_ = 0;
};

} // namespace field
