// Names that were nearly typed.
#include "tools/text/near_match.h"

#include <gtest/gtest.h>

namespace {

using qrytext::did_you_mean;
using qrytext::nearest;

const std::vector<std::string> names = {"PSN_ID", "PSN_NAME", "PSN_KANA"};

TEST(near_match, the_nearest_name_is_found) {
    EXPECT_EQ(nearest("PSN_NAM", names), "PSN_NAME");
    EXPECT_EQ(nearest("PSN_NMAE", names), "PSN_NAME");
    EXPECT_EQ(nearest("PSNID", names), "PSN_ID");
    EXPECT_EQ(nearest("PSN_KANAS", names), "PSN_KANA");
}

TEST(near_match, case_does_not_matter) {
    EXPECT_EQ(nearest("psn_kana", names), "PSN_KANA");
    EXPECT_EQ(nearest("X", {"x"}), "x");
}

TEST(near_match, a_far_name_is_none) {
    EXPECT_EQ(nearest("TOTAL", names), "");
    EXPECT_EQ(nearest("", names), "");
    EXPECT_EQ(nearest("PSN_ID", {}), "");
    EXPECT_EQ(nearest(std::string(100000, 'P'), names), "");
}

TEST(near_match, the_question_names_it) {
    EXPECT_EQ(did_you_mean("PSN_IDD", names), "; did you mean PSN_ID?");
    EXPECT_EQ(did_you_mean("TOTAL", names), "");
    EXPECT_EQ(qrytext::near_hint("PSN_IDD", names), "did you mean PSN_ID?");
    EXPECT_EQ(qrytext::near_hint("TOTAL", names), "");
}

TEST(near_match, only_ascii_letters_become_capitals) {
    EXPECT_EQ(qrytext::in_capitals("az_09 ü"), "AZ_09 ü");
}

} // namespace
