// The statements of the workload and the checks of their answers.
#include "concurrency/workload.h"

#include <gtest/gtest.h>

#include <set>

#include "concurrency/statements.h"
#include "platform/element_table.h"

namespace test {

namespace {

constexpr char department_db[] = "department_db";
constexpr char address_db[] = "adbk_db";
constexpr auto number = column_kind::number;
constexpr auto text = column_kind::text;

std::string department(std::uint32_t index) {
    return "ID = " + std::to_string(index + 1);
}

cell_rows rows_of(const char *db, const std::string &sql, const std::vector<column_kind> &kinds) {
    std::uint32_t code = 0;
    cell_rows rows = select(db, sql, kinds, code);
    EXPECT_EQ(code, 0u) << sql;
    return rows;
}

std::uint32_t number_in(const std::vector<cell> &row, std::size_t index) {
    return std::get<std::uint32_t>(row[index]);
}

const std::string &text_in(const std::vector<cell> &row, std::size_t index) {
    return std::get<std::string>(row[index]);
}

// The key last: until then the record is free, and no search meets half of a person.
std::uint32_t insert_person(std::uint32_t id, std::uint32_t letter) {
    return insert(address_db, "PSN_TBL", {{"PSN_NAME", paired_name(letter)}, {"PSN_ID", id}});
}

std::uint32_t counter_of(std::uint32_t writer) {
    const cell_rows rows =
        rows_of(department_db, "SELECT TOTAL_M FROM DEPT_TBL WHERE " + department(writer), {number});
    return rows.size() == 1 ? number_in(rows[0], 0) : 0;
}

std::uint32_t least_edit_count() {
    std::uint32_t least = 0xFFFFFFFF;
    for (const auto &row : rows_of(department_db, "SELECT CNT FROM EDIT_CNT_TBL", {number})) {
        least = std::min(least, number_in(row, 0));
    }
    return least;
}

} // namespace

std::string paired_name(std::uint32_t letter) {
    const std::string half(1 + 3 * letter, static_cast<char>('A' + letter));
    return half + "|" + half;
}

bool is_paired_name(const std::string &name) {
    return !name.empty() && name[0] >= 'A' && name[0] <= 'Z' &&
           name == paired_name(static_cast<std::uint32_t>(name[0] - 'A'));
}

void prepare_workload() {
    for (std::uint32_t i = 0; i < workload_departments; ++i) {
        ASSERT_EQ(insert(department_db, "DEPT_TBL",
                         {{"ID", i + 1}, {"NAME", paired_name(i)}, {"FURIGANA", paired_name(i)}}),
                  0u);
    }
    for (std::uint32_t i = 0; i < workload_persons; ++i) {
        ASSERT_EQ(insert_person(i + 1, i), 0u);
    }
    ASSERT_EQ(insert(department_db, "EDIT_CNT_TBL", {{"ID", 1u}, {"CNT", 1u}}), 0u);
}

workload_writer::workload_writer(std::uint32_t writer, std::uint32_t seed)
    : number_(writer), engine_(seed + writer), counter_(counter_of(writer)), edits_(least_edit_count()) {}

void workload_writer::step() {
    const std::uint32_t choice = below(4);
    if (choice == 0) {
        count_up();
    } else if (choice == 1 && number_ == 0) {
        replace_person();
    } else if (choice == 1 && number_ == 1) {
        count_edit();
    } else {
        rename_department();
    }
}

void workload_writer::rename_department() {
    EXPECT_EQ(update(department_db, "DEPT_TBL",
                     {{"NAME", paired_name(below(26))}, {"FURIGANA", paired_name(below(26))}},
                     department(below(workload_departments))),
              0u);
}

void workload_writer::replace_person() {
    const std::uint32_t id = 1 + below(workload_persons);
    EXPECT_EQ(execute(address_db, "DELETE FROM PSN_TBL WHERE PSN_ID = " + std::to_string(id)), 0u);
    EXPECT_EQ(insert_person(id, below(26)), 0u);
}

void workload_writer::count_up() {
    EXPECT_EQ(update(department_db, "DEPT_TBL", {{"TOTAL_M", ++counter_}}, department(number_)), 0u);
}

void workload_writer::count_edit() {
    EXPECT_EQ(update(department_db, "EDIT_CNT_TBL", {{"CNT", ++edits_}}, "ID = 1"), 0u);
}

void workload_reader::step() {
    static constexpr void (workload_reader::*steps[])() = {
        &workload_reader::read_departments, &workload_reader::read_persons, &workload_reader::read_counters,
        &workload_reader::read_linked, &workload_reader::read_count};
    (this->*steps[engine_() % std::size(steps)])();
}

void workload_reader::read_departments() {
    const cell_rows rows = rows_of(department_db, "SELECT ID, NAME, FURIGANA FROM DEPT_TBL ORDER BY NAME ASC",
                                   {number, text, text});
    EXPECT_EQ(rows.size(), workload_departments);
    for (const auto &row : rows) {
        EXPECT_TRUE(is_paired_name(text_in(row, 1))) << text_in(row, 1);
        EXPECT_TRUE(is_paired_name(text_in(row, 2))) << text_in(row, 2);
    }
}

// A person that is just being replaced may be seen empty.
void workload_reader::read_persons() {
    std::set<std::uint32_t> seen;
    for (const auto &row : rows_of(address_db, "SELECT PSN_ID, PSN_NAME FROM PSN_TBL", {number, text})) {
        const std::uint32_t id = number_in(row, 0);
        EXPECT_TRUE(id == 0 || seen.insert(id).second) << "person " << id << " is there twice";
        EXPECT_TRUE(text_in(row, 1).empty() || is_paired_name(text_in(row, 1))) << text_in(row, 1);
    }
}

void workload_reader::read_counters() {
    for (std::uint32_t writer = 0; writer < workload_writers; ++writer) {
        const std::uint32_t now = counter_of(writer);
        EXPECT_GE(now, counters_[writer]);
        counters_[writer] = now;
    }
}

void workload_reader::read_linked() {
    const cell_rows rows = rows_of(department_db,
                                   "SELECT DEPT_TBL.ID, DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, "
                                   "EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID",
                                   {number, text, number});
    EXPECT_FALSE(rows.empty());
    std::uint32_t least = 0xFFFFFFFF;
    for (const auto &row : rows) {
        EXPECT_EQ(number_in(row, 0), 1u);
        EXPECT_TRUE(is_paired_name(text_in(row, 1))) << text_in(row, 1);
        least = std::min(least, number_in(row, 2));
    }
    EXPECT_GE(least, edits_);
    edits_ = least;
}

void workload_reader::read_count() {
    const cell_rows rows = rows_of(department_db, "SELECT COUNT(*) FROM DEPT_TBL WHERE ID <= 20", {number});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(number_in(rows[0], 0), workload_departments);
}

void check_workload() {
    workload_reader reader(0);
    for (int i = 0; i < 40; ++i) {
        reader.step();
    }
    for (std::uint32_t writer = 0; writer < workload_writers; ++writer) {
        workload_writer steps(writer, writer);
        for (int i = 0; i < 8; ++i) {
            steps.step();
        }
    }
}

} // namespace test
