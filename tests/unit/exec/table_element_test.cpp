// The catalog: lookups by name, and the conversions between columns and element values.
#include <cstring>
#include <typeinfo>

#include "exec/qry_lib_table_element.h"
#include "unit/exec/exec_test.h"

namespace {

using norvane::qry_lib_table_element;
using norvane::qry_lib_table_element_address;
using norvane::qry_lib_table_element_dept;
using norvane::qry_lib_table_element_factory;
using norvane::qry_lib_table_element_log;
using norvane::qry_lib_table_element_user;
using test::invalid_argument;

class catalog : public test::platform_test {
  protected:
    QRY_LIB_ELEMENT_INFO find(qry_lib_table_element &in, const char *table, const char *name) {
        QRY_LIB_ELEMENT_INFO info{};
        EXPECT_EQ(in.get_info(table, name, info), 0) << table << "." << name;
        return info;
    }

    qry_lib_table_element_address address;
    qry_lib_table_element_dept dept;
    qry_lib_table_element_user user;
    qry_lib_table_element_log log;
    qry_lib_table_element *const all[4] = {&address, &dept, &user, &log};
    const std::string megabyte = std::string(1 << 20, 'P');
};

QRY_LIB_ELEMENT_INFO element(std::uint32_t type, std::uint16_t size) {
    QRY_LIB_ELEMENT_INFO info{};
    info.elem_type = type;
    info.size = size;
    return info;
}

QRY_LIB_COLUMN stray_column() {
    QRY_LIB_COLUMN column;
    std::memset(&column, 0x5A, sizeof column);
    return column;
}

bool is_filled(const void *from, std::size_t bytes, unsigned char with) {
    const auto *byte = static_cast<const unsigned char *>(from);
    return std::all_of(byte, byte + bytes, [with](unsigned char found) { return found == with; });
}

TEST_F(catalog, factory_makes_each_database) {
    struct {
        const char *db_name;
        const std::type_info &type;
    } const databases[] = {{"adbk_db", typeid(address)},
                           {"department_db", typeid(dept)},
                           {"usrac_db", typeid(user)},
                           {"log_db", typeid(log)}};
    for (const auto &database : databases) {
        qry_lib_table_element *made = nullptr;
        ASSERT_EQ(qry_lib_table_element_factory::create_elemet(database.db_name, &made), 0);
        ASSERT_NE(made, nullptr);
        EXPECT_TRUE(typeid(*made) == database.type) << database.db_name;
        qry_lib_table_element_factory::delete_elemet(&made);
        EXPECT_EQ(made, nullptr);
    }
}

TEST_F(catalog, factory_refuses_other_names) {
    for (const std::string &name : {std::string("ADBK_DB"), std::string(), std::string("adbk_db "),
                                    std::string("adbk_d"), std::string("log_db\n"), megabyte}) {
        qry_lib_table_element *made = &address;
        EXPECT_EQ(qry_lib_table_element_factory::create_elemet(name.c_str(), &made), invalid_argument);
        EXPECT_EQ(made, nullptr);
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(catalog, one_object_serves_a_database) {
    qry_lib_table_element *first = nullptr;
    qry_lib_table_element *second = nullptr;
    ASSERT_EQ(qry_lib_table_element_factory::create_elemet("log_db", &first), 0);
    ASSERT_EQ(qry_lib_table_element_factory::create_elemet("log_db", &second), 0);
    EXPECT_EQ(first, second);
    qry_lib_table_element_factory::delete_elemet(&first);
    EXPECT_EQ(first, nullptr);
    unsigned int category = 0;
    EXPECT_EQ(second->get_tbdb_category_id("S_JOB_LOG_TBL", category), 0);
}

TEST_F(catalog, deleting_nothing_does_nothing) {
    qry_lib_table_element *none = nullptr;
    qry_lib_table_element_factory::delete_elemet(&none);
    EXPECT_EQ(none, nullptr);
}

TEST_F(catalog, every_table_and_column_is_found) {
    std::size_t found = 0;
    for (std::size_t d = 0; d < norvane::database_num; ++d) {
        const norvane::database_schema &schema = *norvane::databases[d];
        for (std::uint16_t t = 0; t < schema.table_num; ++t) {
            const QRY_LIB_TABLE_DEF &table = schema.tables[t];
            short element_num = -1;
            ASSERT_EQ(all[d]->get_table_info_(table.table_name, element_num), table.elements);
            EXPECT_EQ(element_num, table.element_num);
            for (std::int16_t c = 0; c < table.element_num; ++c) {
                const QRY_LIB_ELEMENT_INFO &stored = table.elements[c].info;
                const QRY_LIB_ELEMENT_INFO info = find(*all[d], table.table_name, stored.name);
                EXPECT_EQ(std::memcmp(&info, &stored, sizeof info), 0) << stored.name;
                ++found;
            }
        }
    }
    EXPECT_EQ(found, 270u);
}

TEST_F(catalog, unknown_tables_are_not_found_at_either_end) {
    for (qry_lib_table_element *in : all) {
        for (const std::string &name :
             {std::string(), std::string("AAA"), std::string("ZZZ_TBL"), std::string("EDIT_CNT_TBLX"),
              std::string("edit_cnt_tbl"), std::string("\x80"), std::string("F\tAX_TBL"), megabyte}) {
            short element_num = 77;
            unsigned int category = 77;
            QRY_LIB_ELEMENT_INFO info = element(77, 77);
            std::list<QRY_LIB_ELEMENT_INFO> keys(1);
            char field[40] = "untouched";
            EXPECT_EQ(in->get_table_info_(name.c_str(), element_num), nullptr);
            EXPECT_EQ(in->get_info(name.c_str(), "ID", info), invalid_argument);
            EXPECT_EQ(in->get_primary_key(name.c_str(), keys), invalid_argument);
            EXPECT_EQ(in->get_first_field_name(name.c_str(), field), invalid_argument);
            EXPECT_EQ(in->get_tbdb_category_id(name.c_str(), category), invalid_argument);
            EXPECT_EQ(element_num, 77);
            EXPECT_EQ(info.size, 77);
            EXPECT_EQ(keys.size(), 1u);
            EXPECT_STREQ(field, "untouched");
            EXPECT_EQ(category, 77u);
        }
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(catalog, columns_are_found_by_their_exact_name_only) {
    const QRY_LIB_ELEMENT_INFO phone = find(address, "FAX_TBL", "FAX_PHONE");
    EXPECT_EQ(phone.elem_type, 5u);
    EXPECT_EQ(phone.size, 33);
    EXPECT_EQ(phone.element_id, 0x4991F002u);
    EXPECT_EQ(phone.category_id, 0x05090409u);
    for (const std::string &name :
         {std::string("fax_phone"), std::string("FAX_PHON"), std::string("FAX_PHONES"), std::string(),
          std::string("A"), std::string("Z"), std::string("*"), std::string("FAX_TBL.FAX_PHONE"), megabyte}) {
        QRY_LIB_ELEMENT_INFO info = element(77, 77);
        EXPECT_EQ(address.get_info("FAX_TBL", name.c_str(), info), invalid_argument);
        EXPECT_EQ(info.size, 77);
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(catalog, primary_keys_are_appended_in_table_order) {
    struct {
        qry_lib_table_element &in;
        const char *table;
        std::vector<std::string> names;
    } const rows[] = {
        {address, "GRPM_TBL", {"GRP_ID", "PSN_ID", "SEND_CTGRY"}},
        {address, "PSN_TBL", {"PSN_ID"}},
        {address, "EDIT_CNT_TBL", {"ID"}},
        {dept, "DEPT_TBL", {"ID"}},
        {user, "EDIT_CARD_INFO_TBL", {"ACC_ID"}},
        {log, "P_JOB_LOG_REC_TBL", {"JOB_ID", "RECV_INFO_ID"}},
        {log, "S_JOB_LOG_SND_TBL", {"JOB_ID", "SEND_INFO_ID"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.table);
        std::list<QRY_LIB_ELEMENT_INFO> keys;
        std::strcpy(keys.emplace_back().name, "earlier");
        EXPECT_EQ(row.in.get_primary_key(row.table, keys), 0);
        std::vector<std::string> names;
        for (const QRY_LIB_ELEMENT_INFO &key : keys) {
            names.emplace_back(key.name);
        }
        std::vector<std::string> expected = row.names;
        expected.insert(expected.begin(), "earlier");
        EXPECT_EQ(names, expected);
    }
}

TEST_F(catalog, first_field_and_category) {
    char name[40];
    unsigned int category = 0;
    EXPECT_EQ(address.get_first_field_name("FAX_TBL", name), 0);
    EXPECT_STREQ(name, "FAXO_ENCAB");
    EXPECT_EQ(address.get_first_field_name("EDIT_CNT_TBL", name), 0);
    EXPECT_STREQ(name, "CNT");
    EXPECT_EQ(log.get_tbdb_category_id("S_JOB_LOG_SND_TBL", category), 0);
    EXPECT_EQ(category, 0x05150706u);
}

// A table that the schema names but has no rows of.
class rowless_catalog final : public qry_lib_table_element {
  public:
    bool is_primary_filter_key(char const *) override { return true; }
    int conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, char const *, QRY_LIB_COLUMN_TYPE, char const *,
                                       char *) override {
        return 0;
    }
    void conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, char const *, char const *,
                                        QRY_LIB_COLUMN &) override {}
    const QRY_LIB_ELEMENT_DEF *get_table_info_(char const *, short &element_num) override {
        element_num = 0;
        return &behind_the_rows;
    }

  private:
    QRY_LIB_ELEMENT_DEF behind_the_rows{1, {"ID", 0x05050505, 1, 2, 2, 0, 0}};
};

TEST_F(catalog, a_table_without_rows_answers_like_an_unknown_one) {
    rowless_catalog rowless;
    QRY_LIB_ELEMENT_INFO info{};
    std::list<QRY_LIB_ELEMENT_INFO> keys;
    char name[40] = "kept";
    unsigned int category = 7;
    EXPECT_EQ(rowless.get_info("T", "ID", info), invalid_argument);
    EXPECT_EQ(rowless.get_primary_key("T", keys), invalid_argument);
    EXPECT_EQ(rowless.get_first_field_name("T", name), invalid_argument);
    EXPECT_EQ(rowless.get_tbdb_category_id("T", category), invalid_argument);
    EXPECT_TRUE(keys.empty());
    EXPECT_STREQ(name, "kept");
    EXPECT_EQ(category, 7u);
}

TEST_F(catalog, only_the_edit_counter_is_searched_without_its_key) {
    for (qry_lib_table_element *in : all) {
        EXPECT_FALSE(in->is_primary_filter_key("EDIT_CNT_TBL"));
        for (const char *name : {"PSN_TBL", "", "EDIT_CNT_TBL ", "edit_cnt_tbl", "NO_SUCH_TBL"}) {
            EXPECT_TRUE(in->is_primary_filter_key(name)) << name;
        }
    }
}

TEST_F(catalog, elements_become_columns_with_their_own_type) {
    const std::uint32_t word = 0xFEDCBA98;
    const std::uint16_t half = 0xFEDC;
    const std::uint8_t byte = 0xFE;
    struct {
        std::uint32_t elem_type;
        const void *bytes;
        std::uint16_t size;
    } const numbers[] = {{0, &word, 4}, {1, &byte, 1}, {2, &half, 2}, {3, &word, 4}, {4, &word, 4}};
    for (const auto &number : numbers) {
        SCOPED_TRACE(number.elem_type);
        alignas(8) char buffer[16]; // what lies behind the number is another member's
        std::memset(buffer, 0x77, sizeof buffer);
        std::memcpy(buffer, number.bytes, number.size);
        QRY_LIB_COLUMN column = stray_column();
        address.conv_val_tbdb_to_db2e(element(number.elem_type, number.size), "A_NAME", buffer, column);
        EXPECT_STREQ(column.col_name, "A_NAME");
        EXPECT_EQ(column.type, number.elem_type);
        EXPECT_EQ(std::memcmp(column.value.str_value, number.bytes, number.size), 0);
        // Read as text, the raw value ends behind the number.
        EXPECT_TRUE(is_filled(column.value.str_value + number.size, 8u - number.size, 0));
        EXPECT_TRUE(is_filled(column.table_name, sizeof column.table_name, 0x5A));
    }
}

TEST_F(catalog, strings_and_names_become_strings) {
    for (const std::uint32_t type : {5u, 6u}) {
        QRY_LIB_COLUMN column = stray_column();
        user.conv_val_tbdb_to_db2e(element(type, 9), "N", "Sato", column);
        EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_STR);
        EXPECT_STREQ(column.value.str_value, "Sato");
        // A value that fills its element has no terminator there.
        user.conv_val_tbdb_to_db2e(element(type, 4), "N", "Satoshi", column);
        EXPECT_STREQ(column.value.str_value, "Sato");
        user.conv_val_tbdb_to_db2e(element(type, 9), "N", "", column);
        EXPECT_STREQ(column.value.str_value, "");
    }
}

TEST_F(catalog, a_string_never_leaves_its_column) {
    const std::string text(4000, 'x');
    QRY_LIB_COLUMN column = stray_column();
    dept.conv_val_tbdb_to_db2e(element(5, 4000), std::string(100, 'c').c_str(), text.c_str(), column);
    EXPECT_EQ(std::string(column.value.str_value), std::string(2999, 'x'));
    EXPECT_EQ(std::string(column.col_name), std::string(31, 'c'));
    EXPECT_TRUE(is_filled(column.table_name, sizeof column.table_name, 0x5A));
}

TEST_F(catalog, a_type_above_the_known_ones_sets_only_the_name) {
    QRY_LIB_COLUMN column = stray_column();
    address.conv_val_tbdb_to_db2e(element(7, 4), "A_NAME", "text", column);
    EXPECT_STREQ(column.col_name, "A_NAME");
    EXPECT_TRUE(is_filled(&column.value, sizeof column - sizeof column.col_name, 0x5A));
    column = stray_column();
    QRY_LIB_ELEMENT_INFO member = element(7, 4);
    member.is_member = 1;
    log.conv_val_tbdb_to_db2e(member, "A_NAME", "text", column);
    EXPECT_STREQ(column.col_name, "A_NAME");
    EXPECT_TRUE(is_filled(&column.value, sizeof column - sizeof column.col_name, 0x5A));
}

TEST_F(catalog, members_are_read_at_their_offset) {
    alignas(8) char composite[512];
    std::memset(composite, 'a', sizeof composite);
    const std::uint32_t ret = 0x01020304;
    std::memcpy(composite + 196, &ret, sizeof ret);
    composite[192] = 7;
    QRY_LIB_COLUMN column = stray_column();
    log.conv_val_tbdb_to_db2e(find(log, "P_JOB_LOG_REC_TBL", "RET"), "RET", composite, column);
    EXPECT_STREQ(column.col_name, "RET");
    EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_ULONG);
    EXPECT_EQ(column.value.ulong_value, ret);
    log.conv_val_tbdb_to_db2e(find(log, "P_JOB_LOG_REC_TBL", "PORT_NO"), "PORT_NO", composite, column);
    EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_UCHAR);
    EXPECT_EQ(column.value.uchar_value, 7);
    const std::uint16_t page = 0xABCD;
    std::memcpy(composite + 72, &page, sizeof page);
    log.conv_val_tbdb_to_db2e(find(log, "S_JOB_LOG_SND_TBL", "PAGE"), "PAGE", composite, column);
    EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_USHORT);
    EXPECT_EQ(column.value.ushort_value, page);
}

TEST_F(catalog, member_strings_are_bounded_and_padded) {
    char composite[512];
    std::memset(composite, 'a', sizeof composite);
    QRY_LIB_COLUMN column = stray_column();
    log.conv_val_tbdb_to_db2e(find(log, "P_JOB_LOG_REC_TBL", "ADDRESS"), "ADDRESS", composite, column);
    EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_STR);
    EXPECT_EQ(std::string(column.value.str_value), std::string(129, 'a'));
    std::strcpy(composite + 21, "Sato");
    column = stray_column();
    log.conv_val_tbdb_to_db2e(find(log, "P_JOB_LOG_REC_TBL", "NAME"), "NAME", composite, column);
    EXPECT_STREQ(column.value.str_value, "Sato");
    EXPECT_TRUE(is_filled(column.value.str_value + 4, 193 - 4, 0));
}

TEST_F(catalog, databases_without_members_leave_them_alone) {
    QRY_LIB_ELEMENT_INFO member = element(4, 4);
    member.is_member = 1;
    member.member_offset = 4;
    QRY_LIB_COLUMN column = stray_column();
    const char value[8] = {};
    for (qry_lib_table_element *in : {all[0], all[1], all[2]}) {
        in->conv_val_tbdb_to_db2e(member, "A", value, column);
        EXPECT_TRUE(is_filled(&column, sizeof column, 0x5A));
    }
    EXPECT_EQ(lines, (std::vector<std::string>{"conv_val_tbdb_to_db2e_internal():[Enter]:(420) \n",
                                               "conv_val_tbdb_to_db2e_internal():[Return]:(421) \n",
                                               "conv_val_tbdb_to_db2e_internal():[Enter]:(220) \n",
                                               "conv_val_tbdb_to_db2e_internal():[Return]:(221) \n"}));
}

TEST_F(catalog, member_writing_operations_only_leave_their_trace) {
    char buffer[8];
    std::memset(buffer, 0x5A, sizeof buffer);
    for (qry_lib_table_element *in : all) {
        EXPECT_EQ(
            in->conv_val_db2e_to_tbdb_internal(element(4, 4), "A", QRY_LIB_COLUMN_TYPE_STR, "1", buffer), 0);
    }
    EXPECT_TRUE(is_filled(buffer, sizeof buffer, 0x5A));
    EXPECT_EQ(lines, (std::vector<std::string>{"conv_val_db2e_to_tbdb_internal():[Enter]:(402) \n",
                                               "conv_val_db2e_to_tbdb_internal():[Return]:(403) \n",
                                               "conv_val_db2e_to_tbdb_internal():[Enter]:(202) \n",
                                               "conv_val_db2e_to_tbdb_internal():[Return]:(203) \n"}));
}

QRY_LIB_COLUMN text_column(const std::string &text) {
    QRY_LIB_COLUMN column{};
    std::memcpy(column.value.str_value, text.data(), text.size());
    column.type = QRY_LIB_COLUMN_TYPE_STR;
    return column;
}

QRY_LIB_COLUMN number_column(std::uint32_t type, std::uint32_t value) {
    QRY_LIB_COLUMN column = stray_column(); // an earlier value's bytes lie behind the number
    switch (type) {
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        column.value.uchar_value = static_cast<std::uint8_t>(value);
        break;
    case QRY_LIB_COLUMN_TYPE_USHORT:
        column.value.ushort_value = static_cast<std::uint16_t>(value);
        break;
    default:
        column.value.ulong_value = value;
    }
    column.type = static_cast<QRY_LIB_COLUMN_TYPE>(type);
    return column;
}

TEST_F(catalog, text_becomes_the_number_that_it_begins_with) {
    struct {
        std::string text;
        std::uint32_t value; // as 32 bits; narrower elements take its low bits
    } const rows[] = {
        {"0", 0},
        {"5", 5},
        {"12abc", 12},
        {"abc", 0},
        {"", 0},
        {"-1", 0xFFFFFFFF},
        {"+7", 7},
        {" \t\n 7 8", 7},
        {"0x10", 0},
        {"010", 10},
        {"300", 300},
        {"70000", 70000},
        {"2147483647", 0x7FFFFFFF},
        {"2147483648", 0x7FFFFFFF},
        {"4294967295", 0x7FFFFFFF},
        {"-2147483648", 0x80000000},
        {"-2147483649", 0x80000000},
        {"99999999999999999999999999", 0x7FFFFFFF},
        {std::string(2999, '9'), 0x7FFFFFFF},
        {"-" + std::string(2998, '9'), 0x80000000},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text.substr(0, 40));
        const QRY_LIB_COLUMN column = text_column(row.text);
        for (const std::uint32_t type : {0u, 3u, 4u}) {
            std::uint32_t stored = 0;
            EXPECT_EQ(dept.conv_val_db2e_to_tbdb(element(type, 4), column, reinterpret_cast<char *>(&stored)),
                      0);
            EXPECT_EQ(stored, row.value);
        }
        std::uint8_t bytes[2] = {0, 0x5A};
        dept.conv_val_db2e_to_tbdb(element(1, 1), column, reinterpret_cast<char *>(bytes));
        EXPECT_EQ(bytes[0], static_cast<std::uint8_t>(row.value));
        EXPECT_EQ(bytes[1], 0x5A);
        std::uint16_t halves[2] = {0, 0x5A5A};
        dept.conv_val_db2e_to_tbdb(element(2, 2), column, reinterpret_cast<char *>(halves));
        EXPECT_EQ(halves[0], static_cast<std::uint16_t>(row.value));
        EXPECT_EQ(halves[1], 0x5A5A);
    }
}

