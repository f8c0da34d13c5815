// Putting a snapshot back: what would change on the device, told and then written.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/field/snapshot.h"

namespace field {

// One value that differs.
struct value_change {
    const qryhost::element_place *place;
    std::uint32_t record;
    std::vector<std::uint8_t> bytes;
};

struct restore_plan {
    std::vector<value_change> changes;
    std::vector<std::string> lines; // one for each column that differs; secrets are never shown
    std::size_t records = 0;        // with a change
    std::size_t kept_secrets = 0;   // masked values that stay as they are on the device
};

// Compares a snapshot with the device. Throws `failure`; nothing is written.
restore_plan plan_restore(read_snapshot snapshot);

// Writes the changes, the default records first. Throws `failure` with how many values were written.
void carry_out(const restore_plan &plan);

} // namespace field
