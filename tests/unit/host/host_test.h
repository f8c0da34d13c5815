// What the tests of the workstation platform share: an empty store before and after, and the schema's shape.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "exec/schema/schema.h"
#include "platform/element_table.h"
#include "unit/support.h"

namespace test {

class host_test : public platform_test {
  protected:
    host_test() { EXPECT_EQ(qryhost_reset(), 0) << qryhost_error(); }
    ~host_test() override { EXPECT_EQ(qryhost_reset(), 0) << qryhost_error(); }
};

constexpr std::uint32_t table_refused = 0x5241;
constexpr std::uint32_t requester = 0x2301;

constexpr std::uint32_t settings = 0x04050300;
constexpr std::uint32_t setting_ids[] = {0x85004860, 0x85004888, 0x85004838};

constexpr std::uint32_t departments = 0x05080404; // 101 records
constexpr std::uint32_t department_name = 0x4481F000;
constexpr std::uint32_t department_id = 0x44871000;
constexpr std::uint32_t persons = 0x05090400; // 10 records
constexpr std::uint32_t person_name = 0x4091F000;
constexpr std::uint32_t no_records = 0x05120703; // print job log records: a capacity of 0

// Long enough for any element's value.
using value_buffer = std::vector<std::uint8_t>;
inline value_buffer empty_buffer(std::uint8_t fill = 0) {
    return value_buffer(3001, fill);
}

inline std::uint16_t capacity(std::uint32_t category) {
    return norvane::capacity_of(category);
}

using element_key = std::pair<std::uint32_t, std::uint32_t>;

using size_map = std::map<element_key, std::uint16_t>;

// Every (category, element) of the schema with its size, worked out from the columns' descriptions.
inline const size_map &element_sizes() {
    static const size_map sizes = [] {
        size_map result;
        for (const norvane::database_schema *database : norvane::databases) {
            for (std::uint16_t t = 0; t < database->table_num; ++t) {
                const QRY_LIB_TABLE_DEF &table = database->tables[t];
                for (std::int16_t c = 0; c < table.element_num; ++c) {
                    const QRY_LIB_ELEMENT_INFO &info = table.elements[c].info;
                    std::uint16_t &size = result[{info.category_id, info.element_id}];
                    size = std::max(size, static_cast<std::uint16_t>(info.member_offset + info.size));
                }
            }
        }
        return result;
    }();
    return sizes;
}

// Random numbers whose seed is printed with a failure; QRYLIB_TEST_SEED runs that seed again.
class seeded_random {
  public:
    seeded_random() : seed_(choose()), engine_(seed_) {}

    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(engine_()) % bound; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(engine_() & 0xFF); }

    std::string rerun() const { return "run again with QRYLIB_TEST_SEED=" + std::to_string(seed_); }

  private:
    static std::uint32_t choose() {
        const char *fixed = std::getenv("QRYLIB_TEST_SEED");
        return fixed != nullptr ? static_cast<std::uint32_t>(std::strtoul(fixed, nullptr, 10))
                                : std::random_device{}();
    }

    std::uint32_t seed_;
    std::mt19937 engine_;
};

// A folder that goes with its test.
class temporary_folder {
  public:
    temporary_folder() {
        std::string name = (std::filesystem::temp_directory_path() / "qrylib-test-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        path_ = name;
    }
    ~temporary_folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    temporary_folder(const temporary_folder &) = delete;
    temporary_folder &operator=(const temporary_folder &) = delete;

    std::string path() const { return path_.string(); }
    std::string file(const char *name) const { return (path_ / name).string(); }
    std::ptrdiff_t entries() const {
        return std::distance(std::filesystem::directory_iterator(path_),
                             std::filesystem::directory_iterator());
    }

  private:
    std::filesystem::path path_;
};

// Sets an environment variable for the time of a test.
class environment_variable {
  public:
    environment_variable(const char *name, const std::string &value) : name_(name) {
        const char *before = std::getenv(name);
        was_set_ = before != nullptr;
        before_ = was_set_ ? before : "";
        setenv(name, value.c_str(), 1);
    }
    ~environment_variable() { was_set_ ? setenv(name_, before_.c_str(), 1) : unsetenv(name_); }
    environment_variable(const environment_variable &) = delete;
    environment_variable &operator=(const environment_variable &) = delete;

  private:
    const char *name_;
    bool was_set_ = false;
    std::string before_;
};

// Every value of the store, records 0 to n and the settings, read through the platform calls.
inline std::vector<std::uint8_t> store_content() {
    std::vector<std::uint8_t> content;
    for (const auto &[key, size] : element_sizes()) {
        for (std::uint32_t record = 0; record <= capacity(key.first); ++record) {
            value_buffer value = empty_buffer();
            EXPECT_EQ(tbctSTCGetTable(key.first, record, key.second, value.data()), 0u);
            content.insert(content.end(), value.begin(), value.begin() + size);
        }
    }
    for (const std::uint32_t id : setting_ids) {
        value_buffer value = empty_buffer();
        EXPECT_EQ(tbctSTCGetStatus(settings, id, value.data()), 0u);
        content.insert(content.end(), value.begin(), value.begin() + 4);
    }
    return content;
}

// Fills every value of the store by `choose(element size)`, which answers that many bytes.
template <typename Choose>
void fill_store(Choose choose) {
    for (const auto &[key, size] : element_sizes()) {
        for (std::uint32_t record = 0; record <= capacity(key.first); ++record) {
            const std::vector<std::uint8_t> value = choose(size);
            ASSERT_EQ(tbctSTCSetTable(requester, key.first, record, key.second, value.data()), 0u);
        }
    }
    for (const std::uint32_t id : setting_ids) {
        ASSERT_EQ(tbctSTCSetStatus(requester, settings, id, choose(4).data()), 0u);
    }
}

} // namespace test
