// Compares element by element, so that only what differs is written.
#include "tools/field/restore.h"

#include <algorithm>
#include <cstring>

#include "exec/schema/secret_columns.h"
#include "platform/host/fixture_values.h"

namespace field {

namespace {

using qryhost::element_place;
using bytes = std::vector<std::uint8_t>;

class planner {
  public:
    explicit planner(read_snapshot snapshot)
        : wanted_(std::move(snapshot)), device_(read_device(wanted_.covered)) {}

    restore_plan plan();

  private:
    void keep_masked(const QRY_LIB_TABLE_DEF &table);
    void keep_masked(const QRY_LIB_ELEMENT_INFO &column);
    void compare_record(const table_place &each, std::uint32_t record);
    void tell(const std::string &where, const QRY_LIB_TABLE_DEF &table, const element_place &place,
              std::uint32_t record);
    void compare_settings();
    void add(const element_place &place, std::uint32_t record);

    bool differs(const element_place &place, std::uint32_t record) const {
        const std::uint32_t offset = place.value_offset(record);
        return std::memcmp(wanted_.region.data() + offset, device_.data() + offset, place.size) != 0;
    }

    read_snapshot wanted_;
    bytes device_;
    restore_plan plan_;
};

std::string record_name(std::uint32_t record) {
    return record == 0 ? " default" : " record " + std::to_string(record - 1);
}

restore_plan planner::plan() {
    for (const table_place &each : tables_of(wanted_.covered)) {
        keep_masked(*each.table);
        const std::uint32_t record_num = norvane::capacity_of(norvane::category_of(*each.table));
        for (std::uint32_t record = 0; record <= record_num; ++record) {
            compare_record(each, record);
        }
    }
    compare_settings();
    return std::move(plan_);
}

void planner::keep_masked(const QRY_LIB_TABLE_DEF &table) {
    for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
        if (wanted_.masked.count(column.info.name) != 0) {
            keep_masked(column.info);
        }
    }
}

// A mask has the length of what it stands for, so that an empty one stands for nothing: it is written.
void planner::keep_masked(const QRY_LIB_ELEMENT_INFO &column) {
    const element_place &place = qryhost::place_of(column);
    for (std::uint32_t record = 0; record <= place.record_num; ++record) {
        const std::uint32_t offset = place.value_offset(record) + column.member_offset;
        const auto value = wanted_.region.begin() + offset;
        if (std::any_of(value, value + column.size, [](std::uint8_t byte) { return byte != 0; })) {
            std::copy_n(device_.begin() + offset, column.size, value);
            ++plan_.kept_secrets;
        }
    }
}

void planner::compare_record(const table_place &each, std::uint32_t record) {
    const std::size_t before = plan_.changes.size();
    for (const element_place *place : elements_of(*each.table)) {
        if (differs(*place, record)) {
            tell(full_name(*each.database, *each.table) + record_name(record), *each.table, *place, record);
            add(*place, record);
        }
    }
    plan_.records += plan_.changes.size() != before ? 1 : 0;
}

void planner::tell(const std::string &where, const QRY_LIB_TABLE_DEF &table, const element_place &place,
                   std::uint32_t record) {
    const std::uint32_t offset = place.value_offset(record);
    for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
        if (column.info.element_id != place.element) {
            continue;
        }
        const qryhost::json old = qryhost::value_to_json(column.info, device_.data() + offset);
        const qryhost::json wanted = qryhost::value_to_json(column.info, wanted_.region.data() + offset);
        if (norvane::is_secret_column(column.info.name)) {
            plan_.lines.push_back(where + ", " + column.info.name + ": a secret changes");
        } else if (old != wanted) {
            plan_.lines.push_back(where + ", " + column.info.name + ": " + old.dump() + " -> " +
                                  wanted.dump());
        }
    }
}

void planner::compare_settings() {
    for (const qryhost::setting_name &setting : qryhost::setting_names) {
        const element_place &place =
            *qryhost::store_layout::get().find(qryhost::settings_category, setting.element);
        if (!wanted_.covered.settings || !differs(place, 0)) {
            continue;
        }
        const auto number = [&](const bytes &region) {
            return std::to_string(qryhost::load_number(region.data() + place.offset, place.size));
        };
        plan_.lines.push_back(std::string("settings, ") + setting.name + ": " + number(device_) + " -> " +
                              number(wanted_.region));
        add(place, 0);
        ++plan_.records;
    }
}

void planner::add(const element_place &place, std::uint32_t record) {
    const auto value = wanted_.region.begin() + place.value_offset(record);
    plan_.changes.push_back({&place, record, bytes(value, value + place.size)});
}

} // namespace

restore_plan plan_restore(read_snapshot snapshot) {
    return planner(std::move(snapshot)).plan();
}

void carry_out(const restore_plan &plan) {
    std::size_t written = 0;
    try {
        for (const value_change &change : plan.changes) {
            write_value(*change.place, change.record, change.bytes.data());
            ++written;
        }
    } catch (const failure &refused) {
        throw failure(std::string(refused.what()) + "; " + std::to_string(written) + " of " +
                      std::to_string(plan.changes.size()) + " values were written");
    }
}

} // namespace field
