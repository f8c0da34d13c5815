// Examines a device image without changing it: what no statement and no killed process leaves behind is
// damage.
#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "exec/schema/schema.h"
#include "platform/host/control.h"
#include "platform/host/element_store.h"
#include "platform/host/image_file.h"
#include "platform/host/process_number.h"
#include "platform/host/qryhost.h"
#include "platform/host/roomy.h"
#include "platform/host/write_in_progress.h"

namespace qryhost {

namespace {

// Hands the findings on and counts those that are damage.
class findings {
  public:
    findings(qryhost_check_sink sink, void *context) : sink_(sink), context_(context) {}

    void damage(const std::string &text) {
        ++damage_num_;
        tell(1, text);
    }
    void remark(const std::string &text) { tell(0, text); }

    int damage_num() const { return damage_num_; }

  private:
    void tell(int is_damage, const std::string &text) {
        if (sink_ != nullptr) {
            sink_(context_, is_damage, text.c_str());
        }
    }

    qryhost_check_sink sink_;
    void *context_;
    int damage_num_ = 0;
};

// One table of a store's content. Records are numbered as the library does, from 0; the default record is -1.
class table_check {
  public:
    table_check(const std::vector<std::uint8_t> &region, const QRY_LIB_TABLE_DEF &table, std::string name,
                findings &found)
        : region_(region), columns_(table.elements, table.elements + table.element_num),
          name_(std::move(name)), found_(found), record_num_(place(columns_.front().info).record_num),
          is_keyed_(std::strcmp(table.table_name, "EDIT_CNT_TBL") != 0) {}

    void run() {
        for (int record = -1; record < record_num_; ++record) {
            check_terminators(record);
        }
        if (record_num_ != 0 && is_keyed_) {
            check_records();
        }
    }

  private:
    static const element_place &place(const QRY_LIB_ELEMENT_INFO &column) {
        return *store_layout::get().find(column.category_id, column.element_id);
    }
    const std::uint8_t *element(const QRY_LIB_ELEMENT_INFO &column, int record) const {
        return region_.data() + place(column).value_offset(static_cast<std::uint32_t>(record + 1));
    }
    std::string name_of(int record) const {
        return name_ + (record < 0 ? " default record" : " record " + std::to_string(record));
    }

    void check_terminators(int record) const;
    void check_records();
    std::string key(int record) const;
    bool is_like_default(int record) const;

