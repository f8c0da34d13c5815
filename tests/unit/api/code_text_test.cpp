// The version, and a sentence for every code.
#include <qrylib/types.h>
#include <qrylib/version.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

constexpr std::uint32_t all_codes[] = {QRY_LIB_OK,
                                       QRY_LIB_NO_MEMORY,
                                       2,
                                       3,
                                       4,
                                       5,
                                       257,
                                       QRY_LIB_BAD_PARAMETER,
                                       QRY_LIB_ROWSET_NOT_CREATED,
                                       QRY_LIB_ROWSET_NOT_FILLED,
                                       QRY_LIB_TABLE_ARGUMENT,
                                       QRY_LIB_TABLE_ACCESS,
                                       QRY_LIB_NOT_ACCEPTED,
                                       QRY_LIB_NO_SUCH_ITEM,
                                       QRY_LIB_NO_FREE_ENTRY,
                                       QRY_LIB_INVALID_ARGUMENT,
                                       QRY_LIB_FAILURE};

TEST(code_text, the_version_is_that_of_the_interface) {
    EXPECT_STREQ(qry_lib_version(), "1.4.0");
}

TEST(code_text, every_code_has_a_sentence_of_its_own) {
    std::set<std::string> sentences = {qry_lib_code_text(0x1234)};
    for (const std::uint32_t code : all_codes) {
        const std::string sentence = qry_lib_code_text(code);
        EXPECT_TRUE(sentences.insert(sentence).second) << code << ": " << sentence;
        EXPECT_EQ(sentence.back(), '.') << sentence;
    }
}

TEST(code_text, any_other_code_is_called_foreign) {
    const std::string foreign = qry_lib_code_text(0x1234);
    EXPECT_NE(foreign, "");
    for (const std::uint32_t code : {6u, 256u, 0xDB01u, 0xDB03u, 0x10000u, UINT32_MAX}) {
        EXPECT_EQ(qry_lib_code_text(code), foreign) << code;
    }
}

} // namespace
