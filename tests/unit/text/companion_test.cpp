// The companion through its C interface: what each answer says of a statement on a small device.
#include <qrytext/qrytext.h>
#include <qrytext/qrytext.hpp>

#include <qrylib/element_table.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <thread>
#include <vector>

#include "platform/host/qryhost.h"

namespace {

using nlohmann::json;

constexpr const char *three_people = R"({"format":1,"databases":{"adbk_db":{"PSN_TBL":{"records":[
    {"PSN_ID":1,"PSN_NAME":"Sato Kenji"},{"PSN_ID":2,"PSN_NAME":"Becker"},{"PSN_ID":5,"PSN_NAME":"Abe"}]}}}})";

class companion : public testing::Test {
  protected:
    void SetUp() override {
        qryhost_fail_clear();
        ASSERT_EQ(json::parse(qrytext_load(three_people, 0))["ok"], true);
        open(0);
    }
    void TearDown() override { qryhost_fail_clear(); }

    void open(std::uint32_t flags) { session.reset(qrytext_open("adbk_db", flags)); }
    json run(const std::string &sql, const char *parameters = nullptr) {
        return json::parse(qrytext_run(session.get(), sql.c_str(), parameters));
    }
    json check(const std::string &sql) { return json::parse(qrytext_check(session.get(), sql.c_str())); }
    json explain(const std::string &sql) { return json::parse(qrytext_explain(session.get(), sql.c_str())); }
    std::int64_t count() { return run("SELECT COUNT(*) FROM PSN_TBL")["rows"][0][0]; }

    qrytext::session session;
};

json changes(int added, int replaced, int changed, int deleted) {
    return {{"added", added}, {"replaced", replaced}, {"changed", changed}, {"deleted", deleted}};
}

TEST_F(companion, ASelectAnswersWithColumnsAndRows) {
    const json answer = run("SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3;");
    EXPECT_EQ(answer["ok"], true);
    EXPECT_EQ(answer["kind"], "select");
    EXPECT_EQ(answer["name"], "QRY_LIB_OK");
    EXPECT_EQ(answer["rows"], json::parse(R"([[1,"Sato Kenji"],[2,"Becker"]])"));
    EXPECT_EQ(answer["columns"], json::parse(R"([{"name":"PSN_ID","table":"PSN_TBL","type":"number"},
                                                {"name":"PSN_NAME","table":"PSN_TBL","type":"text"}])"));
    EXPECT_EQ(answer["changed"], changes(0, 0, 0, 0));
    EXPECT_FALSE(answer.contains("traces"));
    EXPECT_FALSE(answer.contains("counts"));
}

TEST_F(companion, ColumnsAreToldOfAnAnswerWithoutRowsToo) {
    const json answer = run("SELECT PSN_NAME, PSN_ID FROM PSN_TBL WHERE PSN_ID = 99");
    EXPECT_EQ(answer["rows"], json::array());
    EXPECT_EQ(answer["columns"][0]["type"], "text");
    EXPECT_EQ(answer["columns"][1]["type"], "number");
    EXPECT_FALSE(run("DELETE FROM PSN_TBL WHERE PSN_ID = 99").contains("rows"));
}

TEST_F(companion, EveryKindIsNamed) {
    EXPECT_EQ(check("SELECT COUNT(*) FROM PSN_TBL")["kind"], "count");
    EXPECT_EQ(check("INSERT INTO PSN_TBL (PSN_ID) VALUES (7)")["kind"], "insert");
    EXPECT_EQ(check("UPDATE PSN_TBL SET INTEG_ID = 1")["kind"], "update");
    EXPECT_EQ(check("DELETE FROM PSN_TBL")["kind"], "delete");
    EXPECT_EQ(check("DROP TABLE PSN_TBL")["kind"], "drop");
    EXPECT_EQ(check("CREATE INDEX I")["kind"], "create");
    EXPECT_EQ(check("SELECTED X")["kind"], "unknown");
    EXPECT_EQ(count(), 3) << "checking runs nothing";
}

