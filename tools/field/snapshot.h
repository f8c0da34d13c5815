// Snapshots: a device's records as a fixture with a head that says where they come from.
//
//   { "format": 1,
//     "snapshot": { "made": "2026-11-22T02:40:00Z", "library": "1.4.0", "settings": true,
//                   "capacities": { "adbk_db": { "PSN_TBL": 10 } },    the tables that it covers
//                   "masked": [ "CARD_ID", "PASSWD" ] },               absent: nothing is masked
//     "settings": ..., "databases": ... }                              as in every fixture
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/field/device_records.h"

namespace field {

// Masks every secret of a region. Throws `failure` where the system draws no key.
void mask_secrets(std::vector<std::uint8_t> &region);

// The text of a region's snapshot.
std::string snapshot_text(const std::vector<std::uint8_t> &region, const selection &chosen, bool is_masked);

// A snapshot that was read: what it covers, and what it holds there.
struct read_snapshot {
    std::vector<std::uint8_t> region;
    selection covered;
    std::set<std::string> masked; // columns
};

// Throws `failure`, or what the reader of fixtures throws, with a sentence. A fixture without a head covers
// the tables that it names.
read_snapshot parse_snapshot(const std::string &text);

} // namespace field
