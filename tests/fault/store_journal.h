// Every write that the library makes to the element tables, in order: the calls stand between the library and
// the platform in this program, so nothing reaches a table unseen.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fault {

// One write that the platform carried out. A record put back to its default has no element and no value.
struct store_write {
    std::uint32_t category;
    std::uint32_t record;
    std::uint32_t element;
    std::string value;
};

inline bool operator==(const store_write &a, const store_write &b) {
    return a.category == b.category && a.record == b.record && a.element == b.element && a.value == b.value;
}

// Every value of a category: default record, records, or the settings.
using category_image = std::vector<std::uint8_t>;
category_image image_of(std::uint32_t category);
void restore_image(std::uint32_t category, const category_image &image);

// Forgets the writes seen so far.
void start_journal();
std::vector<store_write> journal();

// The same, and keeps the image of the category after each write from then on.
void start_recording();
std::vector<category_image> stop_recording();

// List tables that were created and are not deleted.
std::int32_t open_lists();

// From the list values that the library reads from now on, `skip` are delivered; the next `times` leave the
// buffer as it is, and are reported as read all the same.
void leave_list_values(std::uint32_t skip, std::uint32_t times);

} // namespace fault
