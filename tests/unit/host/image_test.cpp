// Device images: creation, what is refused, damage, reading without the right to write.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

constexpr std::size_t header_bytes = 64;

class image : public host_test {
  protected:
    ~image() override { EXPECT_EQ(qryhost_open(nullptr), 0); }

    // The image as a fresh process leaves it, with a value in it.
    std::string fresh_content() {
        EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
        set_mode(7);
        EXPECT_EQ(qryhost_open(nullptr), 0);
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }

    void put(const std::string &content) const {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
    }

    void expect_refusal(const std::string &file, const char *reason) {
        EXPECT_EQ(qryhost_open(file.c_str()), 1);
        EXPECT_EQ(std::string(qryhost_error()).find(file + ": "), 0u) << qryhost_error();
        EXPECT_NE(std::strstr(qryhost_error(), reason), nullptr) << qryhost_error();
    }

    static void set_mode(std::uint32_t mode) {
        EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], &mode), 0u);
    }
    static std::uint32_t mode() {
        std::uint32_t mode = 0;
        EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[0], &mode), 0u);
        return mode;
    }

    const temporary_folder folder;
    const std::string path = folder.file("device.img");
};

// Where the header and the categories' guards end: the values take the rest of the file.
std::size_t region_offset(std::size_t file_size) {
    std::size_t values = 0;
    for (const auto &[key, size] : element_sizes()) {
        values += std::size_t{size} * (capacity(key.first) + 1u);
    }
    return file_size - values - 4 * std::size(setting_ids);
}

TEST_F(image, is_created_empty_and_keeps_what_is_written) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode(), 0u);
    set_mode(5);
    ASSERT_EQ(qryhost_close(), 0);
    EXPECT_EQ(mode(), 0u) << "the private memory is another store";
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode(), 5u);
    EXPECT_EQ(folder.entries(), 1) << "no temporary file is left";
}

TEST_F(image, is_opened_by_several_stores_of_one_process) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0);
    set_mode(3);
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << "the old store is still open then";
    EXPECT_EQ(mode(), 3u);
}

TEST_F(image, carries_every_value) {
    seeded_random random;
    ASSERT_EQ(qryhost_open(path.c_str()), 0);
    fill_store([&random](std::uint16_t size) {
        std::vector<std::uint8_t> value(size);
        std::generate(value.begin(), value.end(), [&random] { return random.byte(); });
        return value;
    });
    const std::vector<std::uint8_t> content = store_content();
    ASSERT_EQ(qryhost_open(path.c_str()), 0);
    EXPECT_EQ(store_content(), content) << random.rerun();
}

TEST_F(image, resets_saves_and_loads_like_private_memory) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0);
    set_mode(9);
    const std::string saved = folder.file("saved.json");
    ASSERT_EQ(qryhost_save(saved.c_str()), 0) << qryhost_error();
    ASSERT_EQ(qryhost_reset(), 0);
    EXPECT_EQ(mode(), 0u);
    ASSERT_EQ(qryhost_load(saved.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode(), 9u);
}

TEST_F(image, a_change_of_one_process_is_seen_by_another_at_once) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0);
    EXPECT_TRUE(in_child([this] {
        const bool opened = qryhost_open(path.c_str()) == 0;
        set_mode(11);
        return opened && mode() == 11;
    }));
    EXPECT_EQ(mode(), 11u);
}

TEST_F(image, creators_at_once_share_one_image) {
    constexpr std::uint32_t creators = 4;
    for (int round = 0; round < 10; ++round) {
        const std::string name = folder.file(("round" + std::to_string(round) + ".img").c_str());
        std::vector<child_process> children;
        for (std::uint32_t i = 0; i < creators; ++i) {
            children.emplace_back([&name, i] {
                const value_buffer value = empty_buffer('w');
                return qryhost_open(name.c_str()) == 0 &&
                       tbctSTCSetTable(requester, departments, i + 1, department_name, value.data()) == 0;
            });
        }
        for (child_process &child : children) {
            EXPECT_TRUE(child.succeeded());
        }
        ASSERT_EQ(qryhost_open(name.c_str()), 0) << qryhost_error();
        for (std::uint32_t record = 1; record <= creators; ++record) {
            value_buffer value = empty_buffer();
            EXPECT_EQ(tbctSTCGetTable(departments, record, department_name, value.data()), 0u);
            EXPECT_EQ(value[0], 'w') << "a creator wrote into a file of its own";
        }
    }
    EXPECT_EQ(folder.entries(), 10) << "temporary files are left";
}

