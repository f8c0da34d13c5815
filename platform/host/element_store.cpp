// The region, its locks, and the one store that the process has open.
#include "platform/host/element_store.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/host/control.h"

namespace qryhost {

element_store::element_store()
    : layout_(store_layout::get()), region_(std::make_unique<std::uint8_t[]>(layout_.bytes())),
      locks_(std::make_unique<std::mutex[]>(layout_.categories().size())) {}

std::uint8_t *element_store::value(const element_place &place, std::uint32_t record) {
    return region_.get() + place.value_offset(record);
}

void element_store::read(const element_place &place, std::uint32_t record, void *buffer) {
    const std::lock_guard<std::mutex> hold(locks_[place.lock]);
    std::memcpy(buffer, value(place, record), place.size);
}

void element_store::write(const element_place &place, std::uint32_t record, const void *buffer) {
    const std::lock_guard<std::mutex> hold(locks_[place.lock]);
    std::memcpy(value(place, record), buffer, place.size);
}

void element_store::copy_column(const element_place &place, std::uint32_t record_num, void *values) {
    const std::lock_guard<std::mutex> hold(locks_[place.lock]);
    std::memcpy(values, value(place, 1), std::size_t{place.size} * record_num);
}

void element_store::restore_default(const category_place &table, std::uint32_t first, std::uint32_t last) {
    const element_place *elements = &layout_.elements()[table.first_element];
    const std::lock_guard<std::mutex> hold(locks_[elements->lock]);
    for (std::uint32_t e = 0; e < table.element_num; ++e) {
        for (std::uint32_t record = first; record <= last; ++record) {
            std::memcpy(value(elements[e], record), value(elements[e], 0), elements[e].size);
        }
    }
}

// Always in the same order, while every other holder holds one lock only: nobody waits in a circle.
std::vector<std::unique_lock<std::mutex>> element_store::hold_all() {
    std::vector<std::unique_lock<std::mutex>> held;
    held.reserve(layout_.categories().size());
    for (std::size_t i = 0; i < layout_.categories().size(); ++i) {
        held.emplace_back(locks_[i]);
    }
    return held;
}

std::vector<std::uint8_t> element_store::snapshot() {
    std::vector<std::uint8_t> copy(layout_.bytes());
    const auto held = hold_all();
    std::memcpy(copy.data(), region_.get(), copy.size());
    return copy;
}

void element_store::replace(const std::vector<std::uint8_t> &region) {
    const auto held = hold_all();
    std::memcpy(region_.get(), region.data(), layout_.bytes());
}

namespace {

// Opening and closing are rare and take the lock; finding the open store is one load.
std::mutex opening_lock;
std::unique_ptr<element_store> owned_store;
std::atomic<element_store *> open_now{nullptr};

std::unique_ptr<element_store> make_store(const char *image_path) {
    if (image_path != nullptr) {
        throw refusal("device images are not available yet");
    }
    return std::make_unique<element_store>();
}

element_store *open_default_store() {
    const std::lock_guard<std::mutex> hold(opening_lock);
    if (owned_store == nullptr) {
        owned_store = make_store(std::getenv("QRYLIB_IMAGE"));
        open_now.store(owned_store.get(), std::memory_order_release);
    }
    return owned_store.get();
}

} // namespace

element_store *current_store() noexcept {
    if (element_store *store = open_now.load(std::memory_order_acquire)) {
        return store;
    }
    element_store *store = nullptr;
    control([&store] { store = open_default_store(); });
    return store;
}

void open_store(const char *image_path) {
    std::unique_ptr<element_store> fresh = make_store(image_path);
    const std::lock_guard<std::mutex> hold(opening_lock);
    open_now.store(fresh.get(), std::memory_order_release);
    owned_store = std::move(fresh);
}

void close_store() {
    const std::lock_guard<std::mutex> hold(opening_lock);
    open_now.store(nullptr, std::memory_order_release);
    owned_store.reset();
}

} // namespace qryhost
