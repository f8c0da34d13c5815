// Recordings: the input's bytes become frames with the checksums that they need, and are read, listed and
// replayed.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "tools/field/element_shapes.h"
#include "tools/field/replay.h"

namespace {

constexpr std::uint32_t ring_size = 64 * 1024;

void put32(std::string &file, std::uint32_t place, std::uint32_t value) {
    field::store32(file.data() + place, value);
}

// A whole header. The first byte of the input chooses the machine.
std::string header(std::uint8_t machine) {
    std::string file(field::header_size, '\0');
    file.replace(0, 8, field::recording_magic, 8);
    put32(file, field::place_version, field::format_version);
    put32(file, field::place_header_size, field::header_size);
    file[field::place_byte_order] = (machine & 1) != 0 ? 1 : 4;
    put32(file, field::place_word_size, 4);
    put32(file, field::place_ring_size, ring_size);
    put32(file, field::place_flags, field::recording_values);
    put32(file, field::place_schema, field::schema_number());
    put32(file, field::place_checksum,
          field::checksum(reinterpret_cast<const std::uint8_t *>(file.data()), field::place_checksum, 0));
    return file;
}

// Each frame is told by four bytes: kind, thread, and the length of what follows.
std::string frames(const std::uint8_t *data, std::size_t size) {
    std::string ring;
    for (std::uint32_t number = 0; size >= 4; ++number) {
        const std::size_t payload = std::min<std::size_t>(field::load16(data + 2), size - 4);
        const auto length = static_cast<std::uint32_t>((field::frame_size + payload + 3) & ~std::size_t{3});
        if (ring.size() + length > ring_size) {
            break;
        }
        std::string frame(length, '\0');
        put32(frame, field::frame_length, length);
        put32(frame, field::frame_number, number);
        frame[field::frame_kind_at] = static_cast<char>(data[0] % 8);
        frame[field::frame_thread] = static_cast<char>(data[1] % 2);
        frame.replace(field::frame_size, payload, reinterpret_cast<const char *>(data) + 4, payload);
        put32(frame, field::frame_checksum,
              field::frame_sum(reinterpret_cast<const std::uint8_t *>(frame.data()), length));
        ring += frame;
        data += 4 + payload;
        size -= 4 + payload;
    }
    return ring;
}

} // namespace

// A search that cannot test a record loses its block on purpose, and a recording may say so of any.
extern "C" const char *__asan_default_options() {
    return "detect_leaks=0";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    try {
        std::string file = header(data[0]);
        const std::string ring = frames(data + 1, size - 1);
        put32(file, field::place_head, static_cast<std::uint32_t>(ring.size()));
        file += ring;
        const field::recording recorded = field::read_recording(file);
        static_cast<void>(field::about(recorded) + field::call_table(recorded, field::listing::slowest) +
                          field::values_before(recorded, UINT32_MAX));
        static_cast<void>(field::replay(recorded));
        static_cast<void>(field::read_recording({reinterpret_cast<const char *>(data), size}));
    } catch (const std::runtime_error &refused) {
        if (*refused.what() == '\0') {
            std::abort();
        }
    }
    return 0;
}
