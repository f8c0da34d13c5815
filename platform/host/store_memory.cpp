// The shape of a store's memory, its mapping and the making of its locks.
#include "platform/host/store_memory.h"

#include <sys/mman.h>

#include <utility>

namespace qryhost {

namespace {

// Guards on cache lines of their own: categories do not slow each other.
constexpr std::uint32_t cache_line = 64;
static_assert(sizeof(image_header) % cache_line == 0);

memory_shape make_shape() {
    const store_layout &layout = store_layout::get();
    const auto guard_num = static_cast<std::uint32_t>(layout.categories().size());
    const std::uint32_t guard_bytes = sizeof(value_guard) + layout.largest_size();
    memory_shape shape{};
    shape.guard_stride = (guard_bytes + cache_line - 1) / cache_line * cache_line;
    shape.region_offset = static_cast<std::uint32_t>(sizeof(image_header)) + guard_num * shape.guard_stride;
    shape.bytes = shape.region_offset + layout.bytes();
    return shape;
}

void *map(int protection, int flags, int file) {
    void *base = ::mmap(nullptr, memory_shape::get().bytes, protection, flags, file, 0);
    if (base == MAP_FAILED) {
        throw refusal("the store cannot be mapped: " + std::generic_category().message(errno));
    }
    return base;
}

class mutex_attributes {
  public:
    explicit mutex_attributes(bool is_shared) {
        ::pthread_mutexattr_init(&attributes_);
        if (is_shared) {
            ::pthread_mutexattr_setpshared(&attributes_, PTHREAD_PROCESS_SHARED);
            ::pthread_mutexattr_setrobust(&attributes_, PTHREAD_MUTEX_ROBUST);
        }
    }
    mutex_attributes(const mutex_attributes &) = delete;
    mutex_attributes &operator=(const mutex_attributes &) = delete;
    ~mutex_attributes() { ::pthread_mutexattr_destroy(&attributes_); }

    const pthread_mutexattr_t *get() const { return &attributes_; }

  private:
    pthread_mutexattr_t attributes_;
};

} // namespace

const memory_shape &memory_shape::get() {
    static const memory_shape shape = make_shape();
    return shape;
}

store_memory::store_memory(void *base, open_file file, bool is_read_only)
    : base_(static_cast<std::uint8_t *>(base)), region_(base_ + memory_shape::get().region_offset),
      guard_stride_(memory_shape::get().guard_stride), file_(std::move(file)), is_read_only_(is_read_only) {}

store_memory::store_memory(store_memory &&other) noexcept
    : base_(std::exchange(other.base_, nullptr)), region_(other.region_), guard_stride_(other.guard_stride_),
      file_(std::move(other.file_)), is_read_only_(other.is_read_only_) {}

// Unmapped before the file is closed, and with it the file locks go.
store_memory::~store_memory() {
    if (base_ != nullptr) {
        ::munmap(base_, memory_shape::get().bytes);
    }
}

store_memory store_memory::private_memory() {
    store_memory memory(map(PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1), {}, false);
    memory.create_locks(false);
    return memory;
}

store_memory store_memory::mapped(open_file file, bool is_read_only) {
    void *base = map(is_read_only ? PROT_READ : PROT_READ | PROT_WRITE, MAP_SHARED, file.number());
    return store_memory(base, std::move(file), is_read_only);
}

void store_memory::create_locks(bool is_shared) {
    const mutex_attributes attributes(is_shared);
    for (std::size_t i = 0; i < store_layout::get().categories().size(); ++i) {
        if (const int error = ::pthread_mutex_init(&guard(i).mutex, attributes.get())) {
            throw refusal("a lock cannot be created: " + std::generic_category().message(error));
        }
    }
}

} // namespace qryhost
