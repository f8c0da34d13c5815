// What a caller in C++ tells its user about a statement that the library refused.
#include <cstdio>
#include <string>

#include <qrylib/qrylib.hpp>
#include <qrytext/qrytext.hpp>

int main() {
    const std::string sql = "SELECT PSN_NAM FROM PSN_TBL";
    try {
        qrylib::database("adbk_db").query(sql);
    } catch (const qrylib::error &error) {
        std::printf("hint: %s\n", qrytext::hint(error, sql).empty() ? "none" : "known");
    }
    const qrytext::session session(qrytext_open("adbk_db", QRYTEXT_READONLY));
    return session ? 0 : 1;
}
