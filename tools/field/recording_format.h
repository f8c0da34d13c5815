// The recording's file: what the recorder writes and the replay reads. docs/field.md describes it.
//
// A header of `header_size` bytes, then a ring of frames. Numbers are little-endian on every machine. Element
// values stand as the recording machine had them; its byte order and word size stand in the header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace field {

constexpr char recording_magic[9] = "QRYREC\r\n";
constexpr std::uint32_t format_version = 1;
constexpr std::uint32_t header_size = 4096;

// Where the header's numbers stand. Up to the checksum they never change; behind it they live.
enum header_place : std::uint32_t {
    place_version = 8,
    place_header_size = 12,
    place_byte_order = 16, // the machine's own 0x01020304
    place_word_size = 20,  // bytes of a pointer
    place_ring_size = 24,
    place_flags = 28,
    place_process = 32,
    place_started = 36, // microseconds since 1970, 8 bytes
    place_schema = 44,  // schema_number()
    place_library = 48, // 32 characters
    place_checksum = 80,
    place_tail = 128, // the oldest frame's offset in the ring
    place_head = 132, // where the next frame will stand
    place_frames = 136,
    place_dropped = 140, // frames that could not be written
    place_frozen = 144
};
constexpr std::uint32_t library_size = 32;
constexpr std::uint32_t byte_order_mark = 0x01020304;

enum recording_flag : std::uint32_t { recording_masked = 1, recording_values = 2 };

// A frame: its length in bytes, a multiple of 4; its number; a checksum of all but itself; the thread, the
// kind, flags; then what the kind says. A length of 0: the ring goes on at its start.
enum frame_place : std::uint32_t {
    frame_length = 0,
    frame_number = 4,
    frame_checksum = 8,
    frame_thread = 12,
    frame_kind_at = 14,
    frame_flags_at = 15,
    frame_size = 16
};

enum frame_kind : std::uint8_t {
    frame_call = 1,   // function, time, arguments
    frame_result = 2, // function, time, result, what it handed out
    frame_row = 3,    // a row of a result: columns
    frame_platform = 4,
    frame_trace = 5,
    frame_pair = 6, // lists moved and read, one value behind the other
    frame_count = 7 // list calls that were only counted
};

enum frame_flag : std::uint8_t {
    flag_masked = 1,  // holds a mask, or a value that stands for a secret
    flag_cut = 2,     // did not fit
    flag_thrown = 4,  // a call that ended by an exception
    flag_no_value = 8 // the value's size is not known, or values are not recorded
};

// Instead of a text's length: there is no text.
constexpr std::uint32_t no_text = 0xFFFFFFFF;

// No frame is larger.
constexpr std::uint32_t frame_size_max = 64 * 1024;

inline void store32(void *to, std::uint32_t value) {
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
                                  static_cast<std::uint8_t>(value >> 16),
                                  static_cast<std::uint8_t>(value >> 24)};
    std::memcpy(to, bytes, sizeof bytes);
}

inline std::uint32_t load32(const void *from) {
    std::uint8_t bytes[4];
    std::memcpy(bytes, from, sizeof bytes);
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

inline void store16(void *to, std::uint16_t value) {
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
    std::memcpy(to, bytes, sizeof bytes);
}

inline std::uint16_t load16(const void *from) {
    std::uint8_t bytes[2];
    std::memcpy(bytes, from, sizeof bytes);
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

// Tells damage, not forgery. `size` is a multiple of 4.
inline std::uint32_t checksum(const std::uint8_t *bytes, std::uint32_t size, std::uint32_t seed) {
    std::uint32_t sum = seed;
    for (std::uint32_t i = 0; i < size; i += 4) {
        sum = (sum ^ load32(bytes + i)) * 0x9E3779B1u;
        sum ^= sum >> 15;
    }
    return sum;
}

inline std::uint32_t frame_sum(const std::uint8_t *frame, std::uint32_t length) {
    const std::uint32_t seed = (length * 0x85EBCA6Bu) ^ load32(frame + frame_number);
    return checksum(frame + frame_thread, length - frame_thread, seed);
}

} // namespace field
