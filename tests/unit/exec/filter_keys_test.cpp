// From key columns and conditions to filter keys and record numbers.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::departments;
using test::failure;
using test::in_default;
using test::injected;
using test::invalid_argument;
using test::put;
using test::query_of;
using test::record_list;
using test::traces;

constexpr auto select_type = QRY_LIB_DB_QUERY_TYPE_SELECT;
constexpr auto insert_type = QRY_LIB_DB_QUERY_TYPE_INSERT;

class filter_key : public test::exec_test {
  protected:
    void open(const char *db) { ASSERT_EQ(executer.open_catalog(db), 0); }

    QRY_LIB_ELEMENT_INFO find(const char *db, const char *table, const char *column) {
        QRY_LIB_ELEMENT_INFO info{};
        norvane::qry_lib_table_element *catalog = nullptr;
        EXPECT_EQ(norvane::qry_lib_table_element_factory::create_elemet(db, &catalog), 0);
        EXPECT_EQ(catalog->get_info(table, column, info), 0);
        return info;
    }

    // What a key says: element, operation, join, and its value as text or number.
    static std::string text_of(const qry_lib_tb_list_filter_key_ &key) {
        QRY_LIB_COLUMN column{};
        std::memcpy(&column.value, key.value, sizeof column.value);
        column.type = static_cast<QRY_LIB_COLUMN_TYPE>(key.elem_type);
        char head[32];
        std::snprintf(head, sizeof head, "%08X %u %u ", static_cast<unsigned>(key.element_id),
                      static_cast<unsigned>(key.operation), static_cast<unsigned>(key.join));
        return head + std::string(norvane::column_text(column).text());
    }

    std::vector<std::string> texts() const {
        std::vector<std::string> made;
        for (const qry_lib_tb_list_filter_key_ &key : keys) {
            made.push_back(text_of(key));
        }
        return made;
    }

    test::filter_keys keys;
    unsigned int category = 77;
};

using texts_of = std::vector<std::string>;

TEST_F(filter_key, carries_the_columns_description) {
    executer.set_filter_key(find("log_db", "P_JOB_LOG_REC_TBL", "RET"), QRY_LIB_OPERATION_TYPE_LESS,
                            QRY_LIB_JOIN_TYPE_OR, "abcd", keys);
    executer.set_filter_key(find("log_db", "P_JOB_LOG_TBL", "JOB_NAME"), QRY_LIB_OPERATION_TYPE_LIKE,
                            QRY_LIB_JOIN_TYPE_AND, "Sato", keys);
    ASSERT_EQ(keys.size(), 2u);
    EXPECT_EQ(keys.front().category_id, 0x05120703u);
    EXPECT_EQ(keys.front().element_id, 0x7321F000u);
    EXPECT_EQ(keys.front().elem_type, 4);
    EXPECT_EQ(keys.front().cmp_size, 4);
    EXPECT_EQ(keys.front().member_offset, 196);
    EXPECT_EQ(std::memcmp(keys.front().value, "abcd\0", 5), 0);
    EXPECT_EQ(keys.front().operation, QRY_LIB_OPERATION_TYPE_LESS);
    EXPECT_EQ(keys.front().join, QRY_LIB_JOIN_TYPE_OR);
    EXPECT_EQ(keys.back().elem_type, 6);
    EXPECT_EQ(keys.back().cmp_size, 1); // the low 8 bits of 257
    EXPECT_STREQ(keys.back().value, "Sato");
}

TEST_F(filter_key, takes_as_much_of_the_value_as_its_type_has) {
    constexpr std::size_t widths[] = {4, 1, 2, 4, 4};
    for (std::uint32_t type = 0; type < std::size(widths); ++type) {
        QRY_LIB_ELEMENT_INFO info{};
        info.elem_type = type;
        keys.clear();
        executer.set_filter_key(info, QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND, "abcdefgh", keys);
        EXPECT_EQ(std::string(keys.front().value), std::string("abcdefgh").substr(0, widths[type]));
    }
    QRY_LIB_ELEMENT_INFO unknown{};
    unknown.elem_type = 0x107;
    executer.set_filter_key(unknown, QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND, "abc", keys);
    EXPECT_STREQ(keys.back().value, "");
    EXPECT_EQ(keys.back().elem_type, 7); // the low 8 bits
    QRY_LIB_ELEMENT_INFO string{};
    string.elem_type = 5;
    executer.set_filter_key(string, QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_AND,
                            std::string(5000, 'x').c_str(), keys);
    EXPECT_EQ(std::string(keys.back().value), std::string(2999, 'x'));
}

