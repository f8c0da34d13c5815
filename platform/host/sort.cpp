// The sort utility: a stable sort of item pointers by the key inside each item.
#include "platform/sort.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/host/faults.h"

namespace {

constexpr std::uint32_t bad_parameter = 1;
constexpr std::uint32_t no_memory = 2;

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

// The first characters of a text as numbers that are ordered as they are: zeros behind the end of a short
// one.
using key_beginning = std::array<std::uint64_t, 2>;

template <typename Change>
key_beginning beginning(const char *text, Change change) {
    key_beginning numbers{};
    for (std::uint64_t &number : numbers) {
        for (std::size_t i = 0; i < sizeof number; ++i) {
            number = number << 8 | change(static_cast<unsigned char>(*text));
            text += *text != '\0' ? 1 : 0;
        }
    }
    return numbers;
}

// Reads through memcpy, since a key stands at any address.
template <typename Number>
key_beginning number_at(const char *key) {
    Number number;
    std::memcpy(&number, key, sizeof number);
    return {number, 0};
}

key_beginning string_beginning(const char *key) {
    return beginning(key, [](unsigned char character) { return character; });
}

key_beginning name_beginning(const char *key) {
    return beginning(key, without_case);
}

// How keys are compared: by their beginnings, and where those are the same as a whole. A number is no more
// than its beginning.
struct comparison {
    key_beginning (*beginning)(const char *key);
    int (*compare)(const char *a, const char *b);
};

// By half the compare kind: an even kind ascends, the odd one after it descends.
constexpr comparison comparisons[] = {{number_at<std::uint8_t>, nullptr},
                                      {number_at<std::uint16_t>, nullptr},
                                      {number_at<std::uint32_t>, nullptr},
                                      {string_beginning, std::strcmp},
                                      {name_beginning, compare_names}};
constexpr std::uint32_t kind_num = 2 * (sizeof comparisons / sizeof *comparisons);

// An item while it is sorted: most comparisons are decided without a look at it, which in a large table is
// not in any cache.
struct sorted_item {
    key_beginning beginning;
    void *item;
};

struct freed {
    void operator()(void *memory) const { std::free(memory); }
};

// False without memory.
bool sort_items(void **items, const CMN_LIB_SORT_PARAM_T &param) {
    const std::unique_ptr<sorted_item[], freed> sorted(
        static_cast<sorted_item *>(std::malloc(param.count * sizeof(sorted_item))));
    if (sorted == nullptr) {
        return false;
    }
    const comparison by = comparisons[param.compare_kind / 2];
    const auto key = [offset = param.key_offset](const void *item) {
        return static_cast<const char *>(item) + offset;
    };
    std::transform(items, items + param.count, sorted.get(), [&](void *item) {
        return sorted_item{by.beginning(key(item)), item};
    });
    const auto less = [&](const sorted_item &a, const sorted_item &b) {
        if (a.beginning != b.beginning || by.compare == nullptr) {
            return a.beginning < b.beginning;
        }
        return by.compare(key(a.item), key(b.item)) < 0;
    };
    // Descending swaps the operands, and not the result, so that equal keys keep their order there too.
    const bool descends = param.compare_kind % 2 != 0;
    std::stable_sort(
        sorted.get(), sorted.get() + param.count,
        [&](const sorted_item &a, const sorted_item &b) { return descends ? less(b, a) : less(a, b); });
    std::transform(sorted.get(), sorted.get() + param.count, items,
                   [](const sorted_item &one) { return one.item; });
    return true;
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
    return sort_items(items, *param) ? 0 : no_memory;
}
