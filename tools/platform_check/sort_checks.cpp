// The sort utility: every compare kind, over items that lie back to back as the library's do.
#include <algorithm>
#include <cstring>

#include "platform/sort.h"
#include "tools/platform_check/checks.h"
#include "tools/platform_check/elements.h"

namespace platform_check {

namespace {

constexpr std::uint32_t key_offset = 2;

// Keys in ascending order, and where each stands before the sort. Numbers include those that a signed
// comparison puts first; texts differ in ways that every collation orders alike.
struct key_kind {
    std::uint32_t compare_kind; // ascending; the next one descends
    const char *what;
    std::size_t size;
    std::vector<bytes> ascending;
};

template <typename Number>
std::vector<bytes> numbers(std::initializer_list<Number> list) {
    std::vector<bytes> keys;
    for (const Number number : list) {
        bytes key(sizeof number);
        std::memcpy(key.data(), &number, sizeof number);
        keys.push_back(std::move(key));
    }
    return keys;
}

// Odd in size with the item's first two bytes, so that keys stand at every kind of address.
std::vector<bytes> texts() {
    std::vector<bytes> keys;
    for (const char *text : {"", "a", "ab", "abc", "b", "ba", "zz"}) {
        bytes key(5);
        std::memcpy(key.data(), text, std::strlen(text));
        keys.push_back(std::move(key));
    }
    return keys;
}

std::vector<key_kind> key_kinds() {
    return {{0, "one-byte numbers", 1, numbers<std::uint8_t>({0, 1, 127, 128, 200, 255})},
            {2, "two-byte numbers", 2, numbers<std::uint16_t>({0, 1, 255, 256, 32767, 32768, 65535})},
            {4, "four-byte numbers", 4,
             numbers<std::uint32_t>({0, 1, 255, 256, 65536, 2147483647u, 2147483648u, 4294967295u})},
            {6, "strings", 5, texts()},
            {8, "names", 5, texts()}};
}

// Items back to back, one byte longer than they need to be where that makes their size odd.
class items {
  public:
    explicit items(const key_kind &kind) : kind_(kind), stride_((key_offset + kind.size) | 1u) {
        const std::size_t count = kind.ascending.size();
        storage_.resize(stride_ * count);
        for (std::size_t i = 0; i < count; ++i) {
            // 5 has no factor in common with the numbers of keys, so each key is taken once.
            const bytes &key = kind.ascending[(i * 5 + 3) % count];
            std::memcpy(&storage_[i * stride_ + key_offset], key.data(), key.size());
            pointers_.push_back(&storage_[i * stride_]);
        }
    }

    void **pointers() { return pointers_.data(); }
    std::uint32_t count() const { return static_cast<std::uint32_t>(pointers_.size()); }

    bool is_in_order(bool descending) const {
        for (std::size_t i = 0; i < pointers_.size(); ++i) {
            const bytes &key = kind_.ascending[descending ? pointers_.size() - 1 - i : i];
            const auto *item = static_cast<const std::uint8_t *>(pointers_[i]);
            if (!std::equal(key.begin(), key.end(), item + key_offset)) {
                return false;
            }
        }
        return true;
    }

  private:
    const key_kind &kind_;
    std::size_t stride_;
    bytes storage_;
    std::vector<void *> pointers_;
};

void check_kind(report &out, const key_kind &kind, bool descending) {
    items sorted(kind);
    CMN_LIB_SORT_PARAM_T param{key_offset, sorted.count(), kind.compare_kind + (descending ? 1u : 0u)};
    const std::string kind_text =
        std::string(kind.what) + " (compare kind " + std::to_string(param.compare_kind) + ")";
    if (out.succeeds(cmn_lib_sort(sorted.pointers(), &param), "cmn_lib_sort", "sorting " + kind_text)) {
        out.expect(sorted.is_in_order(descending), "cmn_lib_sort",
                   "does not sort " + kind_text + (descending ? " downwards" : " upwards") +
                       (kind.compare_kind < 6 ? "; they are unsigned." : "."));
    }
}

} // namespace

void check_sort(report &out) {
    out.begin("sort");
    for (const key_kind &kind : key_kinds()) {
        check_kind(out, kind, false);
        check_kind(out, kind, true);
    }
    void *nothing[1] = {};
    CMN_LIB_SORT_PARAM_T param{key_offset, 0, 0};
    out.succeeds(cmn_lib_sort(nothing, &param), "cmn_lib_sort", "sorting no items at all");
}

} // namespace platform_check
