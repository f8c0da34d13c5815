// Fixtures: what a file puts into the store, what is refused and how it is told, and round trips.
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "unit/host/host_test.h"

namespace {

using namespace test;

class fixture : public host_test {
  protected:
    // Writes a file and loads it.
    int load(const std::string &content) {
        std::ofstream(path, std::ios::binary) << content;
        return qryhost_load(path.c_str());
    }

    int load_databases(const std::string &databases) {
        return load(R"({"format": 1, "databases": {)" + databases + "}}");
    }

    int load_persons(const std::string &table) {
        return load_databases(R"("adbk_db": {"PSN_TBL": )" + table + "}");
    }

    // The file is refused with this sentence (behind the file's name or not), and nothing changes.
    void expect_refused(const std::string &content, const std::string &sentence) {
        const std::vector<std::uint8_t> before = store_content();
        EXPECT_NE(load(content), 0) << content;
        EXPECT_NE(std::string(qryhost_error()).find(sentence), std::string::npos)
            << qryhost_error() << "\n  instead of " << sentence;
        EXPECT_EQ(store_content(), before);
    }

    void expect_table_refused(const std::string &table, const std::string &sentence) {
        expect_refused(R"({"format": 1, "databases": {"adbk_db": {"PSN_TBL": )" + table + "}}}",
                       "adbk_db.PSN_TBL" + sentence);
    }

    std::string saved() {
        EXPECT_EQ(qryhost_save(path.c_str()), 0) << qryhost_error();
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }

    // Saves, empties the store, loads: every byte must be there again.
    void expect_round_trip() {
        const std::vector<std::uint8_t> before = store_content();
        const std::string file = saved();
        ASSERT_EQ(qryhost_reset(), 0);
        ASSERT_EQ(qryhost_load(path.c_str()), 0) << qryhost_error();
        EXPECT_EQ(store_content(), before);
        EXPECT_EQ(saved(), file);
    }

    temporary_folder folder;
    std::string path = folder.file("store.json");
};

std::string person(std::uint32_t record) {
    value_buffer value = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(persons, record, person_name, value.data()), 0u);
    return std::string(value.begin(), std::find(value.begin(), value.end(), std::uint8_t{0}));
}

template <typename Number>
Number number(std::uint32_t category, std::uint32_t record, std::uint32_t element) {
    Number value = 0;
    EXPECT_EQ(tbctSTCGetTable(category, record, element, &value), 0u);
    return value;
}

constexpr std::uint32_t person_id = 0x40971002;

TEST_F(fixture, records_are_numbered_from_0_and_count_on) {
    ASSERT_EQ(load_persons(R"({"records": [{"PSN_ID": 11, "PSN_NAME": "Sato"},
                                           {"record": 5, "PSN_ID": 12}, {"PSN_ID": 13}, {"record": 1, "PSN_ID": 14}]})"),
              0)
        << qryhost_error();
    EXPECT_EQ(person(1), "Sato");
    EXPECT_EQ(number<std::uint16_t>(persons, 1, person_id), 11);
    EXPECT_EQ(number<std::uint16_t>(persons, 6, person_id), 12);
    EXPECT_EQ(number<std::uint16_t>(persons, 7, person_id), 13);
    EXPECT_EQ(number<std::uint16_t>(persons, 2, person_id), 14);
    EXPECT_EQ(number<std::uint16_t>(persons, 3, person_id), 0);
}

TEST_F(fixture, what_is_left_out_has_the_default_records_value) {
    ASSERT_EQ(load_persons(R"({"default": {"PSN_ID": 65535, "PSN_NAME": "nobody"},
                               "records": [{"record": 9, "PSN_ID": 1}]})"),
              0)
        << qryhost_error();
    for (std::uint32_t record = 0; record <= 10; ++record) {
        EXPECT_EQ(person(record), "nobody");
        EXPECT_EQ(number<std::uint16_t>(persons, record, person_id), record == 10 ? 1 : 65535);
    }
}

