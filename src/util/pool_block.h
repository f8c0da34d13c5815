// A block of the platform's memory partition that is given back on every path.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include <qrylib/types.h>

#include "platform/os.h"

namespace norvane {

// Owns one block or none. Move-only. The content of a fresh block is not cleared.
class pool_block {
  public:
    pool_block() = default;
    explicit pool_block(void *taken) : block_(taken) {}
    pool_block(pool_block &&other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    pool_block &operator=(pool_block &&other) noexcept {
        if (this != &other) {
            give_back();
            block_ = std::exchange(other.block_, nullptr);
        }
        return *this;
    }
    ~pool_block() { give_back(); }

    // Takes `count` entries of `entry_size` bytes, at least one entry, giving back what it held. Returns 0 or
    // the platform's code; a size beyond the partition's 32 bits is refused as if the partition were empty.
    std::uint32_t take(std::uint64_t count, std::uint64_t entry_size = 1) {
        give_back();
        const std::uint64_t entries = count == 0 ? 1 : count;
        if (entries > UINT32_MAX || entry_size > UINT32_MAX || entries * entry_size > UINT32_MAX) {
            return QRY_LIB_NO_MEMORY;
        }
        void *fresh = nullptr;
        const std::uint32_t code =
            pfwOSWOrgAllocMemPart(0, &fresh, static_cast<std::uint32_t>(entries * entry_size));
        block_ = code == 0 ? fresh : nullptr;
        return code;
    }

    // Takes a block and fills it with zeros.
    std::uint32_t take_zeroed(std::uint64_t count, std::uint64_t entry_size = 1) {
        const std::uint32_t code = take(count, entry_size);
        if (code == 0) {
            std::memset(block_, 0, static_cast<std::size_t>((count == 0 ? 1 : count) * entry_size));
        }
        return code;
    }

    // Takes a copy of a text with its terminator, and of what is to stand in front of it.
    std::uint32_t take_text(std::string_view text, std::string_view before = "") {
        const std::uint32_t code = take(std::uint64_t{before.size()} + text.size() + 1);
        if (code == 0) {
            char *const copy = as<char>();
            std::memcpy(copy, before.data(), before.size());
            std::memcpy(copy + before.size(), text.data(), text.size());
            copy[before.size() + text.size()] = '\0';
        }
        return code;
    }

    template <typename T>
    T *as() const {
        return static_cast<T *>(block_);
    }

    // Hands the block to an owner by contract (a public record).
    void *release() { return std::exchange(block_, nullptr); }

    // Gives the block back before its owner goes, where a trace is to come behind it.
    void give_back() {
        if (block_ != nullptr) {
            pfwOSWOrgFreeMemPart(0, block_);
            block_ = nullptr;
        }
    }

  private:
    void *block_ = nullptr;
};

} // namespace norvane
