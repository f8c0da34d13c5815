// List tables: one column's values as they were at one moment.
#include <string>

#include "platform/element_table.h"
#include "tools/platform_check/checks.h"
#include "tools/platform_check/elements.h"

namespace platform_check {

namespace {

constexpr int open_and_close_num = 1000;

// A list table, closed at the end.
class open_list {
  public:
    open_list(report &out, const table &of, const element &at) : out_(out), table_(of), element_(at) {
        is_open_ = out.succeeds(tbctSTCCreateListTable(of.category, at.id, of.record_num, &list_),
                                "tbctSTCCreateListTable", "opening a list over " + where());
    }
    open_list(const open_list &) = delete;
    open_list &operator=(const open_list &) = delete;
    ~open_list() { tbctSTCDeleteListTable(&list_, 0); }

    bool is_open() const { return is_open_; }
    tbctListTable *get() { return &list_; }

    // The value at a position; empty, and reported, when it cannot be had.
    bytes value(std::uint16_t position) {
        guarded_buffer buffer(element_.size);
        const std::string at = "position " + std::to_string(position) + " of a list over " + where();
        if (!out_.succeeds(tbctSTCListTableSetPos(&list_, position), "tbctSTCListTableSetPos", at) ||
            !out_.succeeds(tbctSTCListTableGetVal(&list_, buffer.data()), "tbctSTCListTableGetVal", at) ||
            !out_.expect(!buffer.is_overrun(), "tbctSTCListTableGetVal",
                         "writes more than " + std::to_string(element_.size) + " bytes at " + at + ".")) {
            return {};
        }
        return buffer.value();
    }

  private:
    std::string where() const {
        return std::to_string(table_.record_num) + " records, element " + hex(element_.id) + " of " +
               table_.name;
    }

    report &out_;
    const table &table_;
    const element &element_;
    tbctListTable list_{};
    bool is_open_ = false;
};

void fill(report &out, const table &of, const element &at, std::uint32_t round) {
    for (std::uint32_t record = 0; record <= of.record_num; ++record) {
        write(out, of, at, record, sample(of, at, record, round));
    }
}

// Every position against the value that was written to its record, last position first. False at a
// difference.
bool holds_round(open_list &list, const table &of, const element &at, std::uint32_t round) {
    for (std::uint16_t position = of.record_num; position-- > 0;) {
        const bytes value = list.value(position);
        if (!value.empty() && value != sample(of, at, position + 1u, round)) {
            return false;
        }
    }
    return true;
}

void check_values(report &out, const table &of, const element &at) {
    fill(out, of, at, 1);
    open_list list(out, of, at);
    if (!list.is_open()) {
        return;
    }
    out.expect(holds_round(list, of, at, 1), "tbctSTCListTableGetVal",
               "gives other values than the records hold, for element " + hex(at.id) + " of " + of.name +
                   ": position 0 is record 1.");
    fill(out, of, at, 2);
    out.expect(holds_round(list, of, at, 1), "tbctSTCCreateListTable",
               "does not keep the values of one moment: a list over element " + hex(at.id) + " of " +
                   of.name + " changes when records are written.");
}

void check_several_lists(report &out, const table &of) {
    const element &first = of.elements.front();
    const element &last = of.elements.back();
    fill(out, of, first, 3);
    fill(out, of, last, 3);
    open_list one(out, of, first);
    open_list two(out, of, last);
    open_list three(out, of, first);
    if (!one.is_open() || !two.is_open() || !three.is_open()) {
        return;
    }
    tbctSTCListTableSetPos(one.get(), 0);
    three.value(static_cast<std::uint16_t>(of.record_num - 1));
    guarded_buffer buffer(first.size);
    tbctSTCListTableGetVal(one.get(), buffer.data());
    out.expect(buffer.value() == sample(of, first, 1, 3) && holds_round(two, of, last, 3),
               "tbctSTCCreateListTable",
               "does not keep lists apart: one list of " + of.name + " moves or changes with another.");
    tbctSTCDeleteListTable(three.get(), 0);
    out.expect(holds_round(one, of, first, 3), "tbctSTCDeleteListTable",
               "harms other lists of " + of.name + " than the one that it closes.");
}

// What the library does at the end of a search that failed: it closes what was never opened, or twice.
void check_closed_lists(report &out, const table &of) {
    open_list bystander(out, of, of.elements.front());
    tbctListTable never_opened{};
    out.expect(tbctSTCListTableSetPos(&never_opened, 0) != 0, "tbctSTCListTableSetPos",
               "answers 0 for a zero-filled list that was never opened; it must fail.");
    tbctSTCDeleteListTable(&never_opened, 0);
    tbctListTable closed{};
    if (tbctSTCCreateListTable(of.category, of.elements.front().id, of.record_num, &closed) == 0) {
        tbctSTCDeleteListTable(&closed, 0);
        out.expect(tbctSTCListTableSetPos(&closed, 0) != 0, "tbctSTCListTableSetPos",
                   "answers 0 for a list that is closed; it must fail.");
        tbctSTCDeleteListTable(&closed, 0);
    }
    out.expect(!bystander.is_open() || !bystander.value(0).empty(), "tbctSTCDeleteListTable",
               "harms an open list when it is given one that is not open.");
}

void check_many_lists(report &out, const table &of) {
    for (int i = 0; i < open_and_close_num; ++i) {
        tbctListTable list{};
        const std::uint32_t code =
            tbctSTCCreateListTable(of.category, of.elements.front().id, of.record_num, &list);
        tbctSTCDeleteListTable(&list, 0);
        if (!out.succeeds(code, "tbctSTCCreateListTable",
                          "opening list number " + std::to_string(i + 1) +
                              " after the earlier ones were closed (does closing give everything back?)")) {
            return;
        }
    }
}

} // namespace

void check_list_tables(report &out) {
    out.begin("list tables");
    for (const table &one : tables()) {
        const saved_table keep(out, one);
        for (const element &at : one.elements) {
            check_values(out, one, at);
        }
        check_several_lists(out, one);
    }
    check_closed_lists(out, tables().front());
    check_many_lists(out, tables().front());
}

} // namespace platform_check
