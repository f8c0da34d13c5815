// A table whose key columns are texts: the shipped device has numbers alone.
#include "unit/exec/exec_test.h"

namespace {

using test::query_of;

using texts = std::vector<std::string>;

constexpr std::uint32_t cards = 0x05180999;
constexpr std::uint32_t card = 0x43810001;
constexpr std::uint32_t code = 0x43810002;

class text_key : public test::exec_test {
  protected:
    static query_of statement(QRY_LIB_DB_QUERY_TYPE type) { return query_of(type, "usrac_db", "CARD_TBL"); }

    static query_of insert_of(const char *card_text, const char *code_text) {
        return statement(QRY_LIB_DB_QUERY_TYPE_INSERT)
            .value("CARD", card_text)
            .value("CODE", code_text)
            .value("OWNER", "Sato");
    }

    // Makes every record a free one of that key.
    static void set_free_key(const char *card_text, const char *code_text) {
        for (const std::uint32_t record : {test::in_default, 0u, 1u, 2u}) {
            test::put_text(cards, record, card, card_text);
            test::put_text(cards, record, code, code_text);
        }
    }

    texts in_use() {
        qry_lib_db_rowset_term(&rowset);
        EXPECT_EQ(
            executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_SELECT).column("CARD").column("CODE"), rowset), 0);
        return rows();
    }
};

TEST_F(text_key, tells_records_in_use_and_finds_them_again) {
    EXPECT_EQ(in_use(), texts{});
    EXPECT_EQ(executer.exec(insert_of("A-1", "x")), 0);
    EXPECT_EQ(executer.exec(insert_of("A-2", "x")), 0);
    EXPECT_EQ(executer.exec(insert_of("A-1", "x").value("OWNER", "Ito")), 0);
    EXPECT_EQ(in_use(), (texts{"A-1,x", "A-2,x"}));
}

TEST_F(text_key, of_the_default_record_is_refused) {
    EXPECT_EQ(executer.exec(insert_of("", "x")), test::invalid_argument);
    set_free_key("12345678", "123");
    EXPECT_EQ(executer.exec(insert_of("1234567", "x")), 0);
    EXPECT_EQ(executer.exec(insert_of("A-1", "123")), test::invalid_argument);
}

TEST_F(text_key, that_fills_its_element_ends_with_it) {
    // Both defaults come without a terminator, the shorter one behind the longer one.
    set_free_key("12345678", "abcd");
    EXPECT_EQ(in_use(), texts{});
    test::put_text(cards, 1, card, "1234567");
    EXPECT_EQ(in_use(), texts{}); // each column of the key must differ
    test::put_text(cards, 1, code, "abc");
    EXPECT_EQ(in_use(), texts{"1234567,abc"});
}

} // namespace
