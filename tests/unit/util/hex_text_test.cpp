// Bytes as hexadecimal text and back.
#include <qrylib/device_data.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using bytes = std::vector<std::uint8_t>;

bytes to_bytes(const std::string &text, std::uint16_t count) {
    bytes out(count, 0x55);
    qry_lib_convert_to_Bin(out.data(), text.c_str(), count);
    return out;
}

TEST(hex_text, bytes_become_lower_case_digits) {
    char out[8] = "-------";
    const bytes in = {0x00, 0xAB, 0x7F};
    qry_lib_convert_to_Hex(out, in.data(), 3);
    EXPECT_STREQ(out, "00ab7f");
    EXPECT_EQ(out[7], '\0');
}

TEST(hex_text, no_bytes_become_an_empty_string) {
    char out[] = "untouched";
    const std::uint8_t byte = 1;
    qry_lib_convert_to_Hex(out, &byte, 0);
    EXPECT_EQ(std::string(out, 5), std::string("\0ntou", 5));
    out[0] = 'x';
    qry_lib_convert_to_Hex(out, nullptr, 3);
    EXPECT_STREQ(out, "");
    qry_lib_convert_to_Hex(nullptr, &byte, 1);
}

TEST(hex_text, digits_of_either_case_become_bytes) {
    EXPECT_EQ(to_bytes("00ab7F", 3), (bytes{0x00, 0xAB, 0x7F}));
    EXPECT_EQ(to_bytes("AbCdEf0123456789", 8), (bytes{0xAB, 0xCD, 0xEF, 0x01, 0x23, 0x45, 0x67, 0x89}));
}

TEST(hex_text, an_invalid_pair_becomes_ff_and_the_conversion_goes_on) {
    EXPECT_EQ(to_bytes("0G", 1), (bytes{0xFF}));
    EXPECT_EQ(to_bytes("G0", 1), (bytes{0xFF}));
    EXPECT_EQ(to_bytes("g012 34", 3), (bytes{0xFF, 0x12, 0xFF}));
}

TEST(hex_text, only_the_sixteen_digits_of_both_cases_are_digits) {
    for (int code = 0; code < 256; ++code) {
        const auto letter = static_cast<char>(code);
        const bool digit = std::string("0123456789abcdefABCDEF").find(letter) != std::string::npos;
        EXPECT_EQ(to_bytes({letter, '0'}, 1)[0] == 0xFF, !digit) << code;
        EXPECT_EQ(to_bytes({'0', letter}, 1)[0] == 0xFF, !digit) << code;
    }
}

TEST(hex_text, a_text_that_ends_inside_a_pair_is_not_read_further) {
    EXPECT_EQ(to_bytes("1", 1), (bytes{0xFF}));
    const char empty[1] = {'\0'};
    std::uint8_t out = 0;
    qry_lib_convert_to_Bin(&out, empty, 1);
    EXPECT_EQ(out, 0xFF);
}

TEST(hex_text, nothing_to_convert_writes_nothing) {
    std::uint8_t out = 0x55;
    qry_lib_convert_to_Bin(&out, "12", 0);
    qry_lib_convert_to_Bin(&out, nullptr, 1);
    qry_lib_convert_to_Bin(nullptr, "12", 1);
    EXPECT_EQ(out, 0x55);
}

TEST(hex_text, the_largest_count_survives_a_round_trip) {
    bytes in(UINT16_MAX);
    for (std::size_t i = 0; i < in.size(); ++i) {
        in[i] = static_cast<std::uint8_t>(i * 7);
    }
    std::string text(2 * in.size(), '-');
    qry_lib_convert_to_Hex(&text[0], in.data(), UINT16_MAX);
    EXPECT_EQ(to_bytes(text, UINT16_MAX), in);
}

} // namespace
