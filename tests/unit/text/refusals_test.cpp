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
    std::string hint;  // a part of what to write instead
};

const std::vector<refused_statement> refused = {
    {"SELECT PSN_ID AS ID FROM PSN_TBL", "AS", "there is no AS", "write the name alone"},
    {"SELECT PSN_ID ID FROM PSN_TBL", "PSN_ID ID", "there is no alias", "write PSN_ID"},
    {"SELECT DISTINCT PSN_NAME FROM PSN_TBL", "DISTINCT", "there is no DISTINCT", "write the columns"},
    {"SELECT PSN_ID + 1 FROM PSN_TBL", "PSN_ID + 1", "nothing is worked out", "write PSN_ID"},
    {"SELECT PSN_ID+1 FROM PSN_TBL", "PSN_ID+1", "nothing is worked out", "write the column"},
    {"SELECT PSN_ID PSN_NAME FROM PSN_TBL", " ", "a comma is missing here", "write COLUMN, COLUMN"},
    {"SELECT FROM PSN_TBL", "FROM", "expected columns before FROM", "write COLUMN"},
    {"SELECT PSN_ID FORM PSN_TBL", "FORM", "expected FROM, not FORM", "write FROM"},
    {"SELECT PSN_ID FROM", "", "expected a table", "write FROM TABLE"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE (PSN_ID = 1)", "(PSN_ID", "brackets group nothing", "write one list"},
    {"SELECT PSN_ID FROM (SELECT PSN_ID FROM PSN_TBL)", "SELECT", "no SELECT within", "write two statements"},
    {"SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_ID LIMIT 3", "LIMIT", "there is no LIMIT", "write a narrower"},
    {"SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_ID desc", "desc", "keywords are upper case", "write DESC"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME like 'a%'", "like", "keywords are upper case", "write LIKE"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = INTEG_ID", "INTEG_ID", "INTEG_ID begins with IN",
     "a column is compared with values alone"},
    {"SELECT ONE_TBL.X FROM ONE_TBL, INTEG_TBL WHERE ONE_TBL.X = INTEG_TBL.X", "INTEG_TBL.X",
     "INTEG_TBL.X begins with IN", "write =INTEG_TBL.X, without the blank"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a AND b'", "'a", "the quote is not closed",
     "even inside quotes"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE \tPSN_ID = 1", "\tPSN_ID", "not tabs", "write a blank"},
    {"SELECT PSN_ID FROM \tPSN_TBL", "\tPSN_TBL", "not tabs", "write a blank"},
    {"\tSELECT PSN_ID FROM PSN_TBL", "\tSELECT", "not tabs", "write a blank"},
    {"SELECT PSN_ID FROM PSN_TBL GROUP BY PSN_NAME", "GROUP", "there is no GROUP BY", "write a SELECT"},
    {"SELECT PSN_ID FROM PSN_TBL LIMIT 1", "LIMIT", "there is no LIMIT", "write a narrower"},
    {"SELECT PSN_ID FROM PSN_TBL JOIN DEPT_TBL", "JOIN", "there is no JOIN", "write FROM A, B"},
    {"SELECT P.PSN_ID FROM PSN_TBL P", "P", "there is no alias", "write PSN_TBL alone"},
    {"SELECT P.PSN_ID FROM PSN_TBL P, GRP_TBL G WHERE P.PSN_ID = G.GRP_ID", "P", "there is no alias",
     "write PSN_TBL alone"},
    {"DELETE FROM PSN_TBL P WHERE P.PSN_ID = 1", "P", "there is no alias", "write PSN_TBL alone"},
    {"SELECT PSN_ID FROM PSN_TBL AS P", "AS", "there is no AS", "write the name alone"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID BETWEEN 1 AND 3", "BETWEEN", "there is no BETWEEN",
     "write X >= 1 AND"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME IS NULL", "IS", "there is no NULL", "write = 0 or = ''"},
    {"INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, NULL)", "NULL", "there is no NULL", "write 0 or ''"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE NOT PSN_ID = 1", "NOT", "there is no NOT", "write !="},
    {"SELECT MAX(PSN_ID) FROM PSN_TBL", "MAX", "there is no MAX", "write ORDER BY"},
    {"SELECT SUM(PSN_ID) FROM PSN_TBL", "SUM", "there is no SUM", "write a SELECT of the column"},
    {"SELECT COUNT(PSN_ID) FROM PSN_TBL", "COUNT(PSN_ID)", "records are counted", "write COUNT(*)"},
    {"SELECT lower(PSN_NAME) FROM PSN_TBL", "lower(PSN_NAME)", "no functions", "write the column"},
    {"SELECT PSN_ID /* key */ FROM PSN_TBL", "/*", "holds no comment", "behind --"},
    {"SELECT * FROM PSN_TBL", "*", "named one by one", "write INTEG_ID, PSN_ADDR_ID, PSN_ID"},
    {"delete from PSN_TBL", "delete", "keywords are upper case", "write DELETE"},
    {"update PSN_TBL SET PSN_ID = 1", "update", "keywords are upper case", "write UPDATE"},
    {"BEGIN", "BEGIN", "there is no BEGIN", "write the statements alone"},
    {"COMMIT", "COMMIT", "there is no COMMIT", "write the statements alone"},
    {"SHOW TABLES", "SHOW", "there is no SHOW", ".tables, which lists the tables"},
    {"USE department_db", "USE", "there is no USE", ".db NAME"},
    {"DESCRIBE PSN_TBL", "DESCRIBE", "there is no DESCRIBE", ".schema TABLE"},
    {"PRAGMA table_info(PSN_TBL)", "PRAGMA", "there is no PRAGMA", ".schema, which lists"},
    {"SELECT NAME FROM DEPT_TBL", "DEPT_TBL", "department_db has DEPT_TBL", "write .db department_db"},
    {"UPDATE DEPT_TBL SET NAME = 'x' WHERE ID = 1", "DEPT_TBL", "department_db has DEPT_TBL", "write .db"},
    {"SELECT NAME FROM department_db.DEPT_TBL", "department_db.DEPT_TBL", "department_db has DEPT_TBL",
     "write .db department_db"},
    {"INSERT INTO EMAIL_TBL (PSN_ID, EMAIL_ADDR) VALUES (1, 'a')", "EMAIL_TBL",
     "this device keeps no EMAIL_TBL records", ".tables lists them"},
    {"INSERT INTO PSN_TBL (PSN_ID) VALUES ('abc')", "'abc'", "stored as 0, which marks a free record",
     "write another key"},
    {"INSERT INTO PSN_TBL (PSN_ID) VALUES (65536)", "65536", "stored as 0", "write another key"},
    {"INSERT INTO PSN_TBL VALUES (1)", "VALUES", "expected \"(\"", "write INSERT INTO TABLE (COLUMN"},
    {"INSERT INTO PSN_TBL (PSN_ID) VALUES (1), (2)", ",", "expected the end", "write an INSERT for each"},
    {"UPDATE PSN_TBL SET INTEG_ID = 1 LIMIT 1", "LIMIT", "there is no LIMIT", "write a narrower"},
    {"UPDATE PSN_TBL SET INTEG_ID = 1 WHERE PSN_ID = 99", "PSN_ID = 99", "no record matches", "SELECT"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME < 'x'", "PSN_NAME", "texts have no order",
     "write =, != or LIKE"},
    {"SELECT PSN_TBL.PSN_ID FROM PSN_TBL, GRP_TBL WHERE PSN_TBL.PSN_NAME < 'x' AND PSN_TBL.PSN_ID = "
     "GRP_TBL.GRP_ID",
     "PSN_TBL.PSN_NAME", "texts have no order", "write =, != or LIKE"},
    {"SELECT PSN_TBL.PSN_ID AS X FROM PSN_TBL, GRP_TBL WHERE PSN_TBL.PSN_ID = GRP_TBL.GRP_ID", "AS",
     "there is no AS", "write the name alone"},
    {"SELECT PSN_TBL.PSN_ID ( 1 ) FROM PSN_TBL, GRP_TBL WHERE PSN_TBL.PSN_ID = GRP_TBL.GRP_ID",
     "PSN_TBL.PSN_ID ( 1 )", "PSN_TBL has no column", ""},
    {"SELECT PSN_ID FROM PSN_TBL; DROP TABLE PSN_TBL", ";", "one statement", "a line of its own"},
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
        EXPECT_NE(answer["refusal"]["hint"].get<std::string>().find(row.hint), std::string::npos)
            << answer["refusal"];
    }
}

TEST(Refusals, OfAFullTable) {
    qryhost_reset();
    const qrytext::session session(qrytext_open("adbk_db", 0));
    json answer;
    for (int key = 1; key <= 11; ++key) {
        const std::string sql = "INSERT INTO PSN_TBL (PSN_ID) VALUES (" + std::to_string(key) + ")";
        answer = json::parse(qrytext_run(session.get(), sql.c_str(), nullptr));
    }
    EXPECT_EQ(answer["name"], "QRY_LIB_NO_FREE_ENTRY");
    EXPECT_EQ(answer["refusal"]["text"], "all 10 records of PSN_TBL are in use");
    qryhost_reset();
}

} // namespace
