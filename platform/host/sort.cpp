// The sort utility: a stable sort of item pointers by the key inside each item.
#include "platform/sort.h"

#include <algorithm>
#include <cstring>

#include "platform/host/faults.h"

namespace {

constexpr std::uint32_t bad_parameter = 1;

// Reads through memcpy, since a key stands at any address.
template <typename Number>
int compare_numbers(const char *a, const char *b) {
    Number left;
    Number right;
    std::memcpy(&left, a, sizeof left);
    std::memcpy(&right, b, sizeof right);
    return left < right ? -1 : left > right ? 1 : 0;
}

unsigned char without_case(unsigned char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<unsigned char>(character - 'A' + 'a')
                                                : character;
}

// ASCII letters compare without regard to case; names that differ in nothing else compare by their bytes.
int compare_names(const char *a, const char *b) {
    for (std::size_t i = 0;; ++i) {
        if (a[i] == b[i] && a[i] != '\0') {
            continue; // most of what names share
        }
        const unsigned char left = without_case(static_cast<unsigned char>(a[i]));
        const unsigned char right = without_case(static_cast<unsigned char>(b[i]));
        if (left != right) {
            return left < right ? -1 : 1;
        }
        if (left == 0) {
            return std::strcmp(a, b);
        }
    }
}

using comparison = int (*)(const char *, const char *);

// By half the compare kind: an even kind ascends, the odd one after it descends.
constexpr comparison comparisons[] = {compare_numbers<std::uint8_t>, compare_numbers<std::uint16_t>,
                                      compare_numbers<std::uint32_t>, std::strcmp, compare_names};
constexpr std::uint32_t kind_num = 2 * (sizeof comparisons / sizeof *comparisons);

void sort_items(void **items, const CMN_LIB_SORT_PARAM_T &param) {
    const comparison compare = comparisons[param.compare_kind / 2];
    const auto key = [offset = param.key_offset](const void *item) {
        return static_cast<const char *>(item) + offset;
    };
    // Descending swaps the operands, and not the result, so that equal keys keep their order there too.
    if (param.compare_kind % 2 == 0) {
        std::stable_sort(items, items + param.count,
                         [&](const void *a, const void *b) { return compare(key(a), key(b)) < 0; });
    } else {
        std::stable_sort(items, items + param.count,
                         [&](const void *a, const void *b) { return compare(key(b), key(a)) < 0; });
    }
}

} // namespace

extern "C" std::uint32_t cmn_lib_sort(void **items, CMN_LIB_SORT_PARAM_T *param) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_SORT)) {
        return fault;
    }
    if (param == nullptr) {
        return bad_parameter;
    }
    if (param->count == 0) {
        return 0;
    }
    if (items == nullptr || param->compare_kind >= kind_num ||
        std::find(items, items + param->count, nullptr) != items + param->count) {
        return bad_parameter;
    }
    sort_items(items, *param);
    return 0;
}
