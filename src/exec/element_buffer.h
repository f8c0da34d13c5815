// A buffer that the platform may write any element into.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "exec/schema/schema.h"
#include "qrylib/types.h"

namespace norvane {

// Room for the largest value and a terminator, behind the farthest member offset; aligned for every element.
class element_buffer {
  public:
    char *data() { return bytes_; }
    const char *data() const { return bytes_; }
    const char *at(std::size_t offset) const { return bytes_ + offset; }

    // Clears `size` bytes at `offset` and a terminator behind them: what the next read fills.
    void clear(std::size_t offset, std::size_t size) {
        if (size < sizeof(std::uint64_t)) {
            std::memset(bytes_ + offset, 0, sizeof(std::uint64_t)); // one store, for the numbers
        } else {
            std::memset(bytes_ + offset, 0, size + 1);
        }
    }
    void clear(const QRY_LIB_ELEMENT_INFO &info) { clear(0, std::size_t{info.member_offset} + info.size); }

    // Clears so much that a value which is not written is a zero or the empty string.
    void clear_start(const QRY_LIB_ELEMENT_INFO &info) { clear(info.member_offset, sizeof(std::uint32_t)); }
    void clear() { std::memset(bytes_, 0, sizeof bytes_); }

  private:
    alignas(8) char bytes_[member_offset_max + QRY_LIB_STRING_MAX + 2];
};

} // namespace norvane