    const std::vector<std::uint8_t> &region_;
    std::vector<QRY_LIB_ELEMENT_DEF> columns_;
    std::string name_;
    findings &found_;
    int record_num_;
    bool is_keyed_; // edit counters are not: an INSERT overwrites all of them with the same values
};

// Members of a composite overlap: the next one's value may end a string too, so it has the whole element.
void table_check::check_terminators(int record) const {
    for (const QRY_LIB_ELEMENT_DEF &column : columns_) {
        const std::uint8_t *bytes = element(column.info, record);
        const std::uint8_t *end = bytes + place(column.info).size;
        if (norvane::is_string_element(column.info.elem_type) &&
            std::find(bytes + column.info.member_offset, end, 0) == end) {
            found_.damage(name_of(record) + ": the string " + column.info.name + " has no end");
        }
    }
}

// The primary key's values: strings as far as they are read, numbers in full.
std::string table_check::key(int record) const {
    std::string values;
    for (const QRY_LIB_ELEMENT_DEF &column : columns_) {
        if (column.is_primary == 0) {
            continue;
        }
        const std::uint8_t *bytes = element(column.info, record) + column.info.member_offset;
        const std::uint8_t *end = bytes + column.info.size;
        if (norvane::is_string_element(column.info.elem_type)) {
            end = std::find(bytes, end, 0);
        }
        values.append(bytes, end);
        values += '\0';
    }
    return values;
}

bool table_check::is_like_default(int record) const {
    return std::all_of(columns_.begin(), columns_.end(), [&](const QRY_LIB_ELEMENT_DEF &column) {
        return std::memcmp(element(column.info, record), element(column.info, -1), place(column.info).size) ==
               0;
    });
}

// An INSERT or a reset that a kill cut short leaves values in a record that its key calls free: no damage.
void table_check::check_records() {
    std::map<std::string, int> first_with;
    const std::string free_key = key(-1);
    int used = 0;
    for (int record = 0; record < record_num_; ++record) {
        const std::string values = key(record);
        if (values == free_key) {
            if (!is_like_default(record)) {
                found_.remark(name_of(record) + " is free, but not all of it is as in the default record");
            }
            continue;
        }
        ++used;
        const auto [same, is_new] = first_with.emplace(values, record);
        if (!is_new) {
            found_.damage(name_of(record) + " has the primary key of record " + std::to_string(same->second));
        }
    }
    found_.remark(name_ + ": " + std::to_string(used) + " of " + std::to_string(record_num_) +
                  " records in use");
}

std::string records_of(std::size_t category) {
    return "category " + std::to_string(store_layout::get().categories()[category].category);
}

// Another process may be writing: only what stays odd and senseless is damage.
void check_write(store_memory &memory, std::size_t category, findings &found) {
    const std::atomic<std::uint32_t> &sequence = memory.guard(category).sequence;
    const std::uint32_t before = sequence.load(std::memory_order_acquire);
    const bool is_senseless = before % 2 != 0 && named_write(memory, category).kind == write_none;
    std::atomic_thread_fence(std::memory_order_acquire);
    if (is_senseless && sequence.load(std::memory_order_relaxed) == before) {
        found.damage(records_of(category) + ": a write in progress names no value");
    }
}

// Whoever holds the records now, or held them when it died.
void tell_holder(store_memory &memory, std::size_t category, findings &found) {
    const value_guard &guard = memory.guard(category);
    const std::uint32_t holder = guard.holder.load(std::memory_order_relaxed);
    const std::uint32_t space = guard.holder_space.load(std::memory_order_relaxed);
    if (holder != 0) {
        found.remark(records_of(category) + " is held by " + describe_process(holder, space));
    }
}

void check_guards(store_memory &memory, findings &found) {
    for (std::size_t i = 0; i < store_layout::get().categories().size(); ++i) {
        check_write(memory, i, found);
        if (memory.names_holders()) {
            tell_holder(memory, i, found);
        }
    }
    if (memory.read_only_reason() != unwritable_reason) {
        found.remark(memory.read_only_reason());
    }
}

// An image that opens has the capacities of this build.
void tell_capacities(findings &found) {
    const std::vector<category_place> &all = store_layout::get().categories();
    const bool is_roomy = std::none_of(all.begin(), all.end(), [](const category_place &place) {
        return !place.is_setting && place.record_num == 0;
    });
    found.remark(is_roomy ? "the capacities are the roomy device's: " + std::to_string(roomy_records) +
                                " records where the device has none"
                          : "the capacities are the device's own");
}

void check_image_file(const char *path, findings &found) {
    store_memory memory = open_image_for_reading(path);
    tell_capacities(found);
    check_guards(memory, found);
    const std::vector<std::uint8_t> region = element_store(std::move(memory)).snapshot();
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            const std::string name = std::string(database->name) + "." + table.table_name;
            table_check(region, table, name, found).run();
        }
    }
    if (found.damage_num() != 0) {
        throw refusal(std::string(path) + ": is a damaged device image: " +
                      std::to_string(found.damage_num()) + " faults were found");
    }
}

} // namespace

} // namespace qryhost

extern "C" int qryhost_check(const char *image_path, qryhost_check_sink sink, void *context) {
    return qryhost::control([=] {
        qryhost::findings found(sink, context);
        qryhost::check_image_file(qryhost::required_path(image_path), found);
    });
}
