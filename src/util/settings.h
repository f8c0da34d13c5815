// The device's settings: a category that is no table. Its elements have one value each, and no records.
#pragma once

#include <cstdint>

namespace norvane {

constexpr std::uint32_t settings_category = 0x04050300;

// The double-count mode, by kind from 1.
constexpr std::uint32_t settings_elements[] = {0x85004860, 0x85004888, 0x85004838};

} // namespace norvane