TEST_F(companion, ChangesAreCounted) {
    EXPECT_EQ(run("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (7, 'New')")["changed"],
              changes(1, 0, 0, 0));
    EXPECT_EQ(run("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (5, 'Other')")["changed"],
              changes(0, 1, 0, 0));
    EXPECT_EQ(run("UPDATE PSN_TBL SET INTEG_ID = 9, PSN_NAME = 'X' WHERE PSN_ID < 3")["changed"],
              changes(0, 0, 2, 0));
    EXPECT_EQ(run("UPDATE PSN_TBL SET INTEG_ID = 9 WHERE PSN_ID = 70")["changed"], changes(0, 0, 0, 0));
    EXPECT_EQ(run("DELETE FROM PSN_TBL WHERE PSN_ID > 1")["changed"], changes(0, 0, 0, 3));
    EXPECT_EQ(run("DROP TABLE PSN_TBL")["changed"], changes(0, 0, 0, 1));
}

TEST_F(companion, AChangeThatFailsHalfWayTellsWhatWasWritten) {
    qryhost_fail(QRYHOST_INIT_TABLE, 2, 1, 0x5243);
    const json deleted = run("DELETE FROM PSN_TBL");
    EXPECT_EQ(deleted["ok"], false);
    EXPECT_EQ(deleted["changed"], changes(0, 0, 0, 2));
    qryhost_fail(QRYHOST_SET_TABLE, 0, 1, 0x5243);
    EXPECT_EQ(run("UPDATE PSN_TBL SET INTEG_ID = 3")["changed"], changes(0, 0, 0, 0));
}

