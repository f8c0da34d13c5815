// The bytes of one store, in private memory or in a device image; what is built on it need not know
// which. Both have the same shape:
//
//   image_header | one value_guard for each category, with room for one value behind it | the region of
//   values
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/host/open_file.h"
#include "platform/host/store_layout.h"

namespace qryhost {

// The start of a device image. Every build that may share an image writes exactly the same bytes here; in
// private memory they are zeros.
struct image_header {
    char magic[8];
    std::uint32_t byte_order; // 0x01020304 in the machine's own order
    std::uint32_t version;
    std::uint32_t word_size; // bytes of a pointer: what a mutex looks like depends on it
    std::uint32_t file_size;
    std::uint64_t layout_hash; // of the schema, the capacities and the shape
    std::uint8_t reserved[32]; // zeros
};
static_assert(sizeof(image_header) == 64);

// What the holder of a category's lock is changing.
enum write_kind : std::uint32_t {
    write_none,
    write_value, // the `size` bytes at `offset` of the region; the old ones stand behind the guard
    write_reset  // records `first` to `last`: they become like record 0
};

// A category's lock and, while `sequence` is odd, the write that is in progress there. A value is undone and
// a reset done to the end by whoever finds that the writer died.
struct value_guard {
    pthread_mutex_t mutex;
    std::atomic<std::uint32_t> sequence;
    std::atomic<std::uint32_t> kind; // a write_kind
    std::uint32_t offset;
    std::uint32_t size;
    std::uint32_t first;
    std::uint32_t last;
};
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

// Where the parts lie, in bytes.
struct memory_shape {
    std::uint32_t guard_stride;
    std::uint32_t region_offset;
    std::uint32_t bytes;

    static const memory_shape &get();
};

class store_memory {
  public:
    // Zeros, with locks for the threads of this process.
    static store_memory private_memory();

    // A file of the right size that is open. Its locks are not touched.
    static store_memory mapped(open_file file, bool is_read_only);

    store_memory(store_memory &&other) noexcept;
    store_memory &operator=(store_memory &&) = delete;
    ~store_memory();

    const open_file &file() const { return file_; }
    bool is_read_only() const { return is_read_only_; }

    value_guard &guard(std::size_t category) {
        void *place = base_ + sizeof(image_header) + category * guard_stride_;
        return *static_cast<value_guard *>(place);
    }
    std::uint8_t *old_value(std::size_t category) {
        return base_ + sizeof(image_header) + category * guard_stride_ + sizeof(value_guard);
    }
    std::uint8_t *region() { return region_; }

    // Makes every lock a fresh one. Nobody else may use the memory.
    void create_locks(bool is_shared);

  private:
    store_memory(void *base, open_file file, bool is_read_only);

    std::uint8_t *base_;
    std::uint8_t *region_;
    std::size_t guard_stride_;
    open_file file_; // its file locks last as long as the memory is in use
    bool is_read_only_;
};

} // namespace qryhost
