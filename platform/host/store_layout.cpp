// Computes the layout of the store from the schema's columns and the capacities.
#include "platform/host/store_layout.h"

#include <algorithm>
#include <tuple>

#include "exec/schema/schema.h"

namespace qryhost {

namespace {

constexpr std::uint16_t setting_size = 4;

bool in_order(const element_place &a, const element_place &b) {
    return std::tie(a.category, a.element) < std::tie(b.category, b.element);
}

bool same_element(const element_place &a, const element_place &b) {
    return a.category == b.category && a.element == b.element;
}

} // namespace

const store_layout &store_layout::get() {
    static const store_layout layout([](std::uint16_t records) { return records; });
    return layout;
}

store_layout::store_layout(std::uint16_t (*capacity)(std::uint16_t records)) {
    collect_tables(capacity);
    collect_settings();
    std::sort(elements_.begin(), elements_.end(), in_order);
    merge_shared_elements();
    place_elements();
    index_elements();
}

void store_layout::collect_tables(std::uint16_t (*capacity)(std::uint16_t records)) {
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                const QRY_LIB_ELEMENT_INFO &info = column.info;
                const auto end = static_cast<std::uint16_t>(info.member_offset + info.size);
                elements_.push_back({info.category_id, info.element_id, 0, end,
                                     capacity(norvane::capacity_of(info.category_id)), 0, false});
            }
        }
    }
}

void store_layout::collect_settings() {
    for (const std::uint32_t element : settings_elements) {
        elements_.push_back({settings_category, element, 0, setting_size, 0, 0, true});
    }
}

// The members of a composite element share its id: the composite reaches to its farthest member's end.
void store_layout::merge_shared_elements() {
    std::vector<element_place> merged;
    for (const element_place &place : elements_) {
        if (!merged.empty() && same_element(merged.back(), place)) {
            merged.back().size = std::max(merged.back().size, place.size);
        } else {
            merged.push_back(place);
        }
    }
    elements_ = std::move(merged);
}

void store_layout::place_elements() {
    for (std::uint32_t i = 0; i < elements_.size(); ++i) {
        element_place &place = elements_[i];
        if (categories_.empty() || categories_.back().category != place.category) {
            categories_.push_back({place.category, place.record_num, place.is_setting, i, 0, bytes_, 0});
        }
        ++categories_.back().element_num;
        place.lock = static_cast<std::uint16_t>(categories_.size() - 1);
        place.offset = bytes_;
        bytes_ += place.size * (place.record_num + 1u);
        categories_.back().bytes = bytes_ - categories_.back().offset;
    }
}

void store_layout::index_elements() {
    slots_.assign(slot_num, 0);
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        std::size_t slot = first_slot(elements_[i].category, elements_[i].element);
        while (slots_[slot] != 0) {
            slot = (slot + 1) & (slot_num - 1);
        }
        slots_[slot] = static_cast<std::uint16_t>(i + 1);
    }
}

const category_place *store_layout::find_category(std::uint32_t category) const {
    const auto found =
        std::lower_bound(categories_.begin(), categories_.end(), category,
                         [](const category_place &place, std::uint32_t id) { return place.category < id; });
    return found != categories_.end() && found->category == category ? &*found : nullptr;
}

bool store_layout::has_value(std::size_t category, std::uint32_t offset, std::uint32_t size) const {
    const element_place *first = &elements_[categories_[category].first_element];
    return std::any_of(first, first + categories_[category].element_num, [&](const element_place &place) {
        return size == place.size && offset >= place.offset &&
               offset <= place.value_offset(place.record_num) && (offset - place.offset) % size == 0;
    });
}

std::uint16_t store_layout::largest_size() const {
    const auto smaller = [](const element_place &a, const element_place &b) { return a.size < b.size; };
    return std::max_element(elements_.begin(), elements_.end(), smaller)->size;
}

} // namespace qryhost
