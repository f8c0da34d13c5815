// List tables: private copies of one element's values, which a search moves through without a lock.
#include <cstddef>
#include <cstring>

#include "platform/element_table.h"
#include "platform/host/copy_value.h"
#include "platform/host/element_codes.h"
#include "platform/host/element_store.h"
#include "platform/host/faults.h"
#include "platform/host/list_moment.h"

namespace {

using qryhost::element_place;
using qryhost::element_store;
using qryhost::thread_state;

// What the 16 bytes of a list table hold: the copied values of records 1 to `count`, back to back, and the
// position. Null values: not open.
struct list_state {
    std::uint8_t *values;
    std::uint16_t size;
    std::uint16_t count;
    std::uint16_t position;
};
static_assert(sizeof(list_state) <= sizeof(tbctListTable));

// Fields are read one by one: the position is written alone, and a wider read right behind it would wait.
template <typename Field>
Field field(const tbctListTable &list, std::size_t offset) {
    Field value;
    std::memcpy(&value, reinterpret_cast<const std::uint8_t *>(&list) + offset, sizeof value);
    return value;
}

list_state unpack(const tbctListTable &list) {
    return {field<std::uint8_t *>(list, offsetof(list_state, values)),
            field<std::uint16_t>(list, offsetof(list_state, size)),
            field<std::uint16_t>(list, offsetof(list_state, count)),
            field<std::uint16_t>(list, offsetof(list_state, position))};
}

void pack(const list_state &state, tbctListTable &list) {
    std::memcpy(&list, &state, sizeof state);
}

std::uint32_t set_position(tbctListTable *list, std::uint16_t position) {
    if (list == nullptr || position >= unpack(*list).count) { // 0 for a list that is not open
        return qryhost::element_refused;
    }
    std::memcpy(reinterpret_cast<std::uint8_t *>(list) + offsetof(list_state, position), &position,
                sizeof position);
    return 0;
}

std::uint32_t get_value(tbctListTable *list, void *buffer) {
    if (list == nullptr || buffer == nullptr) {
        return qryhost::element_refused;
    }
    const list_state state = unpack(*list);
    if (state.position >= state.count) { // 0 for a list that is not open
        return qryhost::element_refused;
    }
    qryhost::copy_value(buffer, state.values + std::size_t{state.size} * state.position, state.size);
    return 0;
}

// Another number after every move and every read of the thread: the lists that it has opened stay as they are
// from then on.
std::uint32_t moves_of(const thread_state &thread) {
    return thread.calls[QRYHOST_LIST_SET_POS].load(std::memory_order_relaxed) +
           thread.calls[QRYHOST_LIST_GET_VAL].load(std::memory_order_relaxed);
}

std::uint32_t create(std::uint32_t category, std::uint32_t element, std::uint16_t record_num,
                     tbctListTable *list) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_CREATE_LIST)) {
        return fault;
    }
    element_store *store = qryhost::current_store();
    if (store == nullptr) {
        return qryhost::element_no_store;
    }
    const element_place *place = store->layout().find(category, element);
    if (place == nullptr || place->is_setting || record_num > place->record_num || list == nullptr) {
        return qryhost::element_refused;
    }
    return qryhost::waiting_call([=] {
        thread_state &mine = qryhost::own_state();
        std::uint8_t *values = mine.moment.open(*store, *place, record_num, moves_of(mine));
        *list = tbctListTable{};
        pack({values, place->size, record_num, 0}, *list);
    });
}

// The long ways of the calls that a query makes for each record, kept out of the short ones: what those would
// save for them at each call is a third of their instructions.
[[gnu::noinline]] std::uint32_t set_position_or_fail(tbctListTable *list, std::uint16_t position) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_LIST_SET_POS);
    return fault != 0 ? fault : set_position(list, position);
}

[[gnu::noinline]] std::uint32_t get_value_or_fail(tbctListTable *list, void *buffer) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_LIST_GET_VAL);
    return fault != 0 ? fault : get_value(list, buffer);
}

} // namespace

extern "C" {

std::uint32_t tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element, std::uint16_t record_num,
                                     tbctListTable *list) {
    const std::uint32_t code = create(category, element, record_num, list);
    if (code != 0) {
        qryhost::end_use(qryhost::own_state()); // else the list goes on using the store
    }
    return code;
}

std::uint32_t tbctSTCListTableSetPos(tbctListTable *list, std::uint16_t position) {
    return qryhost::counted_without_fault(QRYHOST_LIST_SET_POS) ? set_position(list, position)
                                                                : set_position_or_fail(list, position);
}

std::uint32_t tbctSTCListTableGetVal(tbctListTable *list, void *buffer) {
    return qryhost::counted_without_fault(QRYHOST_LIST_GET_VAL) ? get_value(list, buffer)
                                                                : get_value_or_fail(list, buffer);
}

std::uint32_t tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t) {
    if (list == nullptr) {
        return qryhost::element_refused;
    }
    if (std::uint8_t *values = unpack(*list).values) {
        qryhost::thread_state &mine = qryhost::own_state();
        const std::uint32_t opener = mine.moment.close(values);
        opener == mine.number ? qryhost::end_use(mine) : qryhost::end_use_of(opener);
        *list = tbctListTable{};
    }
    return 0;
}

} // extern "C"
