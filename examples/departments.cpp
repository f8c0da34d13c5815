// The C++ face, each part once: statements described field by field, rowsets and rows, values, and errors
// both ways.
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include <qrylib/qrylib.hpp>

namespace {

void write_departments(const qrylib::database &departments) {
    for (const auto &[id, name] :
         {std::pair<int, const char *>{1, "Sales"}, {2, "Purchasing"}, {3, "Stores"}}) {
        qrylib::statement insert = departments.insert_into("DEPT_TBL");
        insert.set("ID", id).set("NAME", name);
        insert.execute();
    }
    qrylib::statement update = departments.update("DEPT_TBL");
    update.set("TOTAL_M", 4200).where("ID < 3");
    update.execute();
    qrylib::statement remove = departments.delete_from("DEPT_TBL");
    remove.where_equal("NAME", "Stores");
    remove.execute();
}

void print_row(const qrylib::row &row) {
    const QRY_LIB_COLUMN *name = row.column("NAME");
    std::printf("%zu columns: %d %s, by place %u\n", row.size(), row.get<int>("ID").value_or(0),
                name != nullptr ? name->value.str_value : "", row.get<unsigned>(0).value_or(0));
}

void print_departments(const qrylib::database &departments) {
    qrylib::statement select = departments.select_from("DEPT_TBL");
    select.column("ID").column("NAME").where("TOTAL_M = 4200").order_by("NAME");
    qrylib::rowset rows = select.query();
    const qrylib::rowset kept = std::move(rows); // a rowset has one owner
    std::printf("%s: %zu rows, moved from: %s\n", departments.name().c_str(), kept.size(),
                rows.empty() ? "empty" : "not");
    for (const qrylib::row row : kept) {
        print_row(row);
    }
    print_row(kept[0]);
}

void print_value(const qrylib::value &value) {
    std::printf("%s, %s\n", value.is_text() ? value.text().c_str() : std::to_string(value.number()).c_str(),
                value.is_within_capacity() ? "fits" : "does not fit");
}

// Calls with a std::error_code do not throw.
bool is_refused(const qrylib::database &departments) {
    std::error_code failure;
    qrylib::rowset rows = departments.query("SELECT NOBODY FROM DEPT_TBL", failure);
    const bool is_known = failure == qrylib::make_error_code(qrylib::errc::invalid_argument) &&
                          failure.category() == qrylib::category() &&
                          failure == qrylib::code_from(QRY_LIB_INVALID_ARGUMENT);
    std::printf("%s, C record: %s\n", failure.message().c_str(),
                rows.get()->records == nullptr ? "empty" : "filled");
    departments.execute("DROP TABLE DEPT_TBL", failure);
    return is_known && !failure;
}

} // namespace

int main() {
    const qrylib::database departments("department_db");
    write_departments(departments);
    print_departments(departments);
    print_value(qrylib::value("Sales"));
    print_value(qrylib::value(5000000000));
    try {
        departments.execute("DELETE FROM NOWHERE");
    } catch (const qrylib::error &error) {
        std::printf("%s (%s, 0x%04X): %s\n", error.name(), qrylib::code_name(error.value()),
                    static_cast<unsigned>(error.value()), error.sentence());
    }
    return is_refused(departments) ? 0 : 1;
}
