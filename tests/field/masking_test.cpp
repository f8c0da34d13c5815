// Masks: length and equality stay, and nothing else.
#include "tools/field/masking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

using field::masking;

std::string masked(const masking &masks, std::string text) {
    masks.mask(text.data(), text.size());
    return text;
}

TEST(masking, KeepsLengthAndEquality) {
    const masking masks;
    ASSERT_TRUE(masks.has_key());
    std::set<std::string> tokens;
    for (std::size_t length = 6; length < 200; ++length) {
        const std::string secret(length, 'a');
        const std::string token = masked(masks, secret);
        EXPECT_EQ(token.size(), length);
        EXPECT_NE(token, secret);
        EXPECT_EQ(token, masked(masks, secret));
        tokens.insert(token.substr(0, 6));
        tokens.insert(masked(masks, secret.substr(1) + "b").substr(0, 6));
    }
    EXPECT_GT(tokens.size(), 2U * 194 - 4); // neither a common beginning nor a common length shows
}

TEST(masking, DrawsAnotherKeyForEachFile) {
    const std::string secret = "4711 0815";
    EXPECT_NE(masked(masking(), secret), masked(masking(), secret));
}

TEST(masking, IsPlainTextWhateverTheSecretHolds) {
    const masking masks;
    const std::string token = masked(masks, "it's \"O\xE6\x97\xA5\xE6\x9C\xAC\x01\xFF AND (x), 'y'");
    EXPECT_TRUE(std::all_of(token.begin(), token.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    })) << token;
}

TEST(masking, LeavesTheEndsOfTextsAlone) {
    const masking masks;
    const std::string both = masked(masks, std::string("first\0\0second\0", 14));
    EXPECT_STREQ(both.c_str(), masked(masks, "first").c_str());
    EXPECT_STREQ(both.c_str() + 7, masked(masks, "second").c_str());
    EXPECT_EQ(masked(masks, ""), "");
}

} // namespace
