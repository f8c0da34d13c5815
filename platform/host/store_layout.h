// Where every value of the element tables lies in the store's flat region. Computed once from the schema, so
// that all processes of one build agree on it; the region itself holds no pointers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "util/settings.h"

namespace qryhost {

using norvane::settings_category;
using norvane::settings_elements;

// One element of a category. The value of record r lies `offset` + r * `size` bytes into the region.
struct element_place {
    std::uint32_t category;
    std::uint32_t element;
    std::uint32_t offset;
    std::uint16_t size;
    std::uint16_t record_num; // records 0 to record_num exist
    std::uint16_t lock;       // the category's position: which lock guards it
    bool is_setting;

    std::uint32_t value_offset(std::uint32_t record) const { return offset + record * size; }
};

// One category: its elements lie together, in the order of their ids.
struct category_place {
    std::uint32_t category;
    std::uint16_t record_num;
    bool is_setting;
    std::uint32_t first_element;
    std::uint32_t element_num;
    std::uint32_t offset; // its values take the bytes from here
    std::uint32_t bytes;
};

// Immutable. Categories and elements ascend by id.
class store_layout {
  public:
    static const store_layout &get();

    // That of a device with other capacities: `capacity` turns this one's into those.
    explicit store_layout(std::uint16_t (*capacity)(std::uint16_t records));

    // Null when there is no such element. Here, not in the source, because each value that is read starts
    // with it.
    const element_place *find(std::uint32_t category, std::uint32_t element) const {
        for (std::size_t slot = first_slot(category, element); slots_[slot] != 0;
             slot = (slot + 1) & (slot_num - 1)) {
            const element_place &place = elements_[slots_[slot] - 1u];
            if (place.element == element && place.category == category) {
                return &place;
            }
        }
        return nullptr;
    }

    // Null when there is no such category.
    const category_place *find_category(std::uint32_t category) const;

    // Whether a category, given by its position, has a value of this size at this place of the region.
    bool has_value(std::size_t category, std::uint32_t offset, std::uint32_t size) const;

    const std::vector<category_place> &categories() const { return categories_; }
    const std::vector<element_place> &elements() const { return elements_; }

    // The region's size in bytes.
    std::uint32_t bytes() const { return bytes_; }

    // The largest element's size in bytes.
    std::uint16_t largest_size() const;

  private:
    // A power of two with room to spare: most lookups end at the first slot.
    static constexpr std::size_t slot_num = 2048;

    static std::size_t first_slot(std::uint32_t category, std::uint32_t element) {
        const std::uint32_t mixed = (element ^ (category * 0x9E3779B1u)) * 0x85EBCA6Bu;
        return (mixed >> 16) & (slot_num - 1);
    }

    void collect_tables(std::uint16_t (*capacity)(std::uint16_t records));
    void collect_settings();
    void merge_shared_elements();
    void place_elements();
    void index_elements();

    std::vector<element_place> elements_;
    std::vector<category_place> categories_;
    std::vector<std::uint16_t> slots_; // an open-addressing table: position in elements_ plus 1, 0 for none
    std::uint32_t bytes_ = 0;
};

} // namespace qryhost