TEST_F(catalog, numbers_become_decimal_text) {
    struct {
        std::uint32_t type;
        std::uint32_t value;
        const char *text;
    } const rows[] = {
        {0, 5, "5"},
        {0, 0xFFFFFFFF, "-1"},
        {0, 0x80000000, "-2147483648"},
        {1, 255, "255"},
        {2, 65535, "65535"},
        {3, 2147483647, "2147483647"},
        {3, 4294967295u, "-1"},
        {4, 0, "0"},
        {4, 4294967295u, "-1"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << "type " << row.type << ", " << row.value);
        for (const std::uint32_t type : {5u, 6u}) {
            char stored[16];
            std::memset(stored, 0x5A, sizeof stored);
            EXPECT_EQ(
                address.conv_val_db2e_to_tbdb(element(type, 16), number_column(row.type, row.value), stored),
                0);
            EXPECT_STREQ(stored, row.text);
        }
    }
}

TEST_F(catalog, numbers_come_back_with_the_same_bits) {
    for (const std::uint32_t from : {0u, 3u, 4u}) {
        for (const std::uint32_t to : {0u, 3u, 4u}) {
            for (const std::uint32_t value : {0u, 1u, 2147483647u, 2147483648u, 4294967295u}) {
                std::uint32_t stored = 77;
                user.conv_val_db2e_to_tbdb(element(to, 4), number_column(from, value),
                                           reinterpret_cast<char *>(&stored));
                EXPECT_EQ(stored, value);
            }
        }
    }
}

