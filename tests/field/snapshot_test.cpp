// Snapshots of the workstation's device, taken through the contract, and what putting one back does.
#include "tools/field/snapshot.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/element_table.h"
#include "platform/host/qryhost.h"
#include "tools/field/restore.h"

namespace {

using nlohmann::json;

constexpr const char *office = R"({"format":1,"settings":{"doublecount_2":3},"databases":{
    "adbk_db":{"PSN_TBL":{"default":{"INTEG_ID":9},"records":[
        {"PSN_ID":1,"PSN_NAME":"Sato"},{"record":4,"PSN_ID":2,"PSN_NAME":{"hex":"8361"}}]}},
    "department_db":{"DEPT_TBL":{"records":[
        {"ID":1,"DEPT_CODE":"D 'x\" 1"},{"ID":2,"DEPT_CODE":"D1020"},{"ID":3}]}},
    "log_db":{"P_JOB_LOG_TBL":{"records":[{"JOB_ID":7,"DEPT_CODE":"D1020","USER_NAME":"Sato"}]},
              "S_SSFC_LOG_TBL":{"records":[{"JOB_ID":7,"STAFF_NO":"123456789012345678901234567"}]}}}})";

std::string saved() {
    std::string text;
    const auto keep = [](void *context, const char *json_text) {
        *static_cast<std::string *>(context) = json_text;
    };
    EXPECT_EQ(qryhost_save_text(keep, &text), 0) << qryhost_error();
    return text;
}

class snapshot : public testing::Test {
  protected:
    void SetUp() override { load(office); }
    void TearDown() override { qryhost_fail_clear(); }

    static void load(const std::string &text) {
        ASSERT_EQ(qryhost_load_text(text.c_str()), 0) << qryhost_error();
    }

    static std::string take(bool is_masked, const std::vector<std::string> &databases = {},
                            const std::vector<std::string> &tables = {}) {
        const field::selection chosen = field::select(databases, tables);
        std::vector<std::uint8_t> region = field::read_device(chosen);
        if (is_masked) {
            field::mask_secrets(region);
        }
        return field::snapshot_text(region, chosen, is_masked);
    }

    static field::restore_plan restore(const std::string &text) {
        field::restore_plan plan = field::plan_restore(field::parse_snapshot(text));
        field::carry_out(plan);
        return plan;
    }
};

TEST_F(snapshot, HoldsWhatTheWorkstationSaves) {
    json taken = json::parse(take(false));
    EXPECT_FALSE(taken["snapshot"].contains("masked"));
    EXPECT_EQ(taken["snapshot"]["capacities"]["department_db"]["DEPT_TBL"], 101);
    taken.erase("snapshot");
    EXPECT_EQ(taken, json::parse(saved()));
}

TEST_F(snapshot, MasksSecretsAndLetsThemJoin) {
    const std::string text = take(true);
    const json taken = json::parse(text);
    for (const char *const secret : {"D1020", "123456789", "D '", "4431303230"}) {
        EXPECT_EQ(text.find(secret), std::string::npos) << secret;
    }
    const json &departments = taken["databases"]["department_db"]["DEPT_TBL"]["records"];
    EXPECT_EQ(departments[0]["DEPT_CODE"].get<std::string>().size(), 7U);
    EXPECT_EQ(departments[1]["DEPT_CODE"],
              taken["databases"]["log_db"]["P_JOB_LOG_TBL"]["records"][0]["DEPT_CODE"]);
    EXPECT_NE(departments[1]["DEPT_CODE"], departments[0]["DEPT_CODE"]);
    EXPECT_FALSE(departments[2].contains("DEPT_CODE"));
    EXPECT_NE(text.find("Sato"), std::string::npos);
    load(text);
    EXPECT_EQ(json::parse(saved())["databases"], taken["databases"]);
}

TEST_F(snapshot, TakesTheTablesThatAreNamed) {
    const json taken = json::parse(take(true, {"log_db"}, {"adbk_db.PSN_TBL"}));
    EXPECT_FALSE(taken.contains("settings"));
    EXPECT_EQ(taken["databases"].size(), 2U);
    EXPECT_EQ(taken["snapshot"]["capacities"]["log_db"].size(), 11U);
    EXPECT_EQ(taken["snapshot"]["capacities"]["adbk_db"], json::parse(R"({"PSN_TBL":10})"));
    EXPECT_THROW(take(true, {"no_db"}), field::failure);
    EXPECT_THROW(take(true, {}, {"adbk_db.NO_TBL"}), field::failure);
    EXPECT_THROW(take(true, {}, {"PSN_TBL"}), field::failure);
}