TEST_F(fixture, replaces_all_that_was_there) {
    ASSERT_EQ(load_persons(R"({"records": [{"PSN_NAME": "before"}]})"), 0);
    const std::uint32_t mode = 3;
    ASSERT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], &mode), 0u);
    ASSERT_EQ(load(R"({"format": 1})"), 0) << qryhost_error();
    EXPECT_STREQ(qryhost_error(), "");
    const std::vector<std::uint8_t> content = store_content();
    EXPECT_EQ(content, std::vector<std::uint8_t>(content.size()));
}

TEST_F(fixture, settings_are_known_by_name) {
    ASSERT_EQ(load(R"({"format": 1, "settings": {"doublecount_1": 1, "doublecount_3": 4294967295,
                                                 "doublecount_2": 2}})"),
              0)
        << qryhost_error();
    const std::uint32_t expected[] = {1, 2, 0xFFFFFFFF};
    for (std::size_t i = 0; i < 3; ++i) {
        std::uint32_t mode = 0;
        EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[i], &mode), 0u);
        EXPECT_EQ(mode, expected[i]);
    }
}

TEST_F(fixture, numbers_reach_the_limits_of_their_width) {
    ASSERT_EQ(load_databases(R"("department_db": {"DEPT_TBL": {"records": [
        {"TOTAL_L": 255, "ID": 65535, "TOTAL_M": 4294967295}, {"TOTAL_M": -1}, {"TOTAL_M": -2147483648}]}})"),
              0)
        << qryhost_error();
    constexpr std::uint32_t total_m = 0x44882000;
    EXPECT_EQ(number<std::uint8_t>(departments, 1, 0x44860000), 255);
    EXPECT_EQ(number<std::uint16_t>(departments, 1, department_id), 65535);
    EXPECT_EQ(number<std::uint32_t>(departments, 1, total_m), 0xFFFFFFFF);
    EXPECT_EQ(number<std::uint32_t>(departments, 2, total_m), 0xFFFFFFFF);
    EXPECT_EQ(number<std::uint32_t>(departments, 3, total_m), 0x80000000);
}

TEST_F(fixture, numbers_beyond_their_width_are_refused) {
    for (const char *bad : {"65536", "-1", "1.5", "1.0", "1e3", "18446744073709551615",
                            "18446744073709551616", "-9223372036854775809", "4294967297"}) {
        SCOPED_TRACE(bad);
        expect_table_refused(std::string(R"({"records": [{"PSN_ID": )") + bad + "}]}", " record 0, PSN_ID: ");
    }
    expect_table_refused(R"({"default": {"PSN_ID": 70000}})",
                         " default, PSN_ID: 70000 is not a whole number from 0 to 65535");
    for (const char *bad : {"256", "-1"}) {
        expect_refused(
            std::string(R"({"format":1,"databases":{"department_db":{"DEPT_TBL":{"default":{"TOTAL_L":)") +
                bad + "}}}}}",
            "department_db.DEPT_TBL default, TOTAL_L: ");
    }
    for (const char *bad : {"4294967296", "-2147483649"}) {
        expect_refused(
            std::string(R"({"format":1,"databases":{"department_db":{"DEPT_TBL":{"default":{"TOTAL_M":)") +
                bad + "}}}}}",
            "from -2147483648 to 4294967295");
    }
}

TEST_F(fixture, strings_fit_with_their_terminator) {
    ASSERT_EQ(load_persons(R"({"records": [{"PSN_NAME": ")" + std::string(192, 'n') + R"("}]})"), 0)
        << qryhost_error();
    EXPECT_EQ(person(1), std::string(192, 'n'));
    expect_table_refused(R"({"records": [{"record": 3, "PSN_NAME": ")" + std::string(193, 'n') + R"("}]})",
                         " record 3, PSN_NAME: 193 characters do not fit 192");
    expect_table_refused(R"({"records": [{"PSN_NAME": "a\u0000b"}]})", " record 0, PSN_NAME: holds a zero");
}