TEST_F(catalog, strings_are_copied_whole) {
    QRY_LIB_COLUMN column = text_column("Sato Ichiro");
    for (const std::uint32_t column_type : {5u, 6u}) {
        column.type = static_cast<QRY_LIB_COLUMN_TYPE>(column_type);
        char stored[3000];
        address.conv_val_db2e_to_tbdb(element(6, 193), column, stored);
        EXPECT_STREQ(stored, "Sato Ichiro");
    }
    // A value without a terminator ends with its column.
    std::memset(&column.value, 'x', sizeof column.value);
    char stored[3000];
    address.conv_val_db2e_to_tbdb(element(5, 193), column, stored);
    EXPECT_EQ(std::string(stored), std::string(2999, 'x'));
}

TEST_F(catalog, a_column_of_no_known_type_has_no_text) {
    for (const std::uint32_t type : {7u, 8u, 0xFFFFFFFFu}) {
        QRY_LIB_COLUMN column = text_column("12");
        column.type = static_cast<QRY_LIB_COLUMN_TYPE>(type);
        std::uint32_t number = 77;
        EXPECT_EQ(address.conv_val_db2e_to_tbdb(element(4, 4), column, reinterpret_cast<char *>(&number)), 0);
        EXPECT_EQ(number, 0u);
        char text[8] = "old";
        EXPECT_EQ(address.conv_val_db2e_to_tbdb(element(5, 8), column, text), 0);
        EXPECT_STREQ(text, "");
        EXPECT_EQ(text[1], 'l'); // in a composite, what follows is another member's
    }
}