TEST_F(filter_key, every_search_but_inserts_starts_with_records_in_use) {
    open("adbk_db");
    put(0x05090401, in_default, 0x41971001, std::uint16_t{5});
    put(0x05090401, in_default, 0x41960000, std::uint8_t{200});
    for (const std::uint32_t type : {0u, 2u, 3u, 4u, 5u, 7u}) {
        keys.clear();
        query_of query(static_cast<QRY_LIB_DB_QUERY_TYPE>(type), "adbk_db", "GRPM_TBL");
        query.where("PSN_ID", QRY_LIB_OPERATION_TYPE_GREATER, "70000", QRY_LIB_JOIN_TYPE_OR)
            .where("SEND_CTGRY", QRY_LIB_OPERATION_TYPE_EQUAL, "x", QRY_LIB_JOIN_TYPE_OR);
        EXPECT_EQ(executer.create_filter_key(query, category, keys), 0);
        EXPECT_EQ(texts(), (texts_of{"41971001 1 1 5", "41971000 1 1 0", "41960000 1 1 200",
                                     "41971000 3 2 4464", "41960000 0 2 0"}));
        EXPECT_EQ(category, 0x05090401u);
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(filter_key, the_edit_counter_has_conditions_only) {
    open("department_db");
    qryhost_fail_clear();
    query_of query(select_type, "department_db", "EDIT_CNT_TBL");
    EXPECT_EQ(executer.create_filter_key(query, category, keys), 0);
    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(category, test::edit_counters);
    query.where("CNT", QRY_LIB_OPERATION_TYPE_LESS, "9");
    EXPECT_EQ(executer.create_filter_key(query, category, keys), 0);
    EXPECT_EQ(texts(), (texts_of{"93782001 2 1 9"}));
    keys.clear();
    // An INSERT needs no key column there.
    EXPECT_EQ(
        executer.create_filter_key(query_of(insert_type, "department_db", "EDIT_CNT_TBL"), category, keys),
        0);
    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(qryhost_call_count(QRYHOST_GET_TABLE), 0u);
}

TEST_F(filter_key, condition_values_are_converted_by_their_column) {
    open("department_db");
    struct {
        const char *column;
        std::string value;
        std::string text;
    } const rows[] = {
        {"TOTAL_M", "4294967295", "44882000 0 1 2147483647"},
        {"TOTAL_M", "-1", "44882000 0 1 -1"},
        {"TOTAL_L", "257", "44860000 0 1 1"},
        {"ID", "abc", "44871000 0 1 0"},
        {"NAME", "5", "4481F000 0 1 5"},
        {"NAME", "a\tb\n", "4481F000 0 1 a\tb\n"},
        {"NAME", std::string(2999, 'x'), "4481F000 0 1 " + std::string(2999, 'x')},
        {"NAME", "", "4481F000 0 1 "},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text.substr(0, 40));
        keys.clear();
        query_of query(select_type, "department_db", "DEPT_TBL");
        query.where(row.column, QRY_LIB_OPERATION_TYPE_EQUAL, row.value);
        EXPECT_EQ(executer.create_filter_key(query, category, keys), 0);
        ASSERT_EQ(keys.size(), 2u);
        EXPECT_EQ(text_of(keys.back()), row.text);
    }
}

TEST_F(filter_key, member_conditions_take_their_value_from_its_offset) {
    open("log_db");
    query_of query(select_type, "log_db", "P_JOB_LOG_REC_TBL");
    query.where("RET", QRY_LIB_OPERATION_TYPE_EQUAL, "258")
        .where("NAME", QRY_LIB_OPERATION_TYPE_LIKE, "Sato")
        .where("PORT_NO", QRY_LIB_OPERATION_TYPE_EQUAL, "7");
    EXPECT_EQ(executer.create_filter_key(query, category, keys), 0);
    EXPECT_EQ(texts(), (texts_of{"73282000 1 1 0", "73282001 1 1 0", "7321F000 0 1 258", "7321F000 6 1 Sato",
                                 "7321F000 0 1 7"}));
    EXPECT_EQ(keys.back().member_offset, 192);
}

TEST_F(filter_key, unknown_names_are_refused_before_any_search) {
    open("adbk_db");
    qryhost_fail_clear();
    for (const char *table : {"", "NO_TBL", "psn_tbl", "EDIT_CNT_TBL\n"}) {
        for (const auto type : {select_type, QRY_LIB_DB_QUERY_TYPE_UPDATE, QRY_LIB_DB_QUERY_TYPE_DELETE}) {
            EXPECT_EQ(executer.create_filter_key(query_of(type, "adbk_db", table), category, keys),
                      invalid_argument);
            EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 849, 0xDB05},
                                             {"create_filter_key", 768, 0xDB05}}));
        }
        EXPECT_EQ(executer.create_filter_key(query_of(insert_type, "adbk_db", table), category, keys),
                  invalid_argument);
        EXPECT_EQ(take_traces(),
                  (traces{{"create_primary_filter_key", 945, 0xDB05}, {"create_filter_key", 768, 0xDB05}}));
    }
    EXPECT_TRUE(keys.empty());
    for (const std::string &column : {std::string("NO_COL"), std::string(), std::string("psn_id"),
                                      std::string("PSN_TBL.PSN_ID"), std::string(1 << 20, 'P')}) {
        keys.clear();
        query_of query(select_type, "adbk_db", "PSN_TBL");
        query.where("PSN_ID", QRY_LIB_OPERATION_TYPE_EQUAL, "1")
            .where(column.c_str(), QRY_LIB_OPERATION_TYPE_EQUAL, "1");
        EXPECT_EQ(executer.create_filter_key(query, category, keys), invalid_argument);
        EXPECT_EQ(take_traces(), (traces{{"create_filter_key", 786, 0xDB05}}));
        EXPECT_EQ(keys.size(), 2u); // those before the failure stay
    }
    EXPECT_EQ(category, 77u);
    EXPECT_EQ(qryhost_call_count(QRYHOST_CREATE_LIST), 0u);
}

