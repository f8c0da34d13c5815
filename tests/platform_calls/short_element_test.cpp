// A platform whose name elements are shorter than the schema's column and have no end: what a read does not
// write must be zero, whatever was read into the same buffer before.
#include "platform_calls/recorder.h"
#include "unit/query_support.h"

namespace {

using test::texts;

constexpr std::uint32_t person_name = 0x4091F000;

class short_element : public test::query_test {
  protected:
    short_element() {
        EXPECT_EQ(put("PSN_TBL", {{"PSN_ID", "1"}, {"PSN_NAME", "Wolfgang Amadeus"}, {"PSN_KANA", kana}}),
                  0u);
        EXPECT_EQ(put("PSN_TBL", {{"PSN_ID", "2"}, {"PSN_NAME", "Sato Kenji"}, {"PSN_KANA", kana}}), 0u);
        EXPECT_EQ(put("PSN_TBL", {{"PSN_ID", "3"}, {"PSN_NAME", "Sato Kenji A"}, {"PSN_KANA", kana}}), 0u);
        test::read_without_end(person_name);
    }
    ~short_element() override { test::read_without_end(0); }

    const char *kana = "a reading that is longer than any of the names";
};

TEST_F(short_element, is_found_by_its_value) {
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'Sato Kenji'"), (texts{"2"}));
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL WHERE PSN_KANA LIKE 'a%' AND PSN_NAME = 'Sato Kenji'"),
              (texts{"2"}));
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL WHERE PSN_KANA != 'x' AND PSN_NAME != 'Sato Kenji'"),
              (texts{"1", "3"}));
}

TEST_F(short_element, is_read_to_its_end) {
    EXPECT_EQ(rows("SELECT PSN_KANA, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 2"),
              (texts{std::string(kana) + ",Sato Kenji"}));
    EXPECT_EQ(rows("SELECT PSN_NAME FROM PSN_TBL"),
              (texts{"Wolfgang Amadeus", "Sato Kenji", "Sato Kenji A"}));
}

TEST_F(short_element, is_sorted_by_its_value) {
    ASSERT_EQ(
        put("PSN_TBL", {{"PSN_NAME", "Zz longer than the next"}}, QRY_LIB_DB_QUERY_TYPE_UPDATE, "PSN_ID = 1"),
        0u);
    EXPECT_EQ(rows("SELECT PSN_ID FROM PSN_TBL ORDER BY PSN_NAME"), (texts{"2", "3", "1"}));
}

} // namespace