TEST_F(fixture, a_string_clears_its_element) {
    ASSERT_EQ(load_persons(R"({"default": {"PSN_NAME": "a longer name"}, "records": [{"PSN_NAME": "x"}]})"),
              0);
    value_buffer expected = empty_buffer();
    expected[0] = 'x';
    value_buffer value = empty_buffer();
    ASSERT_EQ(tbctSTCGetTable(persons, 1, person_name, value.data()), 0u);
    EXPECT_EQ(value, expected);
}

TEST_F(fixture, wrong_types_are_refused) {
    for (const char *bad : {"\"1\"", "null", "true", "[]", "{}", "{\"hex\": \"00\"}"}) {
        expect_table_refused(std::string(R"({"records": [{"PSN_ID": )") + bad + "}]}",
                             " record 0, PSN_ID: is not a number");
    }
    for (const char *bad :
         {"1", "null", "true", "[]", "{}", "{\"hex\": \"00\", \"x\": 1}", "{\"hexa\": \"\"}"}) {
        expect_table_refused(std::string(R"({"records": [{"PSN_NAME": )") + bad + "}]}",
                             " record 0, PSN_NAME: is neither a string");
    }
    for (const char *bad : {"[]", "1", "null", "\"x\""}) {
        expect_table_refused(bad, ": is not an object");
        expect_table_refused(std::string(R"({"default": )") + bad + "}", " default: is not an object");
        expect_table_refused(std::string(R"({"records": [)") + bad + "]}", ", a record: is not an object");
        expect_refused(std::string(R"({"format": 1, "databases": )") + bad + "}",
                       "databases: is not an object");
        expect_refused(std::string(R"({"format": 1, "settings": )") + bad + "}",
                       "settings: is not an object");
        expect_refused(bad, "the file: is not an object");
    }
    expect_table_refused(R"({"records": {}})", ": \"records\" is not an array");
    expect_refused(R"({"format": 1, "settings": {"doublecount_1": "1"}})",
                   "settings, doublecount_1: is not a number");
    expect_refused(R"({"format": 1, "settings": {"doublecount_1": -1}})", "settings, doublecount_1: -1");
}

TEST_F(fixture, unknown_names_are_refused) {
    expect_refused(R"({"format": 1, "extra": 0})", "there is no key extra");
    expect_refused(R"({"format": 1, "settings": {"doublecount_4": 0}})", "there is no setting doublecount_4");
    expect_refused(R"({"format": 1, "databases": {"ADBK_DB": {}}})", "there is no database ADBK_DB");
    expect_refused(R"({"format": 1, "databases": {"adbk_db": {"PSN": {}}}})",
                   "adbk_db: there is no table PSN");
    expect_table_refused(R"({"rows": []})", ": there is no key rows");
    expect_table_refused(R"({"records": [{"psn_id": 1}]})", " record 0: there is no column psn_id");
    expect_table_refused(R"({"records": [{"": 1}]})", " record 0: there is no column ");
    expect_table_refused(R"({"default": {"record": 1}})", " default: there is no column record");
    expect_table_refused(R"({"records": [{"@4091F000": "00"}]})",
                         " record 0, @4091F000: there is no such composite element");
}

TEST_F(fixture, the_format_must_be_known) {
    for (const char *bad : {"{}", R"({"format": 2})", R"({"format": "1"})", R"({"format": null})"}) {
        expect_refused(bad, "format: is not 1");
    }
}

TEST_F(fixture, record_numbers_are_checked) {
    ASSERT_EQ(load_persons(R"({"records": [{"record": 9}]})"), 0) << qryhost_error();
    expect_table_refused(R"({"records": [{"record": 10}]})", " record 10: the table has 10 records");
    expect_table_refused(R"({"records": [{"record": 9}, {}]})", " record 10: the table has 10 records");
    expect_table_refused(R"({"records": [{"record": -1}]})", ", \"record\": -1");
    expect_table_refused(R"({"records": [{"record": 4294967296}]})", ", \"record\": 4294967296");
    expect_table_refused(R"({"records": [{}, {}, {"record": 1}]})", " record 1: is there twice");
    expect_refused(R"({"format":1,"databases":{"adbk_db":{"FAX_TBL":{"records":[{}]}}}})",
                   "adbk_db.FAX_TBL record 0: the table has 0 records");
}

