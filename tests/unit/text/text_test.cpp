// UTF-8 decoding, escapes and trimming.
#include "tools/text/text.h"

#include <gtest/gtest.h>

namespace {

using qrytext::decode_character;
using qrytext::printable;

void expect_character(const std::string &bytes, char32_t code_point) {
    EXPECT_EQ(decode_character(bytes).code_point, code_point);
    EXPECT_EQ(decode_character(bytes).length, bytes.size());
}

TEST(text, decodes_every_length) {
    expect_character("A", U'A');
    expect_character("\xC3\xA9", U'\u00E9');
    expect_character("\xE3\x81\x82", U'\u3042');
    expect_character("\xF0\x9F\x98\x80", U'\U0001F600');
    expect_character("\xF4\x8F\xBF\xBF", 0x10FFFF);
}

TEST(text, refuses_what_is_not_utf8_one_byte_at_a_time) {
    for (const char *const bytes : {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80",
                                    "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF"}) {
        EXPECT_EQ(decode_character(bytes).code_point, std::nullopt) << printable(bytes);
        EXPECT_EQ(decode_character(bytes).length, 1U) << printable(bytes);
    }
}

TEST(text, printable_leaves_ordinary_text_alone) {
    EXPECT_EQ(printable("O'Hara 佐藤 \\"), "O'Hara 佐藤 \\");
    EXPECT_EQ(printable(""), "");
}

TEST(text, printable_shows_what_is_invisible) {
    EXPECT_EQ(printable("a\u202Eb\u200B\uFEFF\U000E0041"), "a\\u{202E}b\\u{200B}\\u{FEFF}\\u{E0041}");
    EXPECT_EQ(printable("葛\U000E0100"), "葛\U000E0100"); // the form that a name is written in
    EXPECT_EQ(printable(printable("\x1B\u202E")), printable("\x1B\u202E"));
}

TEST(text, printable_lines_keep_their_ends_and_tabs) {
    EXPECT_EQ(qrytext::printable_lines("a\tb\nc\r\n\r\n\x1B\u202E"), "a\tb\nc\r\n\r\n\\x1B\\u{202E}");
    EXPECT_EQ(qrytext::printable_lines("a\rb\r"), "a\\x0Db\\x0D");
}

TEST(text, json_keeps_its_own_escapes) {
    EXPECT_EQ(qrytext::escaped_json("[\"\\u001b 鈴\x7F\u0085\u202E\U000E0041\"]\n"),
              "[\"\\u001b 鈴\\u007f\\u0085\\u202e\\udb40\\udc41\"]\n");
}

TEST(text, printable_escapes_byte_by_byte) {
    EXPECT_EQ(printable("\xC2\x85"), "\\xC2\\x85");
    EXPECT_EQ(printable("a\xE3\x81"), "a\\xE3\\x81");
}

TEST(text, width_counts_terminal_columns) {
    EXPECT_EQ(qrytext::text_width(""), 0U);
    EXPECT_EQ(qrytext::text_width("Dubois"), 6U);
    EXPECT_EQ(qrytext::text_width("M\u00FCller"), 6U);
    EXPECT_EQ(qrytext::text_width("\u6E21\u8FBA"), 4U);
    EXPECT_EQ(qrytext::text_width("\u30EF\u30BF\u30CA\u30D9 \u30DE"), 11U);
    EXPECT_EQ(qrytext::text_width("\uFF76\uFF85"), 2U);
    EXPECT_EQ(qrytext::text_width("\uFF01"), 2U);
}

TEST(text, trim_takes_blanks_and_nothing_else) {
    EXPECT_EQ(qrytext::trim("  a b "), "a b");
    EXPECT_EQ(qrytext::trim("\ta\t"), "\ta\t");
    EXPECT_EQ(qrytext::trim("  "), "");
    EXPECT_EQ(qrytext::trim(""), "");
}

} // namespace
