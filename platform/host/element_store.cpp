// Access to the values, and the one store that the process has open.
#include "platform/host/element_store.h"

#ifndef __EMSCRIPTEN__
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <thread>
#include <utility>

#include "platform/host/control.h"
#include "platform/host/environment.h"
#include "platform/host/guard.h"
#include "platform/host/image_file.h"

namespace qryhost {

element_store::element_store(store_memory memory)
    : layout_(store_layout::get()), memory_(std::move(memory)) {}

void element_store::copy_at_one_moment(region_part *parts, std::size_t num) {
    if (!qryhost::copy_at_one_moment(memory_, parts, num, wait_limit())) {
        throw refusal("the records of category " +
                      std::to_string(layout_.categories()[parts->category].category) +
                      " change too fast to be read");
    }
}

void element_store::read(const element_place &place, std::uint32_t record, void *buffer) {
    region_part part = {place.lock, place.value_offset(record), place.size, buffer, 0};
    copy_at_one_moment(&part, 1);
}

void element_store::write(const element_place &place, std::uint32_t record, const void *buffer) {
    wait_limit limit;
    value_lock hold(memory_, place.lock, limit);
    hold.replace(place.value_offset(record), place.size, buffer);
}

void element_store::restore_default(const category_place &table, std::uint32_t first, std::uint32_t last) {
    wait_limit limit;
    value_lock hold(memory_, layout_.elements()[table.first_element].lock, limit);
    hold.restore_default(first, last);
}

std::vector<value_lock> element_store::hold_all() {
    wait_limit limit;
    std::vector<value_lock> held;
    held.reserve(layout_.categories().size());
    for (std::size_t i = 0; i < layout_.categories().size(); ++i) {
        held.emplace_back(memory_, i, limit);
    }
    return held;
}

std::vector<std::uint8_t> element_store::snapshot() {
    std::vector<std::uint8_t> region(layout_.bytes());
    std::vector<region_part> parts;
    for (const category_place &place : layout_.categories()) {
        parts.push_back({parts.size(), place.offset, place.bytes, region.data() + place.offset, 0});
    }
    constexpr std::chrono::seconds patience{1};
    if (!qryhost::copy_at_one_moment(memory_, parts.data(), parts.size(), wait_limit(patience))) {
        std::for_each(parts.begin(), parts.end(),
                      [this](region_part &part) { copy_at_one_moment(&part, 1); });
    }
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
guard_mutex opening_lock(lock_rank::opening);
std::unique_ptr<element_store> owned_store QRYLIB_GUARDED_BY(opening_lock);

std::unique_ptr<element_store> make_store(const char *image_path) {
    return std::make_unique<element_store>(image_path == nullptr ? store_memory::private_memory()
                                                                 : open_image(image_path));
}

element_store *open_default_store() {
    const guard hold(opening_lock);
    if (owned_store == nullptr) {
        const char *image = environment("QRYLIB_IMAGE");
        owned_store = make_store(image);
        open_now.store(owned_store.get(), std::memory_order_release);
    }
    return owned_store.get();
}

// Makes every thread of the process show what it has written so far. Where the system cannot, a pause does:
// no processor keeps a write to itself for so long. In a browser there is one thread.
void show_all_counts() {
#ifndef __EMSCRIPTEN__
    if (::syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0) != 0 &&
        (::syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) != 0 ||
         ::syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0) != 0)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
#endif
}

// Calls that begin from now on wait for the lock.
void replace_store(std::unique_ptr<element_store> fresh) QRYLIB_REQUIRES(opening_lock) {
    if (owned_store != nullptr) {
        own_state();
        open_now.store(nullptr, std::memory_order_seq_cst);
        show_all_counts();
        if (is_store_used_elsewhere()) {
            open_now.store(owned_store.get(), std::memory_order_release);
            throw refusal("another thread is inside a call or holds a list");
        }
    }
    owned_store = std::move(fresh);
    open_now.store(owned_store.get(), std::memory_order_release);
}

std::vector<value_lock> held_for_fork;

} // namespace

void hold_store_for_fork() noexcept {
    element_store *store = open_now.load(std::memory_order_acquire);
    if (store == nullptr || store->is_shared()) {
        return;
    }
    try {
        held_for_fork = store->hold_all();
    } catch (const std::exception &) {
        held_for_fork.clear(); // a thread that a debugger stopped: the child gets the values as they are
    }
}

void release_store_after_fork() noexcept {
    held_for_fork.clear();
}

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
        throw refusal(store.read_only_reason());
    }
    return store;
}

void open_store(const char *image_path) {
    std::unique_ptr<element_store> fresh = make_store(image_path);
    const guard hold(opening_lock);
    replace_store(std::move(fresh));
}

void close_store() {
    const guard hold(opening_lock);
    replace_store(nullptr);
}

} // namespace qryhost