TEST_F(companion, ARefusalHasItsPlace) {
    const json answer = run("SELECT PSN_NAM FROM PSN_TBL");
    EXPECT_EQ(answer["ok"], false);
    EXPECT_EQ(answer["code"], QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(answer["refusal"]["from"], 7);
    EXPECT_EQ(answer["refusal"]["to"], 14);
    EXPECT_EQ(answer["refusal"]["text"], "PSN_TBL has no column \"PSN_NAM\"");
    EXPECT_EQ(answer["refusal"]["hint"], "did you mean PSN_NAME?");
    EXPECT_EQ(check("SELECT PSN_NAM FROM PSN_TBL")["refusal"], answer["refusal"]);
    EXPECT_EQ(check("SELECT PSN_NAME FROM PSN_TBL")["refusal"], nullptr);
}

TEST_F(companion, AnInsertThatCannotBeReadIsARefusal) {
    const json answer = run("INSERT INTO PSN_TBL (PSN_ID) VALUES (x)");
    EXPECT_EQ(answer["code"], QRY_LIB_NOT_ACCEPTED);
    EXPECT_EQ(answer["refusal"]["from"], 37);
}

TEST_F(companion, ValuesStandForQuestionMarks) {
    EXPECT_EQ(run("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (?, ?)", R"([9, "O'Hara, 'x' ?"])")["ok"],
              true);
    EXPECT_EQ(run("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = ?", "[9]")["rows"][0][0], "O'Hara, 'x' ?");
    EXPECT_EQ(run("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ? OR PSN_ID = ?", R"(["Abe", 1])")["rows"],
              json::parse("[[1],[5]]"));
    EXPECT_EQ(run("UPDATE PSN_TBL SET PSN_NAME = ? WHERE PSN_ID = ?", R"(["it's", 1])")["ok"], true);
    EXPECT_EQ(run("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?", R"(["it's"])")["rows"],
              json::parse("[[1]]"));
    EXPECT_EQ(run("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = '?'", "[]")["rows"], json::array());
}

TEST_F(companion, AValueThatWouldBeReadOtherwiseIsRefused) {
    for (const char *const values : {R"(["a AND b"])", R"(["a, b"])", R"(["x ORDER BY y"])", R"([1.5])",
                                     "[null]", "[4294967296]", "[]", "[1,2]", "1", "{"}) {
        const json answer = run("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?", values);
        EXPECT_EQ(answer["ok"], false) << values;
        EXPECT_NE(answer["refusal"], nullptr) << values;
    }
}

TEST_F(companion, PlacesAreThoseOfTheTextWithTheQuestionMarks) {
    const json answer = run("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ? AND NO_COLUMN = ?", "[1000000, 3]");
    EXPECT_EQ(answer["refusal"]["from"], 48);
    EXPECT_EQ(answer["refusal"]["to"], 57);
}

TEST_F(companion, TextThatIsNotUtf8IsHex) {
    EXPECT_EQ(run("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (6, '\x83\x61')")["ok"], true);
    EXPECT_EQ(run("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 6")["rows"][0][0], json({{"hex", "8361"}}));
    EXPECT_EQ(run("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?", R"([{"hex":"8361"}])")["rows"],
              json::parse("[[6]]"));
    EXPECT_EQ(json::parse(qrytext_export(session.get(), "csv"))["text"], "PSN_ID\r\n6\r\n");
}

TEST_F(companion, AReadonlySessionRunsSelectsAlone) {
    open(QRYTEXT_READONLY);
    EXPECT_EQ(run("DELETE FROM PSN_TBL")["ok"], false);
    EXPECT_NE(run("CREATE INDEX I")["refusal"], nullptr);
    EXPECT_EQ(count(), 3);
}

TEST_F(companion, TracesAndCountsComeWhenAskedFor) {
    open(QRYTEXT_TRACES | QRYTEXT_COUNTS);
    const json answer = run("SELECT X FROM PSN_TBL ORDER BY X, Y");
    ASSERT_EQ(answer["traces"].size(), 4U);
    EXPECT_EQ(answer["traces"][0]["function"], "analyze_sort");
    EXPECT_EQ(answer["traces"][0]["line"], 2182);
    EXPECT_EQ(answer["traces"][0]["code"], QRY_LIB_NOT_ACCEPTED);
    EXPECT_NE(answer["traces"][0]["cause"], "");
    EXPECT_GT(answer["counts"]["blocks"], 0);
    EXPECT_GT(answer["counts"]["calls"]["alloc"], 0);
}

struct seen_lines {
    int number = 0;
    static void count(void *context, std::uint32_t, std::uint32_t, std::uint32_t, const char *) {
        ++static_cast<seen_lines *>(context)->number;
    }
};

TEST_F(companion, TheSinkThatWasSetHearsTheStatementsAndIsGivenBack) {
    seen_lines seen;
    qryhost_set_trace_sink(seen_lines::count, &seen);
    run("SELECT X FROM PSN_TBL ORDER BY X, Y");
    EXPECT_EQ(seen.number, 4) << "the companion's own look-ups are nobody's";
    qryhost_trace_sink sink = nullptr;
    void *context = nullptr;
    qryhost_get_trace_sink(&sink, &context);
    EXPECT_EQ(sink, seen_lines::count);
    EXPECT_EQ(context, &seen);
    qryhost_set_trace_sink(nullptr, nullptr);
}

TEST_F(companion, AStatementIsExplained) {
    const json one = explain("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1,2) ORDER BY PSN_ID DESC");
    EXPECT_EQ(one["ok"], true);
    EXPECT_EQ(one["tables"], json::parse(R"(["PSN_TBL"])"));
    EXPECT_EQ(one["conditions"].size(), 2U);
    EXPECT_EQ(one["conditions"][1]["join"], "OR");
    EXPECT_EQ(one["order"], json::parse(R"({"column":"PSN_ID","direction":"DESC"})"));
    EXPECT_EQ(one["keys"].size(), 3U);
    EXPECT_EQ(one["keys"][0]["key"], "AND PSN_ID != 0");
    session.reset(qrytext_open("department_db", 0));
    const json join =
        explain("SELECT DEPT_TBL.NAME FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID");
    EXPECT_EQ(join["links"], json::parse(R"(["DEPT_TBL.ID = EDIT_CNT_TBL.ID"])"));
    EXPECT_EQ(explain("SELECT X FROM DEPT_TBL")["ok"], false);
}

TEST_F(companion, CandidatesHaveAKind) {
    const json found = json::parse(qrytext_complete(session.get(), "SELECT PSN_K FROM PSN_TBL", 12));
    EXPECT_EQ(found["from"], 7);
    EXPECT_EQ(found["to"], 12);
    EXPECT_EQ(found["candidates"], json::parse(R"([{"text":"PSN_KANA","kind":"column"}])"));
    EXPECT_EQ(json::parse(qrytext_complete(session.get(), "SEL", 99))["candidates"][0]["kind"], "keyword");
}

TEST_F(companion, SnapshotsAreComparedByKey) {
    const std::string before = qrytext_save(0);
    EXPECT_EQ(json::parse(qrytext_diff(before.c_str(), before.c_str()))["equal"], true);
    run("UPDATE PSN_TBL SET PSN_NAME = 'Y' WHERE PSN_ID = 2");
    run("DELETE FROM PSN_TBL WHERE PSN_ID = 1");
    run("INSERT INTO PSN_TBL (PSN_ID) VALUES (8)");
    const json found = json::parse(qrytext_diff(before.c_str(), qrytext_save(0)));
    EXPECT_EQ(found["equal"], false);
    ASSERT_EQ(found["tables"].size(), 1U);
    const json &changed = found["tables"][0]["changes"];
    ASSERT_EQ(changed.size(), 3U);
    EXPECT_EQ(changed[0]["key"]["PSN_ID"], 1);
    EXPECT_EQ(changed[0]["b"], nullptr);
    EXPECT_EQ(changed[1], json::parse(R"({"key":{"PSN_ID":2},"column":"PSN_NAME","a":"Becker","b":"Y"})"));
    EXPECT_EQ(changed[2]["a"], nullptr);
    EXPECT_EQ(changed[2]["key"]["PSN_ID"], 8);
}

// The place that the schema tells is read through the library, which must find there what was loaded.
TEST_F(companion, TheSchemaTellsWhereValuesLie) {
    const json schema = json::parse(qrytext_schema());
    const json &tables = schema["databases"][0]["tables"];
    const auto people =
        std::find_if(tables.begin(), tables.end(), [](const json &one) { return one["name"] == "PSN_TBL"; });
    ASSERT_NE(people, tables.end());
    const json &columns = (*people)["columns"];
    const auto name = std::find_if(columns.begin(), columns.end(),
                                   [](const json &one) { return one["name"] == "PSN_NAME"; });
    ASSERT_NE(name, columns.end());
    std::vector<char> value((*name)["size"].get<std::size_t>());
    ASSERT_EQ(qry_lib_tb_get_stc_table((*people)["category"], 1, (*name)["element"], value.data()), 0U);
    EXPECT_STREQ(value.data(), "Becker");
    EXPECT_EQ((*name)["offset"], 0);
}

TEST_F(companion, TheSchemaTellsWhichColumnsLieTogether) {
    const json schema = json::parse(qrytext_schema());
    std::map<json, std::set<json>> offsets_of_element;
    for (const json &column : schema["databases"][3]["tables"][8]["columns"]) {
        offsets_of_element[column["element"]].insert(column["offset"]);
    }
    const bool some_share = std::any_of(offsets_of_element.begin(), offsets_of_element.end(),
                                        [](const auto &one) { return one.second.size() > 1; });
    EXPECT_EQ(schema["databases"][3]["tables"][8]["name"], "S_JOB_LOG_SND_TBL");
    EXPECT_TRUE(some_share);
}

// A snapshot of two departments, whose codes may be masked.
std::string snapshot_of(const std::string &head, const std::string &code1, const std::string &code2) {
    return R"({"format":1,"snapshot":)" + head +
           R"(,"databases":{"department_db":{"DEPT_TBL":{"records":[{"ID":1,"DEPT_CODE":")" + code1 +
           R"("},{"ID":2,"DEPT_CODE":")" + code2 + R"("}]}}}})";
}

