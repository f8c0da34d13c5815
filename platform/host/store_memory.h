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
    char c_library[16];        // whose mutexes these are
    std::uint32_t mutex_size;
    std::uint32_t mutex_kind;
    std::uint8_t reserved[8]; // zeros
};
static_assert(sizeof(image_header) == 64);

// What the holder of a category's lock is changing.
enum write_kind : std::uint32_t {
    write_none,
    write_value, // the `size` bytes at `offset` of the region; the old ones stand behind the guard
    write_reset  // records `first` to `last`: they become like record 0
};

// A category's lock, who holds it and, while `sequence` is odd, the write that is in progress there. A value
// is undone and a reset done to the end by whoever finds that the writer died. Readers look at all of it but
// the mutex without the lock.
struct value_guard {
    pthread_mutex_t mutex;
    std::atomic<std::uint32_t> sequence;
    std::atomic<std::uint32_t> kind; // a write_kind
    std::atomic<std::uint32_t> offset;
    std::atomic<std::uint32_t> size;
    std::atomic<std::uint32_t> first;
    std::atomic<std::uint32_t> last;
    std::atomic<std::uint32_t> holder;       // the process number of who holds the lock; 0: nobody
    std::atomic<std::uint32_t> holder_space; // and the namespace in which that number is meant
};
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

// Where the parts lie, in bytes.
struct memory_shape {
    std::uint32_t guard_bytes; // a guard's own; the room for a value follows
    std::uint32_t guard_stride;
    std::uint32_t region_offset;
    std::uint32_t bytes;

    static const memory_shape &get();

    // Of images of the earlier format version, whose guards name no holder. They are only read.
    static const memory_shape &earlier();
};

// What kind of mutex the C library was asked for, read from the mutex itself: only this one may be locked,
// since the C library trusts what it finds there.
std::uint32_t mutex_kind(const pthread_mutex_t &mutex);
std::uint32_t fresh_mutex_kind(bool is_shared);

class store_memory {
  public:
    // Zeros, with locks for the threads of this process.
    static store_memory private_memory();

    // A file of the right size that is open. Its locks are not touched.
    static store_memory mapped_for_writing(open_file file);

    // The same for reading alone; `reason` says to who wants to write why not.
    static store_memory mapped_for_reading(open_file file, const memory_shape &shape, std::string reason);

    store_memory(store_memory &&other) noexcept;
    store_memory &operator=(store_memory &&) = delete;
    ~store_memory();

    const open_file &file() const { return file_; }
    bool is_read_only() const { return !read_only_reason_.empty(); }
    const std::string &read_only_reason() const { return read_only_reason_; }

    // Whether its guards name their holders.
    bool names_holders() const { return shape_ == &memory_shape::get(); }

    value_guard &guard(std::size_t category) {
        void *place = base_ + sizeof(image_header) + category * guard_stride_;
        return *static_cast<value_guard *>(place);
    }
    std::uint8_t *old_value(std::size_t category) {
        return base_ + sizeof(image_header) + category * guard_stride_ + shape_->guard_bytes;
    }
    std::uint8_t *region() { return region_; }

    // What mutex_kind() answers for every lock that is in order.
    std::uint32_t lock_kind() const { return lock_kind_; }

    // Makes every lock a fresh one. Nobody else may use the memory.
    void create_locks(bool is_shared);

  private:
    store_memory(void *base, open_file file, const memory_shape &shape, std::string read_only_reason);

    std::uint8_t *base_;
    std::uint8_t *region_;
    std::size_t guard_stride_;
    const memory_shape *shape_;
    std::uint32_t lock_kind_;
    open_file file_; // its file locks last as long as the memory is in use
    std::string read_only_reason_;
};

} // namespace qryhost
