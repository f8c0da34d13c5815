// Secrets in the texts of statements: whatever they hold, nothing of them stays, and what is no secret does.
#include "tools/field/text_mask.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using field::masking;

// The text with runs of tokens as "#": what was masked has other characters and the same length.
class text_mask : public testing::Test {
  protected:
    std::string masked(std::string text) const {
        field::mask_text(masks, text.data(), text.size());
        return text;
    }
    std::string token(std::string secret) const {
        masks.mask(secret.data(), secret.size());
        return secret;
    }

    masking masks;
};

TEST_F(text_mask, TakesTheTokenOfTheSecretItself) {
    EXPECT_EQ(masked("SELECT ID FROM ACCOUNT_TBL WHERE PASSWD = 'geheim'"),
              "SELECT ID FROM ACCOUNT_TBL WHERE PASSWD = '" + token("geheim") + "'");
    EXPECT_EQ(masked("PASSWD='geheim' AND ID = 3"), "PASSWD='" + token("geheim") + "' AND ID = 3");
    EXPECT_EQ(masked("ID = 3 OR ACCOUNT_TBL.PASSWD != geheim ORDER BY ID"),
              "ID = 3 OR ACCOUNT_TBL.PASSWD != " + token("geheim") + " ORDER BY ID");
    EXPECT_EQ(masked("DEPT_CODE LIKE 'D10%' ;"), "DEPT_CODE LIKE '" + token("D10") + "%' ;");
    EXPECT_EQ(masked("DEPT_CODE IN ('D10', 'D20')"),
              "DEPT_CODE IN ('" + token("D10") + "', '" + token("D20") + "')");
    EXPECT_EQ(masked("STAFF_NO INLIKE ('1%','2%') AND JOB_ID = 4"),
              "STAFF_NO INLIKE ('" + token("1") + "%','" + token("2") + "%') AND JOB_ID = 4");
}

TEST_F(text_mask, LeavesOtherTextsAlone) {
    for (const char *const text : {"SELECT PASSWD, ID FROM ACCOUNT_TBL WHERE ID = 3",
                                   "SELECT ID, PASSWD FROM ACCOUNT_TBL ORDER BY PASSWD DESC",
                                   "SELECT * FROM EDIT_CARD_INFO_TBL WHERE CARD_ID_SIZE = 4", "", "PASSWD",
                                   "PSN_NAME = 'PASSWDS'", "MY_PASSWD = 'x'"}) {
        EXPECT_EQ(masked(text), text);
    }
}

TEST_F(text_mask, LeavesNothingOfASecret) {
    const std::string secrets[] = {
        "two words", "it's",     "'quoted'",      "a\"b",       "a' b",  "\xE6\x97\xA5\xE6\x9C\xAC",
        "x AND y",   "a' AND b", "ORDER BY z",    "a' ORDER z", "(1,2)", "%_%",
        "ends'",     "' = '",    "a' OR 'b' = 'c"};
    for (const std::string &secret : secrets) {
        for (const std::string &quote : {std::string("'"), std::string("\"")}) {
            const std::string value = quote + secret + quote;
            const std::string texts[] = {
                "SELECT ID FROM ACCOUNT_TBL WHERE PASSWD = " + value,
                "SELECT ID FROM ACCOUNT_TBL WHERE PASSWD = " + value + " AND ID = 1",
                "SELECT ID FROM ACCOUNT_TBL WHERE passwd=" + value + " ORDER BY ID",
                "SELECT ID FROM ACCOUNT_TBL WHERE PASSWD = " + value.substr(0, value.size() - 1), // cut
                "SELECT ID FROM ACCOUNT_TBL WHERE PASSWD " + value,
                "SELECT ID FROM ACCOUNT_TBL WHERE " + value + " = PASSWD",
                "INSERT INTO ACCOUNT_TBL (ID, PASSWD) VALUES (1, " + value + ")",
                "UPDATE ACCOUNT_TBL SET PASSWD = " + value + " WHERE ID = 1",
            };
            for (const std::string &text : texts) {
                EXPECT_EQ(masked(text).find(secret), std::string::npos) << text << "\n" << masked(text);
                EXPECT_EQ(masked(text).size(), text.size());
            }
        }
    }
}

// A text may end anywhere.
TEST_F(text_mask, ReadsCutTexts) {
    const std::string text =
        "SELECT ID FROM ACCOUNT_TBL WHERE PASSWD IN ('top secret', 'x') AND DEPT_CODE != 'two' ORDER BY ID;";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::string cut = masked(text.substr(0, length));
        EXPECT_EQ(cut.find("secret"), std::string::npos) << cut;
        EXPECT_EQ(cut.find("two"), std::string::npos) << cut;
    }
}

} // namespace