TEST_F(image, other_files_are_refused) {
    expect_refusal(folder.path(), "is a folder");
    expect_refusal(folder.file("none/device.img"), "cannot be created");
    expect_refusal("/dev/null", "is not a file");
    put("");
    expect_refusal(path, "is too short for a device image: 0 of ");
    put("a text\n");
    expect_refusal(path, "is too short for a device image: 7 of ");
    put(std::string(100000, 'x'));
    expect_refusal(path, "is no device image");
    EXPECT_EQ(qryhost_open(""), 1);
    EXPECT_STREQ(qryhost_error(), "no file is named");
}

TEST_F(image, a_link_is_followed_to_an_image_and_to_nothing_refused) {
    const std::string link = folder.file("link.img");
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    expect_refusal(link, "is a link to nothing");
    EXPECT_EQ(folder.entries(), 1) << "nothing was created where the link points to";
    fresh_content();
    EXPECT_EQ(qryhost_open(link.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode(), 7u);
}

// A pipe that nobody writes must not keep its opener waiting.
TEST_F(image, a_pipe_is_refused) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    expect_refusal(path, "is not a file");
}

TEST_F(image, a_foreign_image_is_refused_with_what_differs) {
    const std::string content = fresh_content();
    const auto expect_changed = [&](std::size_t at, const std::string &bytes, const char *reason) {
        std::string changed = content;
        changed.replace(at, bytes.size(), bytes);
        put(changed);
        expect_refusal(path, reason);
    };
    std::string reversed = content.substr(8, 4);
    std::reverse(reversed.begin(), reversed.end());
    expect_changed(0, "x", "is no device image");
    expect_changed(8, reversed, "other byte order");
    expect_changed(8, "xxxx", "byte order is none");
    expect_changed(12, "\x7F", "another format version");
    expect_changed(16, "\x7F", "another word size");
    expect_changed(24, "xxxx", "another layout");
    expect_changed(60, "x", "its header is wrong");
    put(content + "x");
    expect_refusal(path, "is a damaged device image: it has ");
}

// Changes bytes of a file in place.
class patched_file {
  public:
    explicit patched_file(const std::string &path) : file_(open(path.c_str(), O_RDWR)) {}
    patched_file(const patched_file &) = delete;
    patched_file &operator=(const patched_file &) = delete;
    ~patched_file() { close(file_); }

    void write(std::size_t at, const std::string &bytes) const {
        EXPECT_EQ(pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(at)),
                  static_cast<ssize_t>(bytes.size()));
    }
    std::string read(std::size_t at, std::size_t size) const {
        std::string bytes(size, '\0');
        EXPECT_EQ(pread(file_, bytes.data(), size, static_cast<off_t>(at)), static_cast<ssize_t>(size));
        return bytes;
    }
    void cut(std::size_t size) const { EXPECT_EQ(ftruncate(file_, static_cast<off_t>(size)), 0); }

  private:
    int file_;
};

TEST_F(image, every_damaged_header_byte_is_refused_or_does_no_harm) {
    const std::string content = fresh_content();
    const std::size_t region = region_offset(content.size());
    const std::string header = content.substr(0, region);
    const std::string values = content.substr(region);
    const patched_file file(path);
    seeded_random random;
    std::size_t refused = 0;
    for (std::size_t at = 0; at < region; ++at) {
        const int flipped = static_cast<std::uint8_t>(header[at]) ^ static_cast<int>(1 + random.below(255));
        file.write(at, std::string(1, static_cast<char>(flipped)));
        if (qryhost_open(path.c_str()) != 0) {
            ++refused;
            ASSERT_STRNE(qryhost_error(), "");
            file.write(at, header.substr(at, 1));
            ASSERT_EQ(file.read(0, content.size()), content)
                << "a refused file was changed, " << random.rerun();
            continue;
        }
        ASSERT_GE(at, header_bytes) << random.rerun();
        set_mode(8); // takes a lock: one that nobody can release would hang here
        set_mode(7);
        ASSERT_EQ(qryhost_close(), 0);
        ASSERT_EQ(file.read(region, values.size()), values) << at << ", " << random.rerun();
        file.write(0, header);
    }
    EXPECT_GE(refused, header_bytes);
}

TEST_F(image, every_cut_file_is_refused) {
    const std::string content = fresh_content();
    const std::size_t region = region_offset(content.size());
    const patched_file file(path);
    seeded_random random;
    std::vector<std::size_t> lengths;
    for (int i = 0; i < 100; ++i) {
        lengths.push_back(region + random.below(static_cast<std::uint32_t>(content.size() - region)));
    }
    std::sort(lengths.rbegin(), lengths.rend());
    for (std::size_t length = region + 1; length-- > 0;) {
        lengths.push_back(length);
    }
    for (const std::size_t length : lengths) {
        file.cut(length);
        ASSERT_EQ(qryhost_open(path.c_str()), 1) << length << ", " << random.rerun();
        ASSERT_STRNE(qryhost_error(), "");
        ASSERT_EQ(qryhost_check(path.c_str(), nullptr, nullptr), 1);
    }
}

