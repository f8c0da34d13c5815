// What a guard says and what it means for the values.
#include "platform/host/write_in_progress.h"

#include <algorithm>

#include "platform/host/copy_value.h"

namespace qryhost {

namespace {

const category_place &place_of(std::size_t category) {
    return store_layout::get().categories()[category];
}

// Calls `visit(offset of the value, offset of the default value, size)` for every value of the records.
template <typename Visit>
void for_each_value(std::size_t category, std::uint32_t first, std::uint32_t last, Visit visit) {
    const element_place *element = &store_layout::get().elements()[place_of(category).first_element];
    const element_place *const end = element + place_of(category).element_num;
    for (; element != end; ++element) {
        for (std::uint32_t record = first; record <= last; ++record) {
            visit(element->value_offset(record), element->offset, element->size);
        }
    }
}

// Puts in what belongs at `place` of the region, as far as the copy reaches there.
void put(const region_copy &copy, std::uint32_t place, const std::uint8_t *value, std::uint32_t length) {
    const std::size_t begin = std::max(place, copy.offset);
    const std::size_t end = std::min<std::size_t>(std::size_t{place} + length, copy.offset + copy.size);
    if (begin < end) {
        copy_shared(copy.bytes + (begin - copy.offset), value + (begin - place), end - begin);
    }
}

bool is_possible(const write_in_progress &write, std::size_t category) {
    switch (write.kind) {
    case write_value:
        return store_layout::get().has_value(category, write.offset, write.size);
    case write_reset:
        return write.first > 0 && write.last <= place_of(category).record_num;
    default:
        return false;
    }
}

} // namespace

write_in_progress named_write(store_memory &memory, std::size_t category) {
    const value_guard &guard = memory.guard(category);
    const auto read = [](const std::atomic<std::uint32_t> &field) {
        return field.load(std::memory_order_relaxed);
    };
    const write_in_progress named = {read(guard.kind), read(guard.offset), read(guard.size),
                                     read(guard.first), read(guard.last)};
    return is_possible(named, category) ? named : write_in_progress{write_none, 0, 0, 0, 0};
}

bool is_writing(store_memory &memory, std::size_t category) {
    return memory.guard(category).sequence.load(std::memory_order_acquire) % 2 != 0;
}

// May be killed too: the sequence stays odd until all is done, and doing it again does no harm.
void settle_write(store_memory &memory, std::size_t category) {
    value_guard &guard = memory.guard(category);
    const std::uint32_t sequence = guard.sequence.load(std::memory_order_relaxed);
    if (sequence % 2 == 0) {
        return;
    }
    const write_in_progress write = named_write(memory, category);
    if (write.kind == write_value) {
        copy_shared(memory.region() + write.offset, memory.old_value(category), write.size);
    } else if (write.kind == write_reset) {
        copy_default(memory, category, write.first, write.last);
    }
    guard.sequence.store(sequence + 1, std::memory_order_release);
    guard.kind.store(write_none, std::memory_order_release);
}

void copy_default(store_memory &memory, std::size_t category, std::uint32_t first, std::uint32_t last) {
    std::uint8_t *region = memory.region();
    for_each_value(category, first, last,
                   [region](std::uint32_t value, std::uint32_t from, std::uint16_t size) {
                       copy_shared(region + value, region + from, size);
                   });
}

void settle_in_copy(store_memory &memory, std::size_t category, const region_copy &copy) {
    const write_in_progress write = named_write(memory, category);
    if (write.kind == write_value) {
        put(copy, write.offset, memory.old_value(category), write.size);
    } else if (write.kind == write_reset) {
        const std::uint8_t *region = memory.region();
        for_each_value(category, write.first, write.last,
                       [&copy, region](std::uint32_t value, std::uint32_t from, std::uint16_t size) {
                           put(copy, value, region + from, size);
                       });
    }
}

} // namespace qryhost