constexpr const char *masked_head =
    R"({"capacities":{"department_db":{"DEPT_TBL":101}},"masked":["DEPT_CODE"]})";
constexpr const char *plain_head = R"({"capacities":{"department_db":{"DEPT_TBL":101}}})";

TEST_F(companion, MaskedValuesAreComparedByTheirLength) {
    const std::string masked = snapshot_of(masked_head, "k3x", "q8");
    const json unknown =
        json::parse(qrytext_diff(masked.c_str(), snapshot_of(masked_head, "abc", "de").c_str()));
    EXPECT_EQ(unknown["equal"], true);
    EXPECT_EQ(unknown["masked"], json::parse(R"([{"database":"department_db","table":"DEPT_TBL",
                                                 "column":"DEPT_CODE","records":2}])"));
    const json longer =
        json::parse(qrytext_diff(snapshot_of(plain_head, "1010", "").c_str(), masked.c_str()));
    EXPECT_EQ(longer["equal"], false);
    ASSERT_EQ(longer["tables"][0]["changes"].size(), 2U);
    EXPECT_EQ(longer["tables"][0]["changes"][0]["masked"], true);
    EXPECT_EQ(longer["masked"], json::array());
    const std::string plain = snapshot_of(plain_head, "k3x", "q8");
    EXPECT_EQ(json::parse(qrytext_diff(plain.c_str(), plain.c_str()))["masked"], json::array());
}