class checked_image : public image {
  protected:
    checked_image() { EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error(); }

    // The findings that are damage, and, unless there is none, what the check answers.
    std::vector<std::string> damage() {
        std::vector<std::string> found;
        const auto collect = [](void *context, int is_damage, const char *text) {
            if (is_damage != 0) {
                static_cast<std::vector<std::string> *>(context)->emplace_back(text);
            }
        };
        const int result = qryhost_check(path.c_str(), collect, &found);
        EXPECT_EQ(result, found.empty() ? 0 : 1);
        EXPECT_EQ(std::string(qryhost_error()).empty(), found.empty());
        return found;
    }

    static void put_department(std::uint32_t record, std::uint16_t id, const value_buffer &name) {
        EXPECT_EQ(tbctSTCSetTable(requester, departments, record, department_id, &id), 0u);
        EXPECT_EQ(tbctSTCSetTable(requester, departments, record, department_name, name.data()), 0u);
    }
};

using text_list = std::vector<std::string>;

TEST_F(checked_image, without_damage_has_none) {
    put_department(3, 7, empty_buffer());
    put_department(4, 8, empty_buffer());
    EXPECT_EQ(damage(), text_list{});
}

TEST_F(checked_image, with_a_key_in_two_records_is_damaged) {
    put_department(3, 7, empty_buffer());
    put_department(9, 7, empty_buffer());
    EXPECT_EQ(damage(), text_list{"department_db.DEPT_TBL record 8 has the primary key of record 2"});
}

TEST_F(checked_image, with_a_string_without_an_end_is_damaged) {
    put_department(0, 0, empty_buffer('x'));
    put_department(5, 0, empty_buffer('x'));
    EXPECT_EQ(damage(), (text_list{"department_db.DEPT_TBL default record: the string NAME has no end",
                                   "department_db.DEPT_TBL record 4: the string NAME has no end"}));
}

// What a kill leaves of an INSERT: told, but no damage.
TEST_F(checked_image, with_values_in_a_free_record_is_not_damaged) {
    value_buffer name = empty_buffer();
    name[0] = 'x';
    put_department(2, 0, name);
    text_list notes;
    const auto collect = [](void *context, int is_damage, const char *text) {
        EXPECT_EQ(is_damage, 0) << text;
        static_cast<text_list *>(context)->emplace_back(text);
    };
    EXPECT_EQ(qryhost_check(path.c_str(), collect, &notes), 0);
    EXPECT_EQ(
        std::count(notes.begin(), notes.end(),
                   "department_db.DEPT_TBL record 1 is free, but not all of it is as in the default record"),
        1);
}

// The edit counters' records have the same key after every INSERT.
TEST_F(checked_image, does_not_take_edit_counters_for_keyed_records) {
    constexpr std::uint32_t edit_counters = 0x06070903;
    for (const auto &[key, size] : element_sizes()) {
        for (std::uint32_t record = 1; key.first == edit_counters && record <= 2; ++record) {
            const value_buffer one = empty_buffer(1);
            EXPECT_EQ(tbctSTCSetTable(requester, edit_counters, record, key.second, one.data()), 0u);
        }
    }
    EXPECT_EQ(damage(), text_list{});
}

// The right to write is taken away for a child that is nobody special.
TEST_F(image, that_cannot_be_written_is_read_and_answers_codes_to_writes) {
    fresh_content();
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(qryhost_open(path.c_str()), 0);
    EXPECT_TRUE(in_child([this] {
        if (geteuid() == 0 && setuid(65534) != 0) {
            return false;
        }
        const std::uint32_t other = 1;
        value_buffer value = empty_buffer();
        EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
        EXPECT_EQ(mode(), 7u);
        EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], &other), 0x5245u);
        EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, department_name, value.data()), 0x5245u);
        EXPECT_EQ(tbSTCInitTable(departments, 1), 0x5245u);
        EXPECT_EQ(tbctResetTable(departments), 0x5245u);
        EXPECT_EQ(qryhost_reset(), 1);
        EXPECT_STREQ(qryhost_error(), "the device image can only be read");
        EXPECT_EQ(mode(), 7u);
        tbctListTable list{};
        EXPECT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &list), 0u);
        EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
        return !::testing::Test::HasFailure();
    }));
}

TEST_F(image, that_cannot_be_read_is_refused) {
    fresh_content();
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    EXPECT_TRUE(in_child([this] {
        if (geteuid() == 0 && setuid(65534) != 0) {
            return false;
        }
        expect_refusal(path, "cannot be opened: ");
        return !::testing::Test::HasFailure();
    }));
}

TEST_F(image, that_is_new_is_its_owners_alone) {
    const mode_t before = umask(0);
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

} // namespace
