// Which columns hold secrets: passwords, and the numbers that a card or a panel takes in their place. The
// library treats them like any other; what writes records for somebody else to read masks them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace norvane {

// In every table that has a column of the name. Sorted.
constexpr std::string_view secret_columns[] = {"CARD_ID", "DEPT_CODE", "FAX_FPSWD", "FTP_PSWD",
                                               "PASSWD",  "SMB_PSWD",  "STAFF_NO"};

constexpr bool secret_columns_are_sorted() {
    for (std::size_t i = 1; i < sizeof secret_columns / sizeof *secret_columns; ++i) {
        if (secret_columns[i - 1] >= secret_columns[i]) {
            return false;
        }
    }
    return true;
}
static_assert(secret_columns_are_sorted());

inline bool is_secret_column(std::string_view name) {
    return std::binary_search(std::begin(secret_columns), std::end(secret_columns), name);
}

} // namespace norvane