TEST_F(fixture, a_key_that_is_there_twice_is_refused) {
    expect_refused(R"({"format": 1, "format": 1})", "one object has the key \"format\" twice");
    expect_refused(
        R"({"format":1,"databases":{"adbk_db":{"PSN_TBL":{"records":[{"PSN_ID":1,"PSN_ID":2}]}}}})",
        "one object has the key \"PSN_ID\" twice");
}

TEST_F(fixture, what_is_no_json_is_refused_with_its_line) {
    expect_refused("{\n\"format\": 1,\n}", "parse error at line 3");
    for (const char *bad : {"", "{", "\xFF\xFE", "{\"format\": 1} x", "{\"format\": \"\xC3\"}", "nul"}) {
        expect_refused(bad, path + ": parse error at line 1");
    }
}

TEST_F(fixture, deep_and_huge_files_are_refused) {
    for (const std::size_t depth : {10u, 1000000u}) {
        expect_refused(std::string(depth, '['), "the file is nested too deeply");
        expect_refused(R"({"format": 1, "databases": )" + std::string(depth, '[') + std::string(depth, ']') +
                           "}",
                       "the file is nested too deeply");
    }
    expect_refused(R"({"format": 1})" + std::string(17 * 1024 * 1024, ' '), "is larger than");
}

TEST_F(fixture, files_that_are_not_there_or_no_files_are_refused) {
    EXPECT_NE(qryhost_load(folder.file("missing.json").c_str()), 0);
    EXPECT_EQ(qryhost_error(), folder.file("missing.json") + ": cannot be opened: No such file or directory");
    EXPECT_NE(qryhost_load(folder.path().c_str()), 0);
    EXPECT_EQ(qryhost_error(), folder.path() + ": is not a file");
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_NE(qryhost_load(pipe.c_str()), 0);
    EXPECT_EQ(qryhost_error(), pipe + ": is not a file");
    EXPECT_NE(qryhost_load(nullptr), 0);
    EXPECT_NE(qryhost_load(""), 0);
    EXPECT_NE(qryhost_save(nullptr), 0);
    EXPECT_STREQ(qryhost_error(), "no file is named");
}

TEST_F(fixture, an_empty_store_is_a_small_file) {
    EXPECT_EQ(saved(), "{\n"
                       "  \"format\": 1,\n"
                       "  \"settings\": {\n"
                       "    \"doublecount_1\": 0,\n"
                       "    \"doublecount_2\": 0,\n"
                       "    \"doublecount_3\": 0\n"
                       "  },\n"
                       "  \"databases\": {}\n"
                       "}\n");
}

TEST_F(fixture, saving_writes_what_differs_from_the_default_record) {
    ASSERT_EQ(load_persons(R"({"default": {"INTEG_ID": 9},
                               "records": [{"record": 4, "PSN_NAME": "\u4F50\u85E4 \"x\""}]})"),
              0);
    const std::string file = saved();
    EXPECT_NE(file.find(R"("default": {
          "INTEG_ID": 9
        },
        "records": [
          {
            "record": 4,
            "PSN_NAME": ")"
                        "\xE4\xBD\x90\xE8\x97\xA4 \\\"x\\\"\"\n          }\n        ]\n"),
              std::string::npos)
        << file;
}

TEST_F(fixture, text_that_is_not_utf8_survives) {
    value_buffer value = empty_buffer();
    std::memcpy(value.data(), "\x8D\xB2\x93\xA1", 4);
    ASSERT_EQ(tbctSTCSetTable(requester, persons, 1, person_name, value.data()), 0u);
    EXPECT_NE(saved().find("\"hex\": \"8DB293A1\""), std::string::npos);
    expect_round_trip();
    EXPECT_EQ(person(1), "\x8D\xB2\x93\xA1");
}

