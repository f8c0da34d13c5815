// Fixtures: the store's content as a readable JSON file.
//
//   { "format": 1,
//     "settings": { "doublecount_1": 0, "doublecount_2": 0, "doublecount_3": 0 },
//     "databases": {
//       "adbk_db": {
//         "PSN_TBL": {
//           "default": { "INTEG_ID": 9 },
//           "records": [ { "record": 0, "PSN_ID": 1, "PSN_NAME": "Sato" }, { "PSN_ID": 2 } ] } } } }
//
// "record" is the library's record number, 0 upwards; a record without one follows the record before it. What
// is left out has the default record's value, and in the default record and the settings the value 0.
//
// A value is a whole number, a string, or {"hex": "8361"}: a string column's exact bytes,
// for text that is not UTF-8. A 32-bit number may be negative. Behind a string its element is filled with
// zeros.
//
// Members of one composite element may overlap. They are written in the order of their offsets, a string with
// its terminator and nothing behind it, so that it does not clear the members that follow. Where no values of
// the members make up the composite's bytes, it stands there whole under its element id, "@7321F000":
// "hex digits", numeric members in big-endian order on every machine.
//
// A member "snapshot" tells where the records come from (tools/field/snapshot.h). Loading does not look at it.
//
// Saving leaves out what loading fills in. Loading what was saved gives the same bytes again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qryhost {

// The region that a file describes. Throws `refusal`, with the place in the file that is wrong.
std::vector<std::uint8_t> load_fixture(const std::string &path);

// The same of a file's text.
std::vector<std::uint8_t> parse_fixture(const std::string &text);

// The text of a region's file.
std::string fixture_text(const std::vector<std::uint8_t> &region);

// Writes a region to a file by the rules of tools/files/whole_file.h.
void save_fixture(const std::string &path, const std::vector<std::uint8_t> &region);

} // namespace qryhost
