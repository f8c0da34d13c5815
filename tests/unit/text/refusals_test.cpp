// Refusals: what is written in other dialects, or nearly right, is answered with what to write.
#include <qrytext/qrytext.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "platform/host/qryhost.h"

namespace {

using nlohmann::json;

struct refused_statement {
    std::string sql;
    std::string place; // the text that the refusal is about
    std::string text;  // a part of its sentence
};

const std::vector<refused_statement> refused = {
    {"SELECT PSN_ID AS ID FROM PSN_TBL", "AS", "there is no AS"},
    {"SELECT DISTINCT PSN_NAME FROM PSN_TBL", "DISTINCT", "there is no DISTINCT"},
    {"SELECT PSN_ID + 1 FROM PSN_TBL", "PSN_ID + 1", "nothing is worked out"},
    {"SELECT PSN_ID PSN_NAME FROM PSN_TBL", " ", "a comma is missing here"},
    {"SELECT FROM PSN_TBL", "FROM", "expected columns before FROM"},
    {"SELECT PSN_ID FORM PSN_TBL", "FORM", "expected FROM"},
    {"SELECT PSN_ID FROM", "", "expected a table"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE (PSN_ID = 1)", "(PSN_ID", "brackets group nothing"},
    {"SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_ID LIMIT 3", "LIMIT", "there is no LIMIT"},
    {"SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_ID desc", "desc", "keywords are upper case: write DESC"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME like 'a%'", "like", "keywords are upper case: write LIKE"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = INTEG_ID", "IN", "wants values between brackets"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a AND b'", "'a", "even inside quotes"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE \tPSN_ID = 1", "\tPSN_ID", "not tabs"},
    {"SELECT PSN_ID FROM \tPSN_TBL", "\tPSN_TBL", "not tabs"},
    {"SELECT PSN_ID FROM PSN_TBL GROUP BY PSN_NAME", "GROUP", "there is no GROUP BY"},
    {"SELECT PSN_ID FROM PSN_TBL LIMIT 1", "LIMIT", "there is no LIMIT"},
    {"SELECT PSN_ID FROM PSN_TBL JOIN DEPT_TBL", "JOIN", "there is no JOIN"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID BETWEEN 1 AND 3", "BETWEEN",
     "there is no BETWEEN: write X >= 1 AND"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME IS NULL", "IS", "there is no NULL: write"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE NOT PSN_ID = 1", "NOT", "there is no NOT: write !="},
    {"SELECT MAX(PSN_ID) FROM PSN_TBL", "MAX", "there is no MAX: write ORDER BY"},
    {"SELECT SUM(PSN_ID) FROM PSN_TBL", "SUM", "there is no SUM"},
    {"SELECT PSN_ID /* key */ FROM PSN_TBL", "/*", "holds no comment"},
    {"delete from PSN_TBL", "delete", "keywords are upper case: write DELETE"},
    {"BEGIN", "BEGIN", "there is no BEGIN"},
    {"COMMIT", "COMMIT", "there is no COMMIT"},
    {"SHOW TABLES", "SHOW", ".tables lists the tables"},
    {"USE department_db", "USE", ".db NAME"},
    {"DESCRIBE PSN_TBL", "DESCRIBE", ".schema TABLE"},
    {"PRAGMA table_info(PSN_TBL)", "PRAGMA", ".schema lists"},
    {"SELECT NAME FROM DEPT_TBL", "DEPT_TBL", "department_db has"},
    {"INSERT INTO EMAIL_TBL (PSN_ID, EMAIL_ADDR) VALUES (1, 'a')", "EMAIL_TBL",
     "this device keeps no EMAIL_TBL records"},
};

TEST(Refusals, SayWhatToWrite) {
    qryhost_reset();
    const qrytext::session session(qrytext_open("adbk_db", 0));
    for (const refused_statement &row : refused) {
        SCOPED_TRACE(row.sql);
        const json answer = json::parse(qrytext_run(session.get(), row.sql.c_str(), nullptr));
        EXPECT_EQ(answer["ok"], false);
        ASSERT_NE(answer["refusal"], nullptr);
        const std::size_t from = answer["refusal"]["from"];
        const std::size_t to = answer["refusal"]["to"];
        EXPECT_EQ(row.sql.substr(std::min(from, row.sql.size()), to - from), row.place);
        EXPECT_NE(answer["refusal"]["text"].get<std::string>().find(row.text), std::string::npos)
            << answer["refusal"];
    }
}

} // namespace
