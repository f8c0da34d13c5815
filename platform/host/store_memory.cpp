// The shape of a store's memory, its mapping and the making of its locks.
#include "platform/host/store_memory.h"

#include <sys/mman.h>

#include <cstddef>
#include <utility>

namespace qryhost {

namespace {

// Guards on cache lines of their own: categories do not slow each other.
constexpr std::uint32_t cache_line = 64;
static_assert(sizeof(image_header) % cache_line == 0);

memory_shape make_shape(std::uint32_t guard_bytes) {
    const store_layout &layout = store_layout::get();
    const auto guard_num = static_cast<std::uint32_t>(layout.categories().size());
    memory_shape shape{};
    shape.guard_bytes = guard_bytes;
    shape.guard_stride = (guard_bytes + layout.largest_size() + cache_line - 1) / cache_line * cache_line;
    shape.region_offset = static_cast<std::uint32_t>(sizeof(image_header)) + guard_num * shape.guard_stride;
    shape.bytes = shape.region_offset + layout.bytes();
    return shape;
}

void *map(std::size_t bytes, int protection, int flags, int file) {
    void *base = ::mmap(nullptr, bytes, protection, flags, file, 0);
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
            share_between_processes();
        }
    }
    mutex_attributes(const mutex_attributes &) = delete;
    mutex_attributes &operator=(const mutex_attributes &) = delete;
    ~mutex_attributes() { ::pthread_mutexattr_destroy(&attributes_); }

    const pthread_mutexattr_t *get() const { return &attributes_; }

  private:
    // A browser has no other processes.
    void share_between_processes() {
#ifndef __EMSCRIPTEN__
        ::pthread_mutexattr_setpshared(&attributes_, PTHREAD_PROCESS_SHARED);
        ::pthread_mutexattr_setrobust(&attributes_, PTHREAD_MUTEX_ROBUST);
#endif
    }

    pthread_mutexattr_t attributes_;
};

} // namespace

const memory_shape &memory_shape::get() {
    static const memory_shape shape = make_shape(sizeof(value_guard));
    return shape;
}

const memory_shape &memory_shape::earlier() {
    static const memory_shape shape = make_shape(offsetof(value_guard, holder));
    return shape;
}

std::uint32_t mutex_kind(const pthread_mutex_t &mutex) {
#ifdef __GLIBC__
    return static_cast<std::uint32_t>(mutex.__data.__kind);
#else
    static_cast<void>(mutex); // then nothing can be told
    return 0;
#endif
}

std::uint32_t fresh_mutex_kind(bool is_shared) {
    const mutex_attributes attributes(is_shared);
    pthread_mutex_t fresh;
    ::pthread_mutex_init(&fresh, attributes.get());
    const std::uint32_t kind = mutex_kind(fresh);
    ::pthread_mutex_destroy(&fresh);
    return kind;
}

store_memory::store_memory(void *base, open_file file, const memory_shape &shape,
                           std::string read_only_reason)
    : base_(static_cast<std::uint8_t *>(base)), region_(base_ + shape.region_offset),
      guard_stride_(shape.guard_stride), shape_(&shape), lock_kind_(fresh_mutex_kind(file.is_open())),
      file_(std::move(file)), read_only_reason_(std::move(read_only_reason)) {}

store_memory::store_memory(store_memory &&other) noexcept
    : base_(std::exchange(other.base_, nullptr)), region_(other.region_), guard_stride_(other.guard_stride_),
      shape_(other.shape_), lock_kind_(other.lock_kind_), file_(std::move(other.file_)),
      read_only_reason_(std::move(other.read_only_reason_)) {}

// Unmapped before the file is closed, and with it the file locks go.
store_memory::~store_memory() {
    if (base_ != nullptr) {
        ::munmap(base_, shape_->bytes);
    }
}

store_memory store_memory::private_memory() {
    const memory_shape &shape = memory_shape::get();
    store_memory memory(map(shape.bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1), {}, shape,
                        "");
    memory.create_locks(false);
    return memory;
}

store_memory store_memory::mapped_for_writing(open_file file) {
    const memory_shape &shape = memory_shape::get();
    void *base = map(shape.bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.number());
    return {base, std::move(file), shape, ""};
}

store_memory store_memory::mapped_for_reading(open_file file, const memory_shape &shape, std::string reason) {
    void *base = map(shape.bytes, PROT_READ, MAP_SHARED, file.number());
    return {base, std::move(file), shape, std::move(reason)};
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
