// A buffer that the platform may write any element into.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <qrylib/types.h>

#include "exec/schema/schema.h"

namespace norvane {

// Room for the largest value and a terminator, behind the farthest member offset; aligned for every element.
class element_buffer {
  public:
    char *data() { return bytes_; }
    const char *data() const { return bytes_; }
    const char *at(std::size_t offset) const { return bytes_ + offset; }

    // Clears `size` bytes at `offset` and a terminator behind them. A platform may hold less of a value than
    // the schema says, and write no end to it: what a read leaves alone must be zero.
    void clear(std::size_t offset, std::size_t size) {
        if (size < sizeof(std::uint64_t)) {
            std::memset(bytes_ + offset, 0, sizeof(std::uint64_t)); // one store, for the numbers
        } else {
            std::memset(bytes_ + offset, 0, size + 1);
        }
    }
    void clear(const QRY_LIB_ELEMENT_INFO &info) { clear(info.member_offset, info.size); }
    void clear() { std::memset(bytes_, 0, sizeof bytes_); }

  private:
    alignas(8) char bytes_[member_offset_max + QRY_LIB_STRING_MAX + 2];
};

} // namespace norvane
