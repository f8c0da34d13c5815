// Notes: what is said of statements that run otherwise than they look, and that nothing is said of the
// others.
#include <qrytext/qrytext.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "platform/host/qryhost.h"

namespace {

using nlohmann::json;

struct noted_statement {
    std::string sql;
    std::string place; // the text that the note is about
    std::string text;  // a part of the note
    std::string hint;  // a part of the hint
};

const std::vector<noted_statement> noted = {
    {"DELETE FROM PSN_TBL WHERE PSN_ID = 1 and PSN_NAME = 'zzz'", " and PSN_NAME = 'zzz'",
     "was read as part of the value", "keywords are upper case"},
    {"DELETE FROM PSN_TBL WHERE PSN_ID > 1 LIMIT 1", " LIMIT 1", "was read as part of the value",
     "there is no LIMIT"},
    {"UPDATE PSN_TBL SET INTEG_ID = 1 WHERE PSN_ID > 1 LIMIT 1", " LIMIT 1", "was read as part of the value",
     "there is no LIMIT"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1,2) AND PSN_NAME LIKE 'zzz%'", "PSN_ID IN (1,2)",
     "a list makes this OR", "last condition"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 5 or PSN_ID = 6", " or PSN_ID = 6", "part of the value",
     "keywords are upper case"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID > 5 order by PSN_ID DESC", " order by PSN_ID DESC",
     "part of the value", "keywords are upper case"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = \"Sato Kenji\"", "\"Sato Kenji\"", "belong to the value",
     "single quotes"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = \u2018Sato\u2019", "\u2018Sato\u2019",
     "belong to the value", "single quotes"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = \u201CSato\u201D", "\u201CSato\u201D",
     "belong to the value", "single quotes"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'Maeve O''Hara'", "'Maeve O''Hara'", "both quotes",
     "no escape"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE '%a%'", "'%a%'", "stands for itself", "beginnings"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME INLIKE ('a%', '%b%')", "'%b%'", "stands for itself",
     "beginnings"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 'abc'", "'abc'", "is read as 0", ""},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ''", "''", "is read as 0", ""},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = '5 or so'", " or so", "part of the value",
     "keywords are upper case"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = \"5\"", "\"5\"", "is read as 0", "single quotes"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1.5", ".5", "part of the value", "last digit"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = NULL", "NULL", "is read as 0", "there is no NULL"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = NULL", "NULL", "compared with the text",
     "there is no NULL"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = PSN_KANA", "PSN_KANA", "read as a value, not as the column",
     "compared with values alone"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = PSN_NAME", "PSN_NAME", "read as a value, not as the column",
     "compared with values alone"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 -- all", " -- all", "part of the value", "no comment"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 /* all */", " /* all */", "part of the value",
     "no comment"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1; DROP", "; DROP", "part of the value", "one statement"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'Abe' or so", " or so", "was dropped",
     "keywords are upper case"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE 'A%' ESCAPE x", " ESCAPE x", "was dropped",
     "there is no ESCAPE"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a' or PSN_NAME = 'b'", "'a' or PSN_NAME = 'b'",
     "from the first quote to the last", "keywords are upper case"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = Sato and PSN_ID = 1", " and PSN_ID = 1",
     "part of the value", "keywords are upper case"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1, x, 3)", "x", "is read as 0", ""},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1, 2) LIMIT", ") LIMIT", "part of the value",
     "there is no LIMIT"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 70000", "70000", "is compared as 4464",
     "between 0 and 65535"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID > -5", "-5", "is compared as 65531", "between 0 and 65535"},
    {"SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_ID DESC LIMIT 3", " LIMIT 3", "was dropped",
     "there is no LIMIT"},
    {"SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 ORDER BY ", "", "sorts nothing", ""},
    {"SELECT COUNT(*) AS N FROM PSN_TBL", "COUNT(*) AS N", "was read as COUNT(*)", "there is no AS"},
    {"SELECT DISTINCT COUNT(*) FROM PSN_TBL", "DISTINCT COUNT(*)", "was read as COUNT(*)",
     "there is no DISTINCT"},
    {"CREATE TABLE PEOPLE (ID INTEGER)", "CREATE TABLE PEOPLE (ID INTEGER)", "does nothing", ""},
    {"INSERT INTO PSN_TBL (PSN_ID) VALUES (70000)", "70000", "is stored as 4464", "between 0 and 65535"},
    {"INSERT INTO PSN_TBL (PSN_ID) VALUES (-5)", "-5", "is stored as 65531", "between 0 and 65535"},
    {"UPDATE PSN_TBL SET PSN_ID = 70000 WHERE PSN_ID = 1", "70000", "is stored as 4464",
     "between 0 and 65535"},
    {"UPDATE PSN_TBL SET PSN_ID = -5 WHERE PSN_ID = 1", "-5", "is stored as 65531", "between 0 and 65535"},
    {"INSERT INTO PSN_TBL (PSN_ID, INTEG_ID) VALUES (3, 'abc')", "'abc'", "is stored as 0", ""},
    {"INSERT INTO PSN_TBL (PSN_ID, INTEG_ID) VALUES (3, '12abc')", "'12abc'", "only 12", ""},
    {"INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (3, 3000000000)", "3000000000", "as the text -1294967296",
     ""},
    {"UPDATE PSN_TBL SET INTEG_ID = 1, INTEG_ID = 2", "1", "given twice", ""},
};

