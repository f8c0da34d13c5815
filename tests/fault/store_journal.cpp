// The calls between library and platform. Nothing here takes memory while a statement runs: its requests are
// counted and refused one by one.
#include "fault/store_journal.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "unit/host/host_test.h"

extern "C" {
std::uint32_t __real_tbctSTCSetTable(std::uint32_t requester, std::uint32_t category, std::uint32_t record,
                                     std::uint32_t element, const void *buffer);
std::uint32_t __real_tbSTCInitTable(std::uint32_t category, std::uint32_t record);
std::uint32_t __real_tbctResetTable(std::uint32_t category);
std::uint32_t __real_tbctSTCSetStatus(std::uint32_t requester, std::uint32_t category, std::uint32_t element,
                                      const void *buffer);
std::uint32_t __real_tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element,
                                            std::uint16_t record_num, tbctListTable *list);
std::uint32_t __real_tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option);
std::uint32_t __real_tbctSTCListTableGetVal(tbctListTable *list, void *buffer);
}

namespace fault {

namespace {

constexpr std::uint32_t none = 0xFFFFFFFF;
constexpr std::uint16_t setting_size = 4;
constexpr std::size_t largest_value = 256;

struct seen_write {
    std::uint32_t category;
    std::uint32_t record;
    std::uint32_t element;
    std::size_t size;
    std::array<char, largest_value> value;
};

std::array<seen_write, 512> writes;
std::size_t write_num = 0;
bool recording = false;
std::vector<category_image> images;

std::int32_t open_list_num = 0;
std::uint32_t list_values_skipped = 0;
std::uint32_t list_values_left = 0;

std::uint16_t size_of(std::uint32_t category, std::uint32_t element) {
    if (category == test::settings) {
        return setting_size;
    }
    const auto found = test::element_sizes().find({category, element});
    return found == test::element_sizes().end() ? std::uint16_t{0} : found->second;
}

// Calls `visit(record, element, size)` for every value of the category.
template <typename Visit>
void for_each_value(std::uint32_t category, Visit visit) {
    if (category == test::settings) {
        for (const std::uint32_t element : test::setting_ids) {
            visit(0, element, setting_size);
        }
        return;
    }
    for (const auto &[key, size] : test::element_sizes()) {
        for (std::uint32_t record = 0; key.first == category && record <= test::capacity(category);
             ++record) {
            visit(record, key.second, size);
        }
    }
}

void read_value(std::uint32_t category, std::uint32_t record, std::uint32_t element, void *out) {
    const std::uint32_t code = category == test::settings ? tbctSTCGetStatus(category, element, out)
                                                          : tbctSTCGetTable(category, record, element, out);
    EXPECT_EQ(code, 0u);
}

// Notes a write that was carried out and hands its code back.
std::uint32_t noted(std::uint32_t code, std::uint32_t category, std::uint32_t record, std::uint32_t element,
                    const void *value) {
    if (code != 0 || write_num == writes.size()) {
        return code;
    }
    seen_write &write = writes[write_num++];
    write.category = category;
    write.record = record;
    write.element = element;
    write.size = value == nullptr ? 0 : std::min<std::size_t>(size_of(category, element), largest_value);
    if (write.size != 0) {
        std::memcpy(write.value.data(), value, write.size);
    }
    if (recording) {
        images.push_back(image_of(category));
    }
    return code;
}

} // namespace

category_image image_of(std::uint32_t category) {
    category_image image;
    for_each_value(category, [&](std::uint32_t record, std::uint32_t element, std::uint16_t size) {
        test::value_buffer value = test::empty_buffer();
        read_value(category, record, element, value.data());
        image.insert(image.end(), value.begin(), value.begin() + size);
    });
    return image;
}

void restore_image(std::uint32_t category, const category_image &image) {
    std::size_t at = 0;
    for_each_value(category, [&](std::uint32_t record, std::uint32_t element, std::uint16_t size) {
        const std::uint32_t code =
            category == test::settings
                ? __real_tbctSTCSetStatus(test::requester, category, element, &image[at])
                : __real_tbctSTCSetTable(test::requester, category, record, element, &image[at]);
        EXPECT_EQ(code, 0u);
        at += size;
    });
}

void start_journal() {
    write_num = 0;
    list_values_skipped = 0;
    list_values_left = 0;
}

std::vector<store_write> journal() {
    EXPECT_LT(write_num, writes.size());
    std::vector<store_write> result;
    for (std::size_t i = 0; i < write_num; ++i) {
        const seen_write &write = writes[i];
        result.push_back(
            {write.category, write.record, write.element, std::string(write.value.data(), write.size)});
    }
    return result;
}

void start_recording() {
    start_journal();
    images.clear();
    recording = true;
}

std::vector<category_image> stop_recording() {
    recording = false;
    return images;
}

std::int32_t open_lists() {
    return open_list_num;
}

void leave_list_values(std::uint32_t skip, std::uint32_t times) {
    list_values_skipped = skip;
    list_values_left = times;
}

} // namespace fault

extern "C" {

std::uint32_t __wrap_tbctSTCSetTable(std::uint32_t requester, std::uint32_t category, std::uint32_t record,
                                     std::uint32_t element, const void *buffer) {
    const std::uint32_t code = __real_tbctSTCSetTable(requester, category, record, element, buffer);
    return fault::noted(code, category, record, element, buffer);
}

std::uint32_t __wrap_tbSTCInitTable(std::uint32_t category, std::uint32_t record) {
    return fault::noted(__real_tbSTCInitTable(category, record), category, record, fault::none, nullptr);
}

std::uint32_t __wrap_tbctResetTable(std::uint32_t category) {
    return fault::noted(__real_tbctResetTable(category), category, fault::none, fault::none, nullptr);
}

std::uint32_t __wrap_tbctSTCSetStatus(std::uint32_t requester, std::uint32_t category, std::uint32_t element,
                                      const void *buffer) {
    const std::uint32_t code = __real_tbctSTCSetStatus(requester, category, element, buffer);
    return fault::noted(code, category, fault::none, element, buffer);
}

std::uint32_t __wrap_tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element,
                                            std::uint16_t record_num, tbctListTable *list) {
    const std::uint32_t code = __real_tbctSTCCreateListTable(category, element, record_num, list);
    fault::open_list_num += code == 0 ? 1 : 0;
    return code;
}

std::uint32_t __wrap_tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option) {
    // With an option other than 0 the device might keep it.
    constexpr tbctListTable not_open{};
    fault::open_list_num -= option != 0 || std::memcmp(list, &not_open, sizeof not_open) == 0 ? 0 : 1;
    return __real_tbctSTCDeleteListTable(list, option);
}

std::uint32_t __wrap_tbctSTCListTableGetVal(tbctListTable *list, void *buffer) {
    if (fault::list_values_skipped != 0) {
        --fault::list_values_skipped;
    } else if (fault::list_values_left != 0) {
        --fault::list_values_left;
        return 0;
    }
    return __real_tbctSTCListTableGetVal(list, buffer);
}

} // extern "C"