TEST_F(fixture, stray_bytes_behind_a_terminator_survive) {
    value_buffer value = empty_buffer();
    std::memcpy(value.data(), "new\0old", 7);
    ASSERT_EQ(tbctSTCSetTable(requester, persons, 1, person_name, value.data()), 0u);
    expect_round_trip();
    value_buffer full = empty_buffer();
    std::fill(full.begin(), full.begin() + 193, std::uint8_t{'f'});
    ASSERT_EQ(tbctSTCSetTable(requester, persons, 1, person_name, full.data()), 0u);
    expect_round_trip();
}

TEST_F(fixture, hexadecimal_values_are_checked) {
    ASSERT_EQ(load_persons(R"({"records": [{"PSN_NAME": {"hex": "53aB"}}]})"), 0) << qryhost_error();
    EXPECT_EQ(person(1), "S\xAB");
    for (const char *bad : {"\"5\"", "\"5g\"", "\"0x\"", "\" 53\"", "\"5\\u0000\"", "53", "null"}) {
        expect_table_refused(std::string(R"({"records": [{"PSN_NAME": {"hex": )") + bad + "}}]}",
                             " record 0, PSN_NAME: is not a");
    }
    expect_table_refused(R"({"records": [{"PSN_NAME": {"hex": ")" + std::string(194 * 2, '0') + R"("}}]})",
                         " record 0, PSN_NAME: 194 bytes do not fit 193");
}

// The default record of a table whose capacity is 0 holds a composite: ADDRESS at 0, NAME at 21 over it,
// PORT_NO at 192, RET at 196, RET_ERR at 200, FAX_TIME at 204.
constexpr std::uint32_t composite = 0x7321F000;
constexpr std::size_t composite_size = 214;

std::vector<std::uint8_t> composite_bytes() {
    std::vector<std::uint8_t> bytes(3001);
    EXPECT_EQ(tbctSTCGetTable(no_records, 0, composite, bytes.data()), 0u);
    bytes.resize(composite_size);
    return bytes;
}

std::string log_record(const std::string &values) {
    return R"({"format": 1, "databases": {"log_db": {"P_JOB_LOG_REC_TBL": {"default": {)" + values + "}}}}}";
}

TEST_F(fixture, members_are_written_in_the_order_of_their_offsets) {
    ASSERT_EQ(load(log_record(R"("RET": 16909060, "NAME": "name", "PORT_NO": 7, "ADDRESS": "address")")), 0)
        << qryhost_error();
    std::vector<std::uint8_t> expected(composite_size);
    std::memcpy(expected.data(), "address", 7);
    std::memcpy(expected.data() + 21, "name", 4);
    expected[192] = 7;
    const std::uint32_t ret = 16909060;
    std::memcpy(expected.data() + 196, &ret, sizeof ret);
    EXPECT_EQ(composite_bytes(), expected);
    EXPECT_EQ(saved().find('@'), std::string::npos);
    expect_round_trip();
}

TEST_F(fixture, a_member_string_writes_its_terminator_and_nothing_behind) {
    ASSERT_EQ(load(log_record(R"("ADDRESS": "0123456789012345678901234567890123456789", "NAME": "N")")), 0);
    const std::vector<std::uint8_t> bytes = composite_bytes();
    EXPECT_EQ(std::memcmp(bytes.data(), "012345678901234567890N\0003456789012345678", 39), 0);
    expect_round_trip();
}

TEST_F(fixture, a_composite_that_its_members_cannot_describe_is_saved_whole) {
    std::vector<std::uint8_t> bytes(composite_size);
    bytes[193] = 0x5A; // between the members
    const std::uint32_t ret = 0x01020304;
    std::memcpy(&bytes[196], &ret, sizeof ret);
    ASSERT_EQ(tbctSTCSetTable(requester, no_records, 0, composite, bytes.data()), 0u);
    const std::string file = saved();
    EXPECT_NE(file.find("\"@7321F000\": \"" + std::string(2 * 193, '0') + "5A000001020304"),
              std::string::npos)
        << "numbers are in big-endian order in the file:\n"
        << file;
    expect_round_trip();
}

