// One record as it lies in the element tables.
#pragma once

#include <cstdint>
#include <string>

#include "tools/text/result.h"

namespace qrytext {

struct record_view {
    std::uint32_t code; // 0, or that with which an element could not be read
    result elements;    // one a row, in the order in which they lie
};

// The table must exist; `number` counts from 1 to its capacity, 0 is the default record. Traces.
record_view view_record(const std::string &db_name, const std::string &table, std::uint32_t number);

} // namespace qrytext