const std::vector<std::string> meant = {
    "SELECT PSN_ID, PSN_NAME FROM PSN_TBL",
    "  SELECT PSN_ID FROM PSN_TBL   WHERE   PSN_ID<3   ORDER   BY   PSN_ID   DESC  ",
    "SELECT COUNT ( * ) FROM PSN_TBL WHERE PSN_ID >= 4 AND PSN_ID != 5 AND PSN_NAME LIKE 'Sa%'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE 'A%' AND PSN_ID IN (1, 3)",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1, 3) OR PSN_NAME = 'Abe'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME INLIKE ('Ta%', '高%')",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE Ta%",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a and b limit 1 -- /* \" , ; order by'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'Maeve O'Hara'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'the dogs' bowl'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = '“quoted”'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'x>y'",
    "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = '5' ORDER BY PSN_NAME",
    "DELETE FROM PSN_TBL WHERE PSN_ID = +5",
    "DELETE FROM PSN_TBL",
    "DROP TABLE PSN_TBL",
    "UPDATE PSN_TBL SET PSN_NAME = 'it''s', INTEG_ID = 65535 WHERE PSN_ID = 1",
    "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME, INTEG_ID) VALUES (3, 42, '7')",
};

class notes : public testing::Test {
  protected:
    json check(const std::string &sql, const char *database = "adbk_db", std::uint32_t flags = 0) {
        const qrytext::session session(qrytext_open(database, flags));
        return json::parse(qrytext_check(session.get(), sql.c_str()));
    }
    json explain(const std::string &sql) {
        const qrytext::session session(qrytext_open("adbk_db", 0));
        return json::parse(qrytext_explain(session.get(), sql.c_str()));
    }
};

TEST_F(notes, EachHasItsPlaceAndItsHint) {
    for (const noted_statement &row : noted) {
        SCOPED_TRACE(row.sql);
        const json answer = check(row.sql);
        ASSERT_FALSE(answer["notes"].empty()) << answer;
        const json &first = answer["notes"][0];
        const std::size_t from = first["from"];
        const std::size_t to = first["to"];
        EXPECT_EQ(row.sql.substr(from, to - from), row.place);
        EXPECT_NE(first["text"].get<std::string>().find(row.text), std::string::npos) << first;
        EXPECT_NE(first["hint"].get<std::string>().find(row.hint), std::string::npos) << first;
        EXPECT_EQ(answer["ok"], true) << "a note refuses nothing";
    }
}

TEST_F(notes, NothingIsNotedOfWhatMeansWhatItSays) {
    for (const std::string &sql : meant) {
        const json answer = check(sql);
        EXPECT_EQ(answer["notes"], json::array()) << sql;
        EXPECT_EQ(answer["ok"], true) << sql << answer;
    }
}

TEST_F(notes, AStrictSessionRunsNoneOfThem) {
    qryhost_reset();
    const qrytext::session strict(qrytext_open("adbk_db", QRYTEXT_STRICT));
    qrytext_run(strict.get(), "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, 'Abe')", nullptr);
    const std::string before = qrytext_save(0);
    for (const noted_statement &row : noted) {
        const json answer = json::parse(qrytext_run(strict.get(), row.sql.c_str(), nullptr));
        EXPECT_EQ(answer["ok"], false) << row.sql;
        EXPECT_EQ(answer["refusal"], answer["notes"][0]) << row.sql;
    }
    EXPECT_EQ(qrytext_save(0), before);
    EXPECT_EQ(json::parse(qrytext_run(strict.get(), "SELECT PSN_ID FROM PSN_TBL", nullptr))["ok"], true);
}

TEST_F(notes, OfAJoin) {
    const std::string join =
        "SELECT DEPT_TBL.ID FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID";
    EXPECT_EQ(check(join + " AND DEPT_TBL.ID IN (2, 3)", "department_db")["notes"], json::array());
    EXPECT_EQ(check(join + " AND DEPT_TBL.ID IN (2, 3) AND EDIT_CNT_TBL.CNT = 1", "department_db")["notes"],
              json::array())
        << "conditions go to their tables";
    EXPECT_EQ(
        check(join + " AND DEPT_TBL.ID IN (2, 3) AND DEPT_TBL.NAME = 'x'", "department_db")["notes"].size(),
        1U);
    EXPECT_EQ(check(join + " ORDER BY DEPT_TBL.ID", "department_db")["notes"].size(), 1U);
    EXPECT_EQ(check(join + " AND DEPT_TBL.NAME = 'x' or so", "department_db")["notes"].size(), 1U);
}

TEST_F(notes, WideNumbersAreWrittenAsTheirBits) {
    EXPECT_EQ(check("SELECT ID FROM DEPT_TBL WHERE TOTAL_M = -1", "department_db")["notes"], json::array());
    EXPECT_EQ(check("SELECT ID FROM DEPT_TBL WHERE TOTAL_M = 4294967295", "department_db")["notes"].size(),
              1U);
    EXPECT_EQ(check("SELECT ID FROM DEPT_TBL WHERE TOTAL_M > -1", "department_db")["notes"].size(), 1U);
    EXPECT_EQ(check("UPDATE DEPT_TBL SET TOTAL_M = 4294967295", "department_db")["notes"], json::array());
    EXPECT_EQ(check("UPDATE DEPT_TBL SET TOTAL_M = -1", "department_db")["notes"].size(), 1U);
}

// Random statements of the dialect's grammar, with something foreign put in.
class generator {
  public:
    explicit generator(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
    }

    template <std::size_t Size>
    std::string one_of(const char *const (&words)[Size]) {
        return words[below(Size)];
    }

    std::string statement() {
        switch (below(7)) {
        case 6:
            return join();
        case 0:
            return "DELETE FROM PSN_TBL" + where();
        case 1:
            return "UPDATE PSN_TBL SET INTEG_ID = " + number() + " , PSN_NAME = " + text() + where();
        case 2:
            return "INSERT INTO PSN_TBL ( PSN_ID , PSN_NAME ) VALUES ( " + std::to_string(1 + below(9)) +
                   " , " + text() + " )";
        case 3:
            return "SELECT COUNT(*) FROM PSN_TBL" + where();
        case 4:
            return "DROP TABLE PSN_TBL";
        default:
            return "SELECT PSN_ID , PSN_NAME FROM PSN_TBL" + where() + order();
        }
    }

  private:
    std::string join() {
        static constexpr const char *ends[] = {"", " AND PSN_TBL.PSN_NAME = 'Abe'",
                                               " AND PSN_TBL.PSN_ID IN ( 1 , 2 )",
                                               " AND GRP_TBL.GRP_NAME LIKE 'A%' AND PSN_TBL.PSN_ID > 3"};
        return "SELECT PSN_TBL.PSN_ID , GRP_TBL.GRP_NAME FROM PSN_TBL , GRP_TBL WHERE "
               "PSN_TBL.PSN_ID = GRP_TBL.GRP_ID" +
               one_of(ends);
    }
    std::string number() { return std::to_string(below(60000)); }
    std::string text() {
        static constexpr const char *texts[] = {"'Abe'", "'Sato Kenji'", "'x>y'", "'高橋'", "'O;x'", "''"};
        return one_of(texts);
    }
    std::string comparison() {
        static constexpr const char *signs[] = {" = ", " != ", " < ", " >= "};
        switch (below(6)) {
        case 5:
            return "PSN_NAME = Abe";
        case 0:
            return "PSN_NAME = " + text();
        case 1:
            return "PSN_NAME LIKE 'Sa%'";
        case 2:
            return "PSN_NAME != " + text();
        default:
            return "PSN_ID" + one_of(signs) + number();
        }
    }
    std::string where() {
        static constexpr const char *joins[] = {" AND ", " OR "};
        if (below(4) == 0) {
            return "";
        }
        std::string text = " WHERE " + comparison();
        const std::string join = one_of(joins);
        for (std::size_t more = below(3); more > 0; --more) {
            text += join + comparison();
        }
        switch (below(8)) {
        case 0:
            return text + join + "PSN_ID IN ( " + number() + " , " + number() + " )";
        case 1:
            return text + join + "PSN_NAME INLIKE ( 'Sa%' , 'T%' )";
        default:
            return text;
        }
    }
    std::string order() {
        static constexpr const char *orders[] = {"", " ORDER BY PSN_ID", " ORDER BY PSN_NAME DESC",
                                                 " ORDER BY PSN_ID ASC"};
        return one_of(orders);
    }

    std::mt19937 random_;
};

struct gap {
    std::size_t place;
    bool quoted;
};

// Every blank, and the statement's end.
std::vector<gap> gaps_of(const std::string &sql) {
    std::vector<gap> gaps;
    bool quoted = false;
    for (std::size_t i = 0; i < sql.size(); ++i) {
        quoted = quoted != (sql[i] == '\'');
        if (sql[i] == ' ') {
            gaps.push_back({i, quoted});
        }
    }
    gaps.push_back({sql.size(), false});
    return gaps;
}

unsigned chosen_seed() {
    const char *const seed = std::getenv("QRYLIB_TEST_SEED");
    return seed == nullptr ? 20261 : static_cast<unsigned>(std::strtoul(seed, nullptr, 10));
}

TEST_F(notes, NothingForeignIsDroppedInSilence) {
    static constexpr const char *foreign[] = {" LIMIT 1",
                                              " and PSN_ID = 99",
                                              " xyz",
                                              " -- c",
                                              " /* c */",
                                              " ; xyz",
                                              " COLLATE NOCASE",
                                              " \"x\"",
                                              " ) x",
                                              " desc",
                                              " NOT",
                                              " 7",
                                              " ( 1 )",
                                              " =",
                                              " '",
                                              " 'a'",
                                              " order by PSN_ID",
                                              " or 1 = 1",
                                              " , x",
                                              " %",
                                              " AS P",
                                              " 'a' OR 'b'",
                                              " ) OR ( PSN_ID = 1",
                                              " UNION SELECT",
                                              " \u2019"};
    const unsigned seed = chosen_seed();
    SCOPED_TRACE("QRYLIB_TEST_SEED=" + std::to_string(seed));
    generator random(seed);
    int silent_inside_quotes = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::string sql = random.statement();
        SCOPED_TRACE(sql);
        ASSERT_EQ(check(sql)["notes"], json::array());
        const std::vector<gap> gaps = gaps_of(sql);
        const gap chosen = gaps[random.below(gaps.size())];
        const std::string word = random.one_of(foreign);
        const std::string changed = sql.substr(0, chosen.place) + word + sql.substr(chosen.place);
        const json answer = check(changed);
        if (!answer["notes"].empty() || answer["refusal"] != nullptr || answer["ok"] == false) {
            continue;
        }
        // All that may be kept in silence is a value's own text.
        EXPECT_TRUE(chosen.quoted) << changed;
        const std::string written = json(word.substr(1)).dump();
        EXPECT_NE(explain(changed).dump().find(written.substr(1, written.size() - 2)), std::string::npos)
            << changed;
        ++silent_inside_quotes;
    }
    EXPECT_GT(silent_inside_quotes, 0);
}

} // namespace
