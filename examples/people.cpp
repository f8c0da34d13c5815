// The same as people.c, for C++: writes three people, reads them back in order, and shows a refusal.
#include <cstdio>

#include <qrylib/qrylib.hpp>

namespace {

void print_people(const qrylib::rowset &people) {
    for (const qrylib::row person : people) {
        std::printf("%d %s\n", person.get<int>("PSN_ID").value_or(0),
                    person.get<std::string>("PSN_NAME").value_or("").c_str());
    }
}

} // namespace

int main() {
    const qrylib::database book("adbk_db");
    try {
        book.insert_into("PSN_TBL").set("PSN_ID", 3).set("PSN_NAME", "Sato").execute();
        book.insert_into("PSN_TBL").set("PSN_ID", 1).set("PSN_NAME", "Abe").execute();
        book.insert_into("PSN_TBL").set("PSN_ID", 2).set("PSN_NAME", "Becker").execute();
        print_people(book.query("SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID > 0 ORDER BY PSN_NAME"));
        print_people(book.query("SELECT PSN_ID, NICKNAME FROM PSN_TBL"));
    } catch (const qrylib::error &refusal) {
        std::printf("0x%04X: %s\n", static_cast<unsigned>(refusal.value()), refusal.sentence());
        return refusal.code() == qrylib::errc::invalid_argument ? 0 : 1;
    }
    return 1;
}
