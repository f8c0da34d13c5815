// The data version file: every way through both functions, every code, every trace point.
#include <qrylib/device_data.h>

#include <array>

#include "platform/file_access.h"
#include "unit/support.h"

namespace {

using traces = std::vector<test::return_trace>;

constexpr std::uint32_t area = 3;
constexpr std::uint32_t directory = 7;
constexpr std::uint32_t missing = 5;
constexpr std::uint32_t renewed = 1;
constexpr char write_name[] = "qry_lib_write_data_version";
constexpr char check_name[] = "qry_lib_check_data_version";

class data_version : public test::platform_test {
  protected:
    data_version() { clean(); }
    ~data_version() override {
        qryhost_fail_clear();
        clean();
    }

    static void clean() {
        if (has(nullptr)) {
            fsa_fio_remove(area, directory);
        }
    }

    static bool has(const char *name) { return fsa_fio_existfile(area, directory, name) == 0; }

    static void write_file(const char *name, const std::string &bytes) {
        std::uint32_t file = 0;
        ASSERT_EQ(fsa_fio_fopen(area, directory, name, 1, &file), 0u);
        ASSERT_EQ(fsa_fio_fwrite(file, bytes.data(), static_cast<std::uint32_t>(bytes.size())), 0u);
        ASSERT_EQ(fsa_fio_fclose(file), 0u);
    }

    // The file "version" as it is stored; all 0xEE when it cannot be read.
    static std::array<std::uint8_t, 4> stored() {
        std::array<std::uint8_t, 4> bytes = {0xEE, 0xEE, 0xEE, 0xEE};
        std::uint32_t file = 0;
        if (fsa_fio_fopen(area, directory, "version", 0, &file) == 0) {
            EXPECT_EQ(fsa_fio_fread(file, bytes.data(), 4), 0u);
            std::uint8_t more = 0;
            EXPECT_NE(fsa_fio_fread(file, &more, 1), 0u) << "longer than 4 bytes";
            fsa_fio_fclose(file);
        }
        return bytes;
    }

    // Makes the directory hold version 1 and a second file, and forgets the calls that it took.
    static void prepare() {
        ASSERT_EQ(qry_lib_write_data_version(area, directory, 1), 0u);
        write_file("other", "data");
        qryhost_fail_clear();
    }
};

using bytes = std::array<std::uint8_t, 4>;

TEST_F(data_version, write_creates_the_directory_and_a_big_endian_file) {
    EXPECT_EQ(qry_lib_write_data_version(area, directory, 0x01020384), 0u);
    EXPECT_EQ(stored(), (bytes{0x01, 0x02, 0x03, 0x84}));
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(data_version, write_keeps_the_rest_of_the_directory) {
    prepare();
    EXPECT_EQ(qry_lib_write_data_version(area, directory, UINT32_MAX), 0u);
    EXPECT_EQ(stored(), (bytes{0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_TRUE(has("other"));
    EXPECT_EQ(qryhost_call_count(QRYHOST_FILE_MKDIR), 0u);
}

TEST_F(data_version, check_without_a_directory_starts_afresh) {
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 0xA0000001u), renewed);
    EXPECT_EQ(stored(), (bytes{0xA0, 0, 0, 1}));
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 0xA0000001u), 0u);
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(data_version, check_without_the_file_starts_afresh) {
    ASSERT_EQ(fsa_fio_mkdir(area, directory), 0u);
    write_file("other", "data");
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 2), renewed);
    EXPECT_EQ(stored(), (bytes{0, 0, 0, 2}));
    EXPECT_FALSE(has("other"));
}

TEST_F(data_version, the_expected_version_leaves_everything) {
    prepare();
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), 0u);
    EXPECT_TRUE(has("other"));
    EXPECT_EQ(qryhost_call_count(QRYHOST_FILE_WRITE), 0u);
}

TEST_F(data_version, another_version_discards_everything) {
    prepare();
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 0x01000000), renewed);
    EXPECT_EQ(stored(), (bytes{1, 0, 0, 0}));
    EXPECT_FALSE(has("other"));
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(data_version, directories_and_areas_are_told_apart) {
    ASSERT_EQ(qry_lib_write_data_version(area, directory, 1), 0u);
    ASSERT_EQ(qry_lib_write_data_version(area, directory + 1, 2), 0u);
    ASSERT_EQ(qry_lib_write_data_version(area + 1, directory, 3), 0u);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), 0u);
    EXPECT_EQ(qry_lib_check_data_version(area, directory + 1, 2), 0u);
    EXPECT_EQ(qry_lib_check_data_version(area + 1, directory, 3), 0u);
    fsa_fio_remove(area, directory + 1);
    fsa_fio_remove(area + 1, directory);
}

TEST_F(data_version, a_short_file_is_discarded) {
    prepare();
    write_file("version", "\1\2");
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 0x01020000), renewed);
    const traces seen = take_traces();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].line, 276);
    EXPECT_FALSE(has("other"));
    EXPECT_EQ(stored(), (bytes{1, 2, 0, 0}));
}

TEST_F(data_version, platform_codes_are_converted) {
    const auto convert = [](std::uint32_t code) -> std::uint32_t {
        switch (code) {
        case 1:
            return 5;
        case 4:
            return 2;
        case 35:
            return 3;
        case 36:
            return 4;
        default:
            return 257;
        }
    };
    std::vector<std::uint32_t> platform_codes = {40, 255, 256, 257, 0x10000, 0x10004, UINT32_MAX};
    for (std::uint32_t code = 1; code < 40; ++code) {
        platform_codes.push_back(code);
    }
    for (const std::uint32_t code : platform_codes) {
        qryhost_fail(QRYHOST_FILE_MKDIR, 0, 1, code);
        EXPECT_EQ(qry_lib_write_data_version(area, directory, 1), convert(code)) << code;
        EXPECT_EQ(take_traces(), (traces{{write_name, 220, convert(code)}}));
    }
}

