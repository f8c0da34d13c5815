// The element-table calls over the store: record values, settings, and list tables.
#include "platform/element_table.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "platform/host/copy_value.h"
#include "platform/host/element_store.h"
#include "platform/host/faults.h"
#include "platform/host/refusal.h"

namespace {

using qryhost::category_place;
using qryhost::element_place;
using qryhost::element_store;

constexpr std::uint32_t refused = 0x5241;
constexpr std::uint32_t no_store = 0x5242; // the store cannot be opened: qryhost_error() says why
constexpr std::uint32_t no_memory = 0x5244;
constexpr std::uint32_t read_only = 0x5245; // the store is a device image that cannot be written
constexpr std::uint32_t held = 0x5246;      // others keep the records for too long: qryhost_error() says who

// Runs a call's work on the store.
template <typename Work>
std::uint32_t waiting_call(Work work) noexcept {
    try {
        work();
        return 0;
    } catch (const std::exception &failure) {
        qryhost::set_error(failure.what());
        return held;
    }
}

std::uint32_t refuse_write(const element_store &store) {
    qryhost::set_error(store.read_only_reason().c_str());
    return read_only;
}

// Null when the arguments name nothing that exists.
const element_place *find_place(const element_store &store, bool is_setting, std::uint32_t category,
                                std::uint32_t element, std::uint32_t record) {
    const element_place *place = store.layout().find(category, element);
    return place != nullptr && place->is_setting == is_setting && record <= place->record_num ? place
                                                                                              : nullptr;
}

[[gnu::noinline]] std::uint32_t read_beside_writers(element_store &store, const element_place &place,
                                                    std::uint32_t record, void *buffer) {
    return waiting_call([&] { store.read(place, record, buffer); });
}

std::uint32_t read_value(bool is_setting, std::uint32_t category, std::uint32_t record, std::uint32_t element,
                         void *buffer) {
    element_store *store = qryhost::current_store();
    if (store == nullptr) {
        return no_store;
    }
    const element_place *place = find_place(*store, is_setting, category, element, record);
    if (place == nullptr || buffer == nullptr) {
        return refused;
    }
    return store->read_while_quiet(*place, record, buffer)
               ? 0
               : read_beside_writers(*store, *place, record, buffer);
}

std::uint32_t write_value(bool is_setting, std::uint32_t category, std::uint32_t record,
                          std::uint32_t element, const void *buffer) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_SET_TABLE)) {
        return fault;
    }
    element_store *store = qryhost::current_store();
    if (store == nullptr) {
        return no_store;
    }
    const element_place *place = find_place(*store, is_setting, category, element, record);
    if (place == nullptr || buffer == nullptr) {
        return refused;
    }
    if (store->is_read_only()) {
        return refuse_write(*store);
    }
    return waiting_call([=] { store->write(*place, record, buffer); });
}

// Puts a record of a category back to the default record; null: every record.
std::uint32_t reset_records(std::uint32_t category, const std::uint32_t *record) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_INIT_TABLE)) {
        return fault;
    }
    element_store *store = qryhost::current_store();
    if (store == nullptr) {
        return no_store;
    }
    const category_place *table = store->layout().find_category(category);
    if (table == nullptr || table->is_setting) {
        return refused;
    }
    const std::uint32_t first = record != nullptr ? *record : 1;
    const std::uint32_t last = record != nullptr ? *record : table->record_num;
    if (first == 0 || last > table->record_num) {
        return refused;
    }
    if (store->is_read_only()) {
        return refuse_write(*store);
    }
    return waiting_call([=] { store->restore_default(*table, first, last); });
}

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
        return refused;
    }
    std::memcpy(reinterpret_cast<std::uint8_t *>(list) + offsetof(list_state, position), &position,
                sizeof position);
    return 0;
}

std::uint32_t get_value(tbctListTable *list, void *buffer) {
    if (list == nullptr || buffer == nullptr) {
        return refused;
    }
    const list_state state = unpack(*list);
    if (state.position >= state.count) { // 0 for a list that is not open
        return refused;
    }
    qryhost::copy_value(buffer, state.values + std::size_t{state.size} * state.position, state.size);
    return 0;
}

// The long ways of the calls that a query makes for each record, kept out of the short ones: what those would
// save for them at each call is a third of their instructions.
[[gnu::noinline]] std::uint32_t read_value_or_fail(std::uint32_t category, std::uint32_t record,
                                                   std::uint32_t element, void *buffer) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_GET_TABLE);
    return fault != 0 ? fault : read_value(false, category, record, element, buffer);
}

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

std::uint32_t tbctSTCGetTable(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                              void *buffer) {
    return qryhost::counted_without_fault(QRYHOST_GET_TABLE)
               ? read_value(false, category, record, element, buffer)
               : read_value_or_fail(category, record, element, buffer);
}

std::uint32_t tbctSTCSetTable(std::uint32_t, std::uint32_t category, std::uint32_t record,
                              std::uint32_t element, const void *buffer) {
    return write_value(false, category, record, element, buffer);
}

std::uint32_t tbSTCInitTable(std::uint32_t category, std::uint32_t record) {
    return reset_records(category, &record);
}

std::uint32_t tbctResetTable(std::uint32_t category) {
    return reset_records(category, nullptr);
}

std::uint32_t tbctSTCGetStatus(std::uint32_t category, std::uint32_t element, void *buffer) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_GET_STATUS)) {
        return fault;
    }
    return read_value(true, category, 0, element, buffer);
}

std::uint32_t tbctSTCSetStatus(std::uint32_t, std::uint32_t category, std::uint32_t element,
                               const void *buffer) {
    return write_value(true, category, 0, element, buffer);
}

std::uint32_t tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element, std::uint16_t record_num,
                                     tbctListTable *list) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_CREATE_LIST)) {
        return fault;
    }
    element_store *store = qryhost::current_store();
    if (store == nullptr) {
        return no_store;
    }
    const element_place *place = find_place(*store, false, category, element, record_num);
    if (place == nullptr || list == nullptr) {
        return refused;
    }
    const std::size_t bytes = std::size_t{place->size} * record_num;
    auto *values = static_cast<std::uint8_t *>(std::malloc(bytes + 1)); // a list of no records is open too
    if (values == nullptr) {
        return no_memory;
    }
    const std::uint32_t code = waiting_call([=] { store->copy_column(*place, record_num, values); });
    if (code != 0) {
        std::free(values);
        return code;
    }
    *list = tbctListTable{};
    pack({values, place->size, record_num, 0}, *list);
    return 0;
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
        return refused;
    }
    std::free(unpack(*list).values);
    *list = tbctListTable{};
    return 0;
}

} // extern "C"