TEST_F(fixture, a_composite_is_given_whole_or_by_its_members) {
    expect_refused(log_record(R"("RET": 1, "@7321F000": "00")"),
                   "log_db.P_JOB_LOG_REC_TBL default, RET: its composite element is given as a whole too");
    expect_refused(log_record(R"("@7321F001": "00")"), "@7321F001: there is no such composite element");
    expect_refused(log_record(R"("@7321f000": "00")"), "@7321f000: there is no such composite element");
    expect_refused(log_record(R"("@7321F000": ")" + std::string(215 * 2, '0') + "\""),
                   "215 bytes do not fit 214");
    ASSERT_EQ(load(log_record(R"("CATEGORY": 1, "@7321F000": "41")")), 0) << qryhost_error();
    EXPECT_EQ(composite_bytes()[0], 'A');
}

TEST_F(fixture, members_of_every_shape_survive) {
    ASSERT_EQ(load(log_record(R"("NAME": {"hex": "938C"}, "ADDRESS": {"hex": "FF00"})")), 0)
        << qryhost_error();
    expect_round_trip();
}

TEST_F(fixture, random_bytes_survive) {
    seeded_random random;
    SCOPED_TRACE(random.rerun());
    fill_store([&random](std::uint16_t size) {
        std::vector<std::uint8_t> bytes(size);
        std::generate(bytes.begin(), bytes.end(), [&random] { return random.byte(); });
        return bytes;
    });
    expect_round_trip();
}

// Text of a few characters with zeros, strays and high bytes here and there: near what members can describe.
std::vector<std::uint8_t> nearly_text(seeded_random &random, std::uint16_t size) {
    std::vector<std::uint8_t> bytes(size);
    const std::uint32_t filled = random.below(size + 1u);
    std::generate(bytes.begin(), bytes.begin() + filled, [&random]() -> std::uint8_t {
        const std::uint32_t kind = random.below(40);
        return kind == 0 ? 0 : kind == 1 ? random.byte() : static_cast<std::uint8_t>('a' + kind % 26);
    });
    return random.below(3) == 0 ? std::vector<std::uint8_t>(size) : bytes;
}

TEST_F(fixture, random_texts_survive) {
    seeded_random random;
    SCOPED_TRACE(random.rerun());
    for (int round = 0; round < 5; ++round) {
        fill_store([&random](std::uint16_t size) { return nearly_text(random, size); });
        expect_round_trip();
    }
}

TEST_F(fixture, random_edits_of_a_file_never_change_the_store_half) {
    seeded_random random;
    SCOPED_TRACE(random.rerun());
    ASSERT_EQ(load_persons(R"({"default": {"INTEG_ID": 9}, "records": [{"PSN_ID": 1, "PSN_NAME": "Sato"}]})"),
              0);
    const std::string file = saved();
    for (int round = 0; round < 150; ++round) {
        std::string edited = file;
        for (std::uint32_t edits = 1 + random.below(3); edits > 0; --edits) {
            edited[random.below(static_cast<std::uint32_t>(edited.size()))] =
                static_cast<char>(random.byte());
        }
        const std::vector<std::uint8_t> before = store_content();
        if (load(edited) != 0) {
            ASSERT_STRNE(qryhost_error(), "");
            ASSERT_EQ(store_content(), before);
        }
    }
}

TEST_F(fixture, saving_replaces_the_file_and_leaves_no_other) {
    std::ofstream(path) << "old";
    EXPECT_NE(saved().find("\"format\": 1"), std::string::npos);
    EXPECT_EQ(folder.entries(), 1);
}