TEST_F(filter_key, a_default_value_that_cannot_be_read_ends_the_keys) {
    open("adbk_db");
    for (std::uint32_t skip = 0; skip < 3; ++skip) {
        keys.clear();
        qryhost_fail(QRYHOST_GET_TABLE, skip, 1, injected);
        EXPECT_EQ(executer.create_filter_key(query_of(select_type, "adbk_db", "GRPM_TBL"), category, keys),
                  injected);
        EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 861, injected},
                                         {"create_filter_key", 768, injected}}));
        EXPECT_EQ(keys.size(), skip);
    }
}

TEST_F(filter_key, an_insert_looks_for_its_own_key) {
    open("adbk_db");
    query_of query(insert_type, "adbk_db", "GRPM_TBL");
    query.value("SEND_CTGRY", "3").number("PSN_ID", 2).value("GRP_ID", "65537").value("PSN_ID", "9");
    EXPECT_EQ(executer.create_filter_key(query, category, keys), 0);
    EXPECT_EQ(texts(), (texts_of{"41971001 0 1 1", "41971000 0 1 2", "41960000 0 1 3"}));
    keys.clear();
    // The operation is the caller's.
    EXPECT_EQ(executer.create_primary_filter_key("GRPM_TBL", QRY_LIB_OPERATION_TYPE_NOT_EQUAL, query, keys),
              0);
    EXPECT_EQ(texts(), (texts_of{"41971001 1 1 1", "41971000 1 1 2", "41960000 1 1 3"}));
    EXPECT_TRUE(lines.empty());
}

