// The roomy device, on which testers try every table: another program's, with capacities of its own.
#pragma once

#include <cstdint>

namespace qryhost {

// Records of each category of which the device keeps none.
constexpr std::uint16_t roomy_records = 100;

// What a capacity of either device is on the device, and on the roomy one. The device has no capacity of
// roomy_records.
constexpr std::uint16_t capacity_on_device(std::uint16_t records) {
    return records == roomy_records ? std::uint16_t{0} : records;
}
constexpr std::uint16_t capacity_on_roomy_device(std::uint16_t records) {
    return records == 0 ? roomy_records : records;
}

} // namespace qryhost
