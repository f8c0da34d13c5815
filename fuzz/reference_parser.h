// The grammar of conditions and sort phrases, read a second time: written from docs/dialect.md alone, so that
// a rule that the parser misses is not missed here too.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace reference {

struct condition {
    std::string column;
    std::string value;
    int operation; // as QRY_LIB_OPERATION_TYPE
    int join;      // as QRY_LIB_JOIN_TYPE
    bool quoted;

    bool operator==(const condition &other) const {
        return column == other.column && value == other.value && operation == other.operation &&
               join == other.join && quoted == other.quoted;
    }
};

struct sorting {
    std::string column;
    int order; // as QRY_LIB_ODER_TYPE
};

// Nothing for a phrase that is refused.
std::optional<std::vector<condition>> read_conditions(const std::string &phrase);
std::optional<sorting> read_sorting(const std::string &phrase);

} // namespace reference