TEST_F(filter_key, an_insert_must_supply_every_key_column) {
    open("adbk_db");
    const char *const names[] = {"GRP_ID", "PSN_ID", "SEND_CTGRY"};
    qryhost_fail_clear();
    for (const char *left_out : names) {
        query_of query(insert_type, "adbk_db", "GRPM_TBL");
        for (const char *name : names) {
            if (name != left_out) {
                query.value(name, "1");
            }
        }
        query.value("psn_id", "1").value("PSN_IDS", "1");
        EXPECT_EQ(executer.create_filter_key(query, category, keys), invalid_argument);
        EXPECT_EQ(take_traces(),
                  (traces{{"create_primary_filter_key", 982, 0xDB05}, {"create_filter_key", 768, 0xDB05}}));
        EXPECT_TRUE(keys.empty());
    }
    EXPECT_EQ(qryhost_call_count(QRYHOST_GET_TABLE), 0u); // no value is looked at before all are there
}

TEST_F(filter_key, an_insert_may_not_carry_the_empty_slots_key) {
    open("department_db");
    put(departments, in_default, test::department_id, std::uint16_t{5});
    for (const char *value : {"5", "5x", "65541", " 5"}) {
        query_of query(insert_type, "department_db", "DEPT_TBL");
        query.value("ID", value);
        EXPECT_EQ(executer.create_filter_key(query, category, keys), invalid_argument);
        EXPECT_EQ(take_traces(),
                  (traces{{"create_primary_filter_key", 1001, 0xDB05}, {"create_filter_key", 768, 0xDB05}}));
    }
    query_of zero(insert_type, "department_db", "DEPT_TBL");
    EXPECT_EQ(executer.create_filter_key(zero.value("ID", "0"), category, keys), 0);
}

TEST_F(filter_key, one_key_column_like_the_empty_slots_is_enough_to_refuse) {
    open("adbk_db");
    query_of query(insert_type, "adbk_db", "GRPM_TBL");
    query.value("GRP_ID", "1").value("PSN_ID", "0").value("SEND_CTGRY", "1");
    EXPECT_EQ(executer.create_filter_key(query, category, keys), invalid_argument);
    EXPECT_EQ(keys.size(), 1u);
    EXPECT_EQ(take_traces(),
              (traces{{"create_primary_filter_key", 1001, 0xDB05}, {"create_filter_key", 768, 0xDB05}}));
}

TEST_F(filter_key, an_insert_whose_key_cannot_be_checked_fails) {
    open("adbk_db");
    query_of query(insert_type, "adbk_db", "GRPM_TBL");
    query.value("GRP_ID", "1").value("PSN_ID", "2").value("SEND_CTGRY", "3");
    for (std::uint32_t skip = 0; skip < 3; ++skip) {
        keys.clear();
        qryhost_fail(QRYHOST_GET_TABLE, skip, 1, injected);
        EXPECT_EQ(executer.create_filter_key(query, category, keys), injected);
        EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key_chk", 893, injected},
                                         {"create_primary_filter_key", 1001, injected},
                                         {"create_filter_key", 768, injected}}));
        EXPECT_EQ(keys.size(), skip);
    }
}

TEST_F(filter_key, candidates_are_compared_over_the_elements_size) {
    open("department_db");
    test::put_text(departments, in_default, test::department_code, "12345678");
    QRY_LIB_ELEMENT_INFO code = find("department_db", "DEPT_TBL", "DEPT_CODE");
    char same[] = "12345678";
    char other[] = "12345679";
    char longer[] = "123456789";
    EXPECT_EQ(executer.create_primary_filter_key_chk(code, same), invalid_argument);
    EXPECT_EQ(executer.create_primary_filter_key_chk(code, other), 0);
    EXPECT_EQ(executer.create_primary_filter_key_chk(code, longer), 0);
    code.size = 4;
    EXPECT_EQ(executer.create_primary_filter_key_chk(code, other), invalid_argument);
    // A string ends at its terminator, bytes do not.
    code.size = 9;
    char stray[16] = "12345678";
    stray[9] = 'x';
    EXPECT_EQ(executer.create_primary_filter_key_chk(code, stray), invalid_argument);
    put(departments, in_default, test::department_total, std::uint32_t{0x01020304});
    const QRY_LIB_ELEMENT_INFO total = find("department_db", "DEPT_TBL", "TOTAL_M");
    std::uint32_t number = 0x01020304;
    EXPECT_EQ(executer.create_primary_filter_key_chk(total, reinterpret_cast<char *>(&number)),
              invalid_argument);
    number = 0x02020304;
    EXPECT_EQ(executer.create_primary_filter_key_chk(total, reinterpret_cast<char *>(&number)), 0);
    EXPECT_TRUE(lines.empty()); // the caller traces a refusal
}