TEST_F(catalog, an_element_of_no_known_type_is_not_written) {
    char stored[8];
    std::memset(stored, 0x5A, sizeof stored);
    EXPECT_EQ(address.conv_val_db2e_to_tbdb(element(7, 4), text_column("12"), stored), 0);
    EXPECT_TRUE(is_filled(stored, sizeof stored, 0x5A));
}

TEST_F(catalog, members_are_written_at_their_offset) {
    alignas(8) char composite[512];
    std::memset(composite, 0x5A, sizeof composite);
    log.conv_val_db2e_to_tbdb(find(log, "P_JOB_LOG_REC_TBL", "RET"), text_column("258"), composite);
    std::uint32_t stored = 0;
    std::memcpy(&stored, composite + 196, sizeof stored);
    EXPECT_EQ(stored, 258u);
    EXPECT_TRUE(is_filled(composite, 196, 0x5A));
    EXPECT_TRUE(is_filled(composite + 200, sizeof composite - 200, 0x5A));
    EXPECT_TRUE(lines.empty());
    // The offset of a column that is no member does not count.
    QRY_LIB_ELEMENT_INFO own = element(1, 1);
    own.member_offset = 100;
    log.conv_val_db2e_to_tbdb(own, text_column("9"), composite);
    EXPECT_EQ(composite[0], 9);
}

} // namespace