TEST_F(companion, WhatOneSnapshotDoesNotCoverIsNotCompared) {
    const std::string part = snapshot_of(plain_head, "1", "2");
    const std::string other = R"({"format":1,"snapshot":{"capacities":{"adbk_db":{"PSN_TBL":10}}}})";
    const json found = json::parse(qrytext_diff(part.c_str(), other.c_str()));
    EXPECT_EQ(found["equal"], true);
    EXPECT_EQ(found["uncovered"], json::parse(R"([{"database":"adbk_db","table":"PSN_TBL","in":"b"},
                                                 {"database":"department_db","table":"DEPT_TBL","in":"a"}])"));
    EXPECT_EQ(json::parse(qrytext_load(part.c_str(), 0))["ok"], true); // the head is nobody's business
    EXPECT_EQ(json::parse(qrytext_diff(R"({"format":1,"snapshot":{"masked":[7]}})", part.c_str()))["text"],
              "a text is no fixture");
}

TEST_F(companion, ARefusedSnapshotTellsThePlaceAndChangesNothing) {
    const json answer = json::parse(
        qrytext_load(R"({"format":1,"databases":{"adbk_db":{"PSN_TBL":{"records":[{"PSN_ID":"x"}]}}}})", 0));
    EXPECT_EQ(answer["ok"], false);
    EXPECT_NE(answer["place"].get<std::string>().find("PSN_ID"), std::string::npos);
    EXPECT_EQ(count(), 3);
}

TEST_F(companion, NoArgumentIsTooOdd) {
    EXPECT_EQ(qrytext_open(nullptr, 0), nullptr);
    EXPECT_EQ(qrytext_open("no_db", 0), nullptr);
    EXPECT_EQ(json::parse(qrytext_run(nullptr, "SELECT", nullptr))["code"], QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(json::parse(qrytext_run(session.get(), nullptr, nullptr))["ok"], false);
    EXPECT_EQ(json::parse(qrytext_check(nullptr, nullptr))["ok"], false);
    EXPECT_EQ(json::parse(qrytext_explain(nullptr, nullptr))["ok"], false);
    EXPECT_EQ(json::parse(qrytext_complete(nullptr, nullptr, 3))["from"], 0);
    EXPECT_EQ(json::parse(qrytext_export(nullptr, "csv"))["ok"], false);
    EXPECT_EQ(json::parse(qrytext_export(session.get(), nullptr))["ok"], false);
    EXPECT_EQ(json::parse(qrytext_trace(nullptr))["known"], false);
    EXPECT_EQ(json::parse(qrytext_load(nullptr, 0))["ok"], false);
    EXPECT_EQ(json::parse(qrytext_diff(nullptr, nullptr))["equal"], false);
    qrytext_close(nullptr);
}

TEST_F(companion, AnAnswerStaysUntilTheSessionsNextCall) {
    const qrytext::session other(qrytext_open("adbk_db", 0));
    const char *const first = qrytext_run(session.get(), "SELECT PSN_ID FROM PSN_TBL", nullptr);
    const std::string copy = first;
    qrytext_run(other.get(), "SELECT PSN_NAME FROM PSN_TBL", nullptr);
    qrytext_version();
    EXPECT_EQ(first, copy);
}

TEST_F(companion, ThreadsMayHaveASessionEach) {
    const auto work = [] {
        const qrytext::session own(qrytext_open("adbk_db", QRYTEXT_TRACES));
        for (int i = 0; i < 50; ++i) {
            const json answer =
                json::parse(qrytext_run(own.get(), "SELECT X FROM PSN_TBL ORDER BY X, Y", nullptr));
            EXPECT_EQ(answer["traces"].size(), 4U);
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}

TEST_F(companion, AnErrorOfTheCppFaceGetsItsHint) {
    const qrylib::error refused(QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(qrytext::hint(refused, "SELECT NAMEN FROM DEPT_TBL", "department_db"),
              "DEPT_TBL has no column \"NAMEN\": did you mean NAME?");
    EXPECT_EQ(qrytext::hint(qrylib::error(QRY_LIB_NO_MEMORY), "SELECT"), "");
    EXPECT_EQ(qrytext::hint(refused, "SELECT PSN_ID FROM PSN_TBL"), "");
    EXPECT_EQ(qrytext::hint(refused, "SELECT", "no_db"), "");
}

} // namespace