TEST_F(snapshot, SaysWhichValueThePlatformRefuses) {
    qryhost_fail(QRYHOST_GET_TABLE, 40, 1, 0x5241);
    try {
        take(true);
        FAIL() << "nothing was refused";
    } catch (const field::failure &refused) {
        EXPECT_NE(std::string(refused.what()).find("code 0x5241"), std::string::npos);
    }
}

TEST_F(snapshot, GoesBackWithItsSecrets) {
    const std::string before = saved();
    const std::string text = take(false);
    ASSERT_EQ(qryhost_reset(), 0);
    const field::restore_plan plan = restore(text);
    EXPECT_EQ(saved(), before);
    EXPECT_EQ(plan.kept_secrets, 0U);
    for (const std::string &line : plan.lines) {
        EXPECT_EQ(line.find("D1020"), std::string::npos) << line;
    }
    EXPECT_TRUE(restore(text).changes.empty());
}

TEST_F(snapshot, LeavesMaskedSecretsOfTheDeviceAlone) {
    const std::string text = take(true);
    load(R"({"format":1,"databases":{"department_db":{"DEPT_TBL":{"records":[
        {"ID":1,"DEPT_CODE":"new"},{"ID":5,"DEPT_CODE":"other"},{"ID":3,"DEPT_CODE":"added"}]}}}})");
    const field::restore_plan plan = restore(text);
    const json now = json::parse(saved())["databases"]["department_db"]["DEPT_TBL"]["records"];
    EXPECT_EQ(now,
              json::parse(R"([{"record":0,"ID":1,"DEPT_CODE":"new"},{"record":1,"ID":2,"DEPT_CODE":"other"},
                                   {"record":2,"ID":3}])"));
    EXPECT_EQ(plan.kept_secrets, 4U);
}

TEST_F(snapshot, TouchesOnlyWhatItCovers) {
    const std::string text = take(true, {}, {"adbk_db.PSN_TBL"});
    load(R"({"format":1,"settings":{"doublecount_1":5},"databases":{
        "adbk_db":{"PSN_TBL":{"records":[{"PSN_ID":8}]}},
        "department_db":{"DEPT_TBL":{"records":[{"ID":77}]}}}})");
    restore(text);
    const json now = json::parse(saved());
    EXPECT_EQ(now["settings"]["doublecount_1"], 5);
    EXPECT_EQ(now["databases"]["department_db"]["DEPT_TBL"]["records"][0]["ID"], 77);
    EXPECT_EQ(now["databases"]["adbk_db"], json::parse(text)["databases"]["adbk_db"]);
}

TEST_F(snapshot, RefusesWhatDoesNotFitBeforeTheFirstWrite) {
    const std::string before = saved();
    const char *const refused[] = {
        "",
        "{",
        R"({"format":2})",
        R"({"format":1,"snapshot":7})",
        R"({"format":1,"snapshot":{}})",
        R"({"format":1,"snapshot":{"capacities":[]}})",
        R"({"format":1,"snapshot":{"capacities":{"no_db":{}}}})",
        R"({"format":1,"snapshot":{"capacities":{"adbk_db":{"NO_TBL":1}}}})",
        R"({"format":1,"snapshot":{"capacities":{"adbk_db":{"PSN_TBL":10}},"masked":"PASSWD"}})",
        R"({"format":1,"snapshot":{"capacities":{"adbk_db":{"PSN_TBL":10}},"masked":[1]}})",
        R"({"format":1,"databases":{"adbk_db":{"PSN_TBL":{"records":[{"record":10,"PSN_ID":3}]}}}})",
        R"({"format":1,"databases":{"adbk_db":{"PSN_TBL":{"records":[{"PSN_ID":70000}]}}}})",
    };
    for (const char *const text : refused) {
        EXPECT_ANY_THROW(restore(text)) << text;
        EXPECT_EQ(saved(), before) << text;
    }
}

TEST_F(snapshot, SaysHowFarItCameWhenAWriteIsRefused) {
    const std::string text = take(false);
    ASSERT_EQ(qryhost_reset(), 0);
    const field::restore_plan plan = field::plan_restore(field::parse_snapshot(text));
    qryhost_fail(QRYHOST_SET_TABLE, 3, 1, 0x5241);
    try {
        field::carry_out(plan);
        FAIL() << "nothing was refused";
    } catch (const field::failure &failed) {
        EXPECT_NE(std::string(failed.what()).find("; 3 of "), std::string::npos) << failed.what();
    }
}

} // namespace
