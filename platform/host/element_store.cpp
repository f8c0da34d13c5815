// Access to the values, and the one store that the process has open.
#include "platform/host/element_store.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/host/control.h"
#include "platform/host/guard.h"
#include "platform/host/image_file.h"

namespace qryhost {

element_store::element_store(store_memory memory)
    : layout_(store_layout::get()), memory_(std::move(memory)) {}

void element_store::copy_beside_writers(std::size_t category, std::uint32_t offset, std::size_t size,
                                        void *bytes) {
    if (memory_.is_read_only()) {
        copy_without_lock(memory_, category, offset, size, bytes);
        return;
    }
    const value_lock hold(memory_, category);
    std::memcpy(bytes, memory_.region() + offset, size);
}

void element_store::write(const element_place &place, std::uint32_t record, const void *buffer) {
    value_lock hold(memory_, place.lock);
    hold.replace(place.value_offset(record), place.size, buffer);
}

void element_store::copy_column(const element_place &place, std::uint32_t record_num, void *values) {
    copy(place.lock, place.value_offset(1), std::size_t{place.size} * record_num, values);
}

void element_store::restore_default(const category_place &table, std::uint32_t first, std::uint32_t last) {
    value_lock(memory_, layout_.elements()[table.first_element].lock).restore_default(first, last);
}

std::vector<value_lock> element_store::hold_all() {
    std::vector<value_lock> held;
    held.reserve(layout_.categories().size());
    for (std::size_t i = 0; i < layout_.categories().size(); ++i) {
        held.emplace_back(memory_, i);
    }
    return held;
}

std::vector<std::uint8_t> element_store::snapshot() {
    std::vector<std::uint8_t> region(layout_.bytes());
    if (memory_.is_read_only()) {
        for (std::size_t i = 0; i < layout_.categories().size(); ++i) {
            const category_place &part = layout_.categories()[i];
            copy_without_lock(memory_, i, part.offset, part.bytes, region.data() + part.offset);
        }
        return region;
    }
    const auto held = hold_all();
    std::memcpy(region.data(), memory_.region(), region.size());
    return region;
}

void element_store::replace(const std::vector<std::uint8_t> &region) {
    auto held = hold_all();
    for (const element_place &place : layout_.elements()) {
        for (std::uint32_t record = 0; record <= place.record_num; ++record) {
            const std::uint32_t offset = place.value_offset(record);
            held[place.lock].replace(offset, place.size, region.data() + offset);
        }
    }
}

// Finding the open store is one load.
std::atomic<element_store *> open_now{nullptr};

namespace {

// Opening and closing are rare and take the lock.
guard_mutex opening_lock;
std::unique_ptr<element_store> owned_store QRYLIB_GUARDED_BY(opening_lock);

std::unique_ptr<element_store> make_store(const char *image_path) {
    return std::make_unique<element_store>(image_path == nullptr ? store_memory::private_memory()
                                                                 : open_image(image_path));
}

element_store *open_default_store() {
    const guard hold(opening_lock);
    if (owned_store == nullptr) {
        const char *image = std::getenv("QRYLIB_IMAGE");
        owned_store = make_store(image != nullptr && *image != '\0' ? image : nullptr);
        open_now.store(owned_store.get(), std::memory_order_release);
    }
    return owned_store.get();
}

} // namespace

element_store *open_on_first_use() noexcept {
    element_store *store = nullptr;
    control([&store] { store = open_default_store(); });
    return store;
}

element_store &required_store() {
    element_store *store = current_store();
    if (store == nullptr) {
        throw refusal(last_error());
    }
    return *store;
}

element_store &required_writable_store() {
    element_store &store = required_store();
    if (store.is_read_only()) {
        throw refusal("the device image can only be read");
    }
    return store;
}

void open_store(const char *image_path) {
    std::unique_ptr<element_store> fresh = make_store(image_path);
    const guard hold(opening_lock);
    open_now.store(fresh.get(), std::memory_order_release);
    owned_store = std::move(fresh);
}

void close_store() {
    const guard hold(opening_lock);
    open_now.store(nullptr, std::memory_order_release);
    owned_store.reset();
}

} // namespace qryhost