TEST_F(fixture, a_save_that_fails_leaves_no_trace) {
    EXPECT_NE(qryhost_save(folder.file("no/such/folder.json").c_str()), 0);
    EXPECT_NE(std::string(qryhost_error()).find("cannot be created"), std::string::npos);
    const std::string occupied = folder.file("occupied");
    ASSERT_TRUE(std::filesystem::create_directories(occupied + "/full"));
    EXPECT_NE(qryhost_save(occupied.c_str()), 0);
    EXPECT_EQ(std::string(qryhost_error()).find(occupied + ": cannot be replaced"), 0u) << qryhost_error();
    EXPECT_EQ(folder.entries(), 1) << "the temporary file is gone";
}

TEST_F(fixture, what_is_refused_is_told_with_its_file_and_place) {
    expect_refused(R"({"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"records": [{"PSN_ID": -1}]}}}})",
                   path + ": adbk_db.PSN_TBL record 0, PSN_ID: -1 is not a whole number from 0 to 65535");
    expect_refused(
        R"({"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"records": [{}, {"PSN_ID": 1e400}]}}}})",
        path + ": databases, adbk_db, PSN_TBL, records, 1, PSN_ID: number overflow parsing '1e400'");
    expect_refused(R"({"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"default": {}, "default": {}}}}})",
                   path + ": databases, adbk_db, PSN_TBL, default: one object has the key \"default\" twice");
    expect_refused(R"({"format": 2})", path + ": format: is not 1");
}

TEST_F(fixture, a_zero_byte_is_refused_wherever_it_stands) {
    const std::string whole = R"({"format": 1})";
    for (std::size_t at = 0; at <= whole.size(); ++at) {
        std::string content = whole;
        content.insert(at, 1, '\0');
        expect_refused(content, path + ": byte " + std::to_string(at) + " is zero");
    }
}

// The number behind the text.
unsigned long number_behind(const std::string &sentence, const std::string &text) {
    const std::size_t at = sentence.find(text);
    EXPECT_NE(at, std::string::npos) << sentence;
    return at == std::string::npos ? 0 : std::stoul(sentence.substr(at + text.size()));
}

// The refusal's place is within what the sentence allows: what stands behind it was not read.
void expect_stopped_at_limit(const std::string &limit, const std::string &place) {
    const std::string sentence = qryhost_error();
    const unsigned long most = number_behind(sentence, limit);
    EXPECT_GT(most, 0u);
    EXPECT_LE(number_behind(sentence, place), most + 1) << sentence;
}

// Files as large as one may be, of nothing that a fixture has so many of.
TEST_F(fixture, what_no_table_has_so_many_of_is_refused_where_it_begins) {
    constexpr std::size_t file_size = 15 * 1024 * 1024;
    std::string keys = R"({"format": 1, "databases": {)";
    for (int i = 0; keys.size() < file_size; ++i) {
        keys += "\"key" + std::to_string(i) + "\": 0,";
    }
    expect_refused(keys + "\"last\": 0}}", path + ": databases, key");
    expect_stopped_at_limit("one object has more than ", "databases, key");
    std::string records = R"({"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"records": [)";
    while (records.size() < file_size) {
        records += "{},";
    }
    expect_refused(records + "{}]}}}}", path + ": databases, adbk_db, PSN_TBL, records, ");
    expect_stopped_at_limit("no table has more than ", "PSN_TBL, records, ");
}

mode_t mode_of(const std::string &path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

TEST_F(fixture, a_new_file_is_its_owners_alone_and_an_old_one_keeps_its_mode) {
    const mode_t before = umask(0);
    ASSERT_EQ(qryhost_save(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode_of(path), 0600u);
    for (const mode_t mode : {0644u, 0640u, 0600u, 0400u}) {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        ASSERT_EQ(qryhost_save(path.c_str()), 0) << qryhost_error();
        EXPECT_EQ(mode_of(path), mode);
    }
    umask(before);
}

// A process with the same number died here before, as in containers.
TEST_F(fixture, saving_goes_around_what_a_killed_process_left) {
    for (int i = 0; i < 2000; ++i) {
        std::ofstream(path + "." + std::to_string(getpid()) + "." + std::to_string(i) + ".tmp") << "left";
    }
    ASSERT_EQ(qryhost_save(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(folder.entries(), 2001);
}

} // namespace