// The three steps of writing: which call fails, and where it is traced.
struct step {
    qryhost_call call;
    int line;
};

TEST_F(data_version, write_reports_each_step) {
    for (const step &failing :
         {step{QRYHOST_FILE_OPEN, 321}, {QRYHOST_FILE_WRITE, 330}, {QRYHOST_FILE_CLOSE, 338}}) {
        qryhost_fail_clear();
        qryhost_fail(failing.call, 0, 1, 40);
        EXPECT_EQ(qry_lib_write_data_version(area, directory, 1), 257u);
        EXPECT_EQ(take_traces(), (traces{{write_name, failing.line, 257}, {write_name, 230, 257}}));
        EXPECT_EQ(qryhost_call_count(QRYHOST_FILE_CLOSE), failing.line == 321 ? 0u : 1u);
    }
}

TEST_F(data_version, a_directory_counts_as_missing_only_when_it_is) {
    for (const std::uint32_t answer : {1u, 4u, 36u, 40u}) {
        qryhost_fail(QRYHOST_FILE_EXIST, 0, 1, answer);
        qryhost_fail(QRYHOST_FILE_OPEN, 0, 1, 35);
        EXPECT_EQ(qry_lib_write_data_version(area, directory, 1), 3u);
        EXPECT_EQ(qryhost_call_count(QRYHOST_FILE_MKDIR), 0u);
    }
    prepare();
    qryhost_fail(QRYHOST_FILE_EXIST, 0, 1, missing);
    qryhost_fail(QRYHOST_FILE_MKDIR, 0, 1, 1);
    EXPECT_EQ(qry_lib_write_data_version(area, directory, 1), 5u);
}

TEST_F(data_version, a_file_counts_as_missing_only_when_it_is) {
    prepare();
    qryhost_fail(QRYHOST_FILE_EXIST, 0, 1, 40);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), 0u);
    qryhost_fail(QRYHOST_FILE_EXIST, 0, 1, missing);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), renewed);
    EXPECT_FALSE(has("other"));
}

TEST_F(data_version, some_read_failures_leave_the_directory_alone) {
    prepare();
    for (const auto &[platform, code] : {std::pair{4u, 2u}, {35u, 3u}, {36u, 4u}}) {
        for (const step &failing :
             {step{QRYHOST_FILE_OPEN, 267}, {QRYHOST_FILE_READ, 276}, {QRYHOST_FILE_CLOSE, 284}}) {
            qryhost_fail(failing.call, 0, 1, platform);
            EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), code);
            EXPECT_EQ(take_traces(), (traces{{check_name, failing.line, code}, {check_name, 128, code}}));
        }
    }
    EXPECT_TRUE(has("other"));
    EXPECT_EQ(stored(), (bytes{0, 0, 0, 1}));
}

TEST_F(data_version, other_read_failures_discard_the_directory) {
    for (const auto &[platform, code] : {std::pair{1u, 5u}, {40u, 257u}}) {
        for (const step &failing :
             {step{QRYHOST_FILE_OPEN, 267}, {QRYHOST_FILE_READ, 276}, {QRYHOST_FILE_CLOSE, 284}}) {
            prepare();
            qryhost_fail(failing.call, 0, 1, platform);
            EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), renewed);
            EXPECT_EQ(take_traces(), (traces{{check_name, failing.line, code}}));
            EXPECT_FALSE(has("other"));
            EXPECT_EQ(stored(), (bytes{0, 0, 0, 1}));
        }
    }
}

TEST_F(data_version, a_failed_read_closes_the_file) {
    prepare();
    qryhost_fail(QRYHOST_FILE_READ, 0, 1, 4);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), 2u);
    EXPECT_EQ(qryhost_call_count(QRYHOST_FILE_CLOSE), 1u);
}

TEST_F(data_version, a_directory_that_cannot_be_removed_after_a_failed_read) {
    prepare();
    qryhost_fail(QRYHOST_FILE_READ, 0, 1, 1);
    qryhost_fail(QRYHOST_FILE_REMOVE, 0, 1, 36);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 1), 4u);
    EXPECT_EQ(take_traces(), (traces{{check_name, 276, 5}, {check_name, 138, 4}}));
    EXPECT_TRUE(has("other"));
}

TEST_F(data_version, starting_afresh_reports_each_step) {
    prepare();
    qryhost_fail(QRYHOST_FILE_REMOVE, 0, 1, 4);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 2), 2u);
    EXPECT_EQ(take_traces(), (traces{{check_name, 154, 2}}));
    EXPECT_TRUE(has("other"));

    qryhost_fail(QRYHOST_FILE_MKDIR, 0, 1, 35);
    EXPECT_EQ(qry_lib_check_data_version(area, directory, 2), 3u);
    EXPECT_EQ(take_traces(), (traces{{check_name, 164, 3}}));
    EXPECT_FALSE(has(nullptr));

    for (const step &failing :
         {step{QRYHOST_FILE_OPEN, 321}, {QRYHOST_FILE_WRITE, 330}, {QRYHOST_FILE_CLOSE, 338}}) {
        clean();
        qryhost_fail(failing.call, 0, 1, 36);
        EXPECT_EQ(qry_lib_check_data_version(area, directory, 2), 4u);
        EXPECT_EQ(take_traces(), (traces{{check_name, failing.line, 4}, {check_name, 173, 4}}));
    }
}

} // namespace
