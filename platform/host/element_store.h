// The element store: the values of every record, default record and setting in one flat region, with one lock
// per category. A value is read and written whole under its category's lock; no lock outlives a call.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/host/store_layout.h"

namespace qryhost {

class element_store {
  public:
    // A store of zeros in private memory.
    element_store();

    const store_layout &layout() const { return layout_; }

    // The record must exist; `buffer` is as large as the element, at any address.
    void read(const element_place &place, std::uint32_t record, void *buffer);
    void write(const element_place &place, std::uint32_t record, const void *buffer);

    // Copies the element's values of records 1 to `record_num`, back to back, as they are at one moment.
    void copy_column(const element_place &place, std::uint32_t record_num, void *values);

    // Puts records `first` to `last` back to the default record.
    void restore_default(const category_place &table, std::uint32_t first, std::uint32_t last);

    // The whole region as it is at one moment; and its replacement by another of the same size.
    std::vector<std::uint8_t> snapshot();
    void replace(const std::vector<std::uint8_t> &region);

  private:
    std::vector<std::unique_lock<std::mutex>> hold_all();
    std::uint8_t *value(const element_place &place, std::uint32_t record);

    const store_layout &layout_;
    std::unique_ptr<std::uint8_t[]> region_;
    std::unique_ptr<std::mutex[]> locks_;
};

// The store that the process uses, opened on first use; null, with a sentence for qryhost_error(), when it
// cannot be opened.
element_store *current_store() noexcept;

// The same for a control call: throws `refusal` when there is no store.
element_store &required_store();

// Opens a store in place of the current one: throws `refusal` when it cannot.
void open_store(const char *image_path);

// Drops the current store. Must not run beside calls that use it.
void close_store();

} // namespace qryhost