TEST_F(filter_key, a_member_key_is_compared_at_its_offset) {
    test::put_text(departments, in_default, test::department_name, "xxxxSato");
    QRY_LIB_ELEMENT_INFO member = find("department_db", "DEPT_TBL", "NAME");
    member.is_member = 1;
    member.member_offset = 4;
    member.size = 9;
    char same[16] = "Sato";
    char other[16] = "xxxx";
    EXPECT_EQ(executer.create_primary_filter_key_chk(member, same), invalid_argument);
    EXPECT_EQ(executer.create_primary_filter_key_chk(member, other), 0);
}

TEST_F(filter_key, found_records_are_appended_in_order) {
    open("department_db");
    for (const std::uint32_t record : {3u, 1u, 100u}) {
        test::put_department(record, static_cast<std::uint16_t>(record + 1));
    }
    ASSERT_EQ(executer.create_primary_filter_key("DEPT_TBL", QRY_LIB_OPERATION_TYPE_NOT_EQUAL, keys), 0);
    record_list records = {9};
    EXPECT_EQ(executer.create_search_table_id(departments, keys, records), 0);
    EXPECT_EQ(records, (record_list{9, 1, 3, 100}));
    test::filter_keys none;
    records.clear();
    EXPECT_EQ(executer.create_search_table_id(test::edit_counters, none, records), 0);
    EXPECT_EQ(records, (record_list{0, 1}));
    EXPECT_EQ(executer.create_search_table_id(test::no_records, none, records), 0);
    EXPECT_EQ(records.size(), 2u);
    EXPECT_TRUE(lines.empty());
}

TEST_F(filter_key, more_keys_than_16_bits_count_are_not_accepted) {
    record_list records;
    keys.resize(65536);
    EXPECT_EQ(executer.create_search_table_id(departments, keys, records), test::not_accepted);
    expect_traces({{"create_search_table_id", test::any_line, 0xDB00}});
    // One key less, and the partition is asked for room.
    keys.pop_back();
    qryhost_fail(QRYHOST_ALLOC, 0, 1, injected);
    EXPECT_EQ(executer.create_search_table_id(departments, keys, records), test::no_memory);
    expect_traces({{"create_search_table_id", 1430, 1}});
}

TEST_F(filter_key, a_search_without_memory_fails) {
    open("department_db");
    ASSERT_EQ(executer.create_primary_filter_key("DEPT_TBL", QRY_LIB_OPERATION_TYPE_NOT_EQUAL, keys), 0);
    record_list records;
    expect_failures(
        QRYHOST_ALLOC, [&] { records.clear(); },
        [&] { return executer.create_search_table_id(departments, keys, records); },
        {failure{test::no_memory, {{"create_search_table_id", 1430, 1}}},
         failure{test::table_access,
                 {{"qry_lib_tb_alloc_mem", 690, 0x5243},
                  {"qry_lib_tb_create_search_table_id", 429, 0x5243},
                  {"create_search_table_id", 1448, 0xDB05}}}});
    EXPECT_TRUE(records.empty());
}

TEST_F(filter_key, a_refused_search_shows_one_code_and_answers_another) {
    open("department_db");
    query_of query(select_type, "department_db", "DEPT_TBL");
    query.where("NAME", QRY_LIB_OPERATION_TYPE_LESS, "x");
    ASSERT_EQ(executer.create_filter_key(query, category, keys), 0);
    record_list records;
    EXPECT_EQ(executer.create_search_table_id(category, keys, records), test::table_argument);
    EXPECT_EQ(take_traces(), (traces{{"qry_lib_tb_create_search_table_id", 415, 0x5241},
                                     {"create_search_table_id", 1448, 0xDB05}}));
    keys.clear();
    EXPECT_EQ(executer.create_search_table_id(0xDEADBEEF, keys, records), test::table_argument);
    EXPECT_EQ(take_traces(), (traces{{"qry_lib_tb_create_search_table_id", 422, 0x5241},
                                     {"create_search_table_id", 1448, 0xDB05}}));
    EXPECT_TRUE(records.empty());
}

} // namespace
