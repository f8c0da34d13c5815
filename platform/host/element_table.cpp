// The element-table calls over the store: record values and settings. Those of list tables have their own
// file.
#include "platform/element_table.h"

#include "platform/host/element_codes.h"
#include "platform/host/element_store.h"
#include "platform/host/faults.h"

namespace {

using qryhost::category_place;
using qryhost::element_place;
using qryhost::element_store;

using qryhost::waiting_call;

std::uint32_t refuse_write(const element_store &store) {
    qryhost::set_error(store.read_only_reason().c_str());
    return qryhost::element_read_only;
}

// Null when the arguments name nothing that exists.
const element_place *find_place(const element_store &store, bool is_setting, std::uint32_t category,
                                std::uint32_t element, std::uint32_t record) {
    const element_place *place = store.layout().find(category, element);
    return place != nullptr && place->is_setting == is_setting && record <= place->record_num ? place
                                                                                              : nullptr;
}

// The call's use of the store is over.
std::uint32_t ended(std::uint32_t code) {
    qryhost::end_use(*qryhost::state_of_this_thread);
    return code;
}

// The ways are apart so that the shortest, of a number that nobody is writing, has no call in it and saves no
// registers: numbers are read for each row of a result and each key of a search.
[[gnu::noinline]] std::uint32_t read_beside_writers(element_store &store, const element_place &place,
                                                    std::uint32_t record, void *buffer) {
    return ended(waiting_call([&] { store.read(place, record, buffer); }));
}

[[gnu::noinline]] std::uint32_t read_any(element_store &store, const element_place &place,
                                         std::uint32_t record, void *buffer) {
    return store.read_while_quiet(place, record, buffer) ? ended(0)
                                                         : read_beside_writers(store, place, record, buffer);
}

[[gnu::always_inline]] inline std::uint32_t read_from(element_store &store, bool is_setting,
                                                      std::uint32_t category, std::uint32_t record,
                                                      std::uint32_t element, void *buffer) {
    const element_place *place = find_place(store, is_setting, category, element, record);
    if (place == nullptr || buffer == nullptr) {
        return ended(qryhost::element_refused);
    }
    return store.read_number_while_quiet(*place, record, buffer) ? ended(0)
                                                                 : read_any(store, *place, record, buffer);
}

[[gnu::noinline]] std::uint32_t read_after_opening(bool is_setting, std::uint32_t category,
                                                   std::uint32_t record, std::uint32_t element,
                                                   void *buffer) {
    element_store *store = qryhost::current_store();
    return store != nullptr ? read_from(*store, is_setting, category, record, element, buffer)
                            : ended(qryhost::element_no_store);
}

std::uint32_t read_value(bool is_setting, std::uint32_t category, std::uint32_t record, std::uint32_t element,
                         void *buffer) {
    element_store *store = qryhost::store_if_open();
    return store != nullptr ? read_from(*store, is_setting, category, record, element, buffer)
                            : read_after_opening(is_setting, category, record, element, buffer);
}

std::uint32_t write_value(bool is_setting, std::uint32_t category, std::uint32_t record,
                          std::uint32_t element, const void *buffer) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_SET_TABLE)) {
        return fault;
    }
    element_store *store = qryhost::current_store();
    if (store == nullptr) {
        return qryhost::element_no_store;
    }
    const element_place *place = find_place(*store, is_setting, category, element, record);
    if (place == nullptr || buffer == nullptr) {
        return qryhost::element_refused;
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
        return qryhost::element_no_store;
    }
    const category_place *table = store->layout().find_category(category);
    if (table == nullptr || table->is_setting) {
        return qryhost::element_refused;
    }
    const std::uint32_t first = record != nullptr ? *record : 1;
    const std::uint32_t last = record != nullptr ? *record : table->record_num;
    if (first == 0 || last > table->record_num) {
        return qryhost::element_refused;
    }
    if (store->is_read_only()) {
        return refuse_write(*store);
    }
    return waiting_call([=] { store->restore_default(*table, first, last); });
}

// The long way of the call that a query makes for each value, kept out of the short one: what that would save
// for it at each call is a third of its instructions.
[[gnu::noinline]] std::uint32_t read_value_or_fail(std::uint32_t category, std::uint32_t record,
                                                   std::uint32_t element, void *buffer) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_GET_TABLE);
    return fault != 0 ? ended(fault) : read_value(false, category, record, element, buffer);
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
    return ended(write_value(false, category, record, element, buffer));
}

std::uint32_t tbSTCInitTable(std::uint32_t category, std::uint32_t record) {
    return ended(reset_records(category, &record));
}

std::uint32_t tbctResetTable(std::uint32_t category) {
    return ended(reset_records(category, nullptr));
}

std::uint32_t tbctSTCGetStatus(std::uint32_t category, std::uint32_t element, void *buffer) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_GET_STATUS);
    return fault != 0 ? ended(fault) : read_value(true, category, 0, element, buffer);
}

std::uint32_t tbctSTCSetStatus(std::uint32_t, std::uint32_t category, std::uint32_t element,
                               const void *buffer) {
    return ended(write_value(true, category, 0, element, buffer));
}

} // extern "C"
