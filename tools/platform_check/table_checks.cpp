// The element tables: every element of every table that has records, the records' defaults, and the settings.
#include <cstring>
#include <set>

#include "platform/element_table.h"
#include "tools/platform_check/checks.h"
#include "tools/platform_check/elements.h"
#include "util/settings.h"

namespace platform_check {

namespace {

// The default record, the first and the last: where numbering goes wrong, it does so there.
std::set<std::uint32_t> chosen_records(const table &of) {
    return {0, 1, of.record_num};
}

// Writes everything before it reads anything: elements or records that share their memory then show.
void check_round_trip(report &out, const table &of) {
    for (const std::uint32_t record : chosen_records(of)) {
        for (const element &at : of.elements) {
            write(out, of, at, record, sample(of, at, record, 1));
        }
    }
    for (const std::uint32_t record : chosen_records(of)) {
        for (const element &at : of.elements) {
            const bytes value = read(out, of, at, record);
            out.expect(value.empty() || value == sample(of, at, record, 1), "tbctSTCSetTable",
                       "does not keep what was written to " + of.place(record, at) +
                           ": another value is read back.");
        }
    }
}

// True when the record holds the values of the default record.
bool is_default(report &out, const table &of, std::uint32_t record) {
    for (const element &at : of.elements) {
        if (read(out, of, at, record) != read(out, of, at, 0)) {
            return false;
        }
    }
    return true;
}

void check_init(report &out, const table &of) {
    const std::uint32_t code = tbSTCInitTable(of.category, 1);
    if (!out.succeeds(code, "tbSTCInitTable", "putting record 1 of " + of.name + " back to its default")) {
        return;
    }
    out.expect(is_default(out, of, 1), "tbSTCInitTable",
               "does not make record 1 of " + of.name + " equal to the default record.");
    const element &first = of.elements.front();
    out.expect(of.record_num == 1 ||
                   read(out, of, first, of.record_num) == sample(of, first, of.record_num, 1),
               "tbSTCInitTable", "changes other records of " + of.name + " than the one that it was given.");
}

void check_reset(report &out, const table &of) {
    const std::uint32_t code = tbctResetTable(of.category);
    if (!out.succeeds(code, "tbctResetTable",
                      "putting all records of " + of.name + " back to their default")) {
        return;
    }
    for (const std::uint32_t record : chosen_records(of)) {
        out.expect(is_default(out, of, record), "tbctResetTable",
                   "does not make record " + std::to_string(record) + " of " + of.name +
                       " equal to the default record.");
    }
    for (const element &at : of.elements) {
        out.expect(read(out, of, at, 0) == sample(of, at, 0, 1), "tbctResetTable",
                   "changes the default record of " + of.name + ", element " + hex(at.id) + ".");
    }
}

constexpr std::uint16_t setting_size = 4;

bool read_setting(report &out, std::uint32_t id, std::uint32_t &value) {
    guarded_buffer buffer(setting_size);
    const std::uint32_t code = tbctSTCGetStatus(norvane::settings_category, id, buffer.data());
    if (!out.succeeds(code, "tbctSTCGetStatus", "reading the setting " + hex(id))) {
        return false;
    }
    std::memcpy(&value, buffer.data(), sizeof value);
    return out.expect(!buffer.is_overrun(), "tbctSTCGetStatus",
                      "writes more than 4 bytes for the setting " + hex(id) + ".");
}

bool write_setting(report &out, std::uint32_t id, std::uint32_t value) {
    return out.succeeds(tbctSTCSetStatus(requester, norvane::settings_category, id, &value),
                        "tbctSTCSetStatus", "writing the setting " + hex(id));
}

void check_setting(report &out, std::uint32_t id) {
    std::uint32_t before = 0;
    if (!read_setting(out, id, before)) {
        return;
    }
    for (const std::uint32_t mode : {3u, 0u, 2u}) {
        std::uint32_t after = 99;
        if (write_setting(out, id, mode) && read_setting(out, id, after)) {
            out.expect(after == mode, "tbctSTCSetStatus",
                       "does not keep the value " + std::to_string(mode) + " of the setting " + hex(id) +
                           ": " + std::to_string(after) + " is read back.");
        }
    }
    write_setting(out, id, before);
}

} // namespace

void check_element_tables(report &out) {
    out.begin("element tables");
    for (const table &one : tables()) {
        const saved_table keep(out, one);
        check_round_trip(out, one);
        check_init(out, one);
        check_reset(out, one);
    }
}

void check_settings(report &out) {
    out.begin("settings");
    for (const std::uint32_t id : norvane::settings_elements) {
        check_setting(out, id);
    }
}

} // namespace platform_check
