// Opening and closing lists, and copying those of a moment again.
#include "platform/host/list_moment.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "platform/host/element_store.h"

namespace qryhost {

namespace {

struct freed {
    void operator()(list_values *values) const { std::free(values); }
};
using owned_values = std::unique_ptr<list_values, freed>;

std::size_t bytes_of(const list_values &values) {
    return std::size_t{values.place->size} * values.record_num;
}

owned_values make_values(const element_place &place, std::uint32_t record_num, std::uint32_t owner) {
    void *memory = std::malloc(sizeof(list_values) + std::size_t{place.size} * record_num);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return owned_values(new (memory)
                            list_values{nullptr, nullptr, &place, owner, record_num, {list_values::alone}});
}

region_part part_of(const list_values &values, void *copy) {
    return {values.place->lock, values.place->value_offset(1), bytes_of(values), copy, 0};
}

} // namespace

std::uint8_t *list_moment::open(element_store &store, const element_place &place, std::uint32_t record_num,
                                std::uint32_t moves) {
    if (first_ != nullptr && (moves != moves_ || place.lock != category_)) {
        end();
    }
    owned_values fresh = make_values(place, record_num, owner_);
    region_part part = part_of(*fresh, fresh->bytes());
    store.copy_at_one_moment(&part, 1);
    if (first_ != nullptr && part.sequence != sequence_) {
        copy_again(store, *fresh);
    } else {
        sequence_ = part.sequence;
    }
    category_ = place.lock;
    moves_ = moves;
    join(fresh.get());
    return fresh.release()->bytes();
}

// A writer came between two lists. Into memory of its own first: the lists stay as they are when it fails.
void list_moment::copy_again(element_store &store, list_values &newest) {
    std::vector<list_values *> all = {&newest};
    std::size_t bytes = bytes_of(newest);
    for (list_values *values = first_; values != nullptr; values = values->next) {
        all.push_back(values);
        bytes += bytes_of(*values);
    }
    std::vector<std::uint8_t> copies(bytes);
    std::vector<region_part> parts;
    std::uint8_t *place = copies.data();
    for (const list_values *values : all) {
        parts.push_back(part_of(*values, place));
        place += bytes_of(*values);
    }
    store.copy_at_one_moment(parts.data(), parts.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::memcpy(all[i]->bytes(), parts[i].copy, parts[i].size);
    }
    sequence_ = parts.front().sequence;
}

void list_moment::join(list_values *values) {
    values->next = first_;
    if (first_ != nullptr) {
        first_->previous = values;
    }
    first_ = values;
    values->now.store(list_values::joined, std::memory_order_relaxed);
}

// The lists go on for themselves.
void list_moment::end() {
    while (first_ != nullptr) {
        list_values *values = first_;
        first_ = values->next;
        if (values->now.exchange(list_values::alone) == list_values::dropped) {
            std::free(values);
        }
    }
}

std::uint32_t list_moment::close(std::uint8_t *bytes) {
    list_values *values = list_values::of(bytes);
    const std::uint32_t owner = values->owner;
    if (owner != owner_) {
        if (values->now.exchange(list_values::dropped) == list_values::alone) {
            std::free(values);
        }
        return owner;
    }
    if (values->now.load(std::memory_order_relaxed) == list_values::joined) {
        if (values->next != nullptr) {
            values->next->previous = values->previous;
        }
        (values == first_ ? first_ : values->previous->next) = values->next;
    }
    std::free(values);
    return owner;
}

} // namespace qryhost
