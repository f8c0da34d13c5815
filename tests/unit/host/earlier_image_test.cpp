// Images of the earlier format version: read and examined as they are, and carried over.
#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/host/image_header.h"
#include "platform/host/store_memory.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;
using qryhost::memory_shape;
using qryhost::value_guard;

constexpr std::size_t header_bytes = sizeof(qryhost::image_header);

std::string content_of(const std::string &path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

// The same store as the earlier version kept it: shorter guards, another header.
std::string as_earlier(const std::string &content) {
    const memory_shape &from = memory_shape::get();
    const memory_shape &to = memory_shape::earlier();
    const std::size_t categories = qryhost::store_layout::get().categories().size();
    std::string image(to.bytes, '\0');
    std::memcpy(image.data(), &qryhost::earlier_header(), header_bytes);
    for (std::size_t i = 0; i < categories; ++i) {
        const std::size_t source = header_bytes + i * from.guard_stride;
        const std::size_t target = header_bytes + i * to.guard_stride;
        const std::size_t room = from.guard_stride - from.guard_bytes;
        image.replace(target, to.guard_bytes, content, source, to.guard_bytes);
        image.replace(target + to.guard_bytes, std::min<std::size_t>(room, to.guard_stride - to.guard_bytes),
                      content, source + from.guard_bytes,
                      std::min<std::size_t>(room, to.guard_stride - to.guard_bytes));
    }
    image.replace(to.region_offset, content.size() - from.region_offset, content, from.region_offset);
    return image;
}

class earlier_image : public host_test {
  protected:
    earlier_image() {
        EXPECT_EQ(qryhost_open(fresh.c_str()), 0) << qryhost_error();
        set_mode(7);
        EXPECT_EQ(qryhost_open(nullptr), 0);
        std::ofstream(path, std::ios::binary) << as_earlier(content_of(fresh));
        before = content_of(path);
    }
    ~earlier_image() override {
        EXPECT_EQ(qryhost_open(nullptr), 0);
        EXPECT_EQ(content_of(path), before) << "the earlier image was changed";
    }

    static std::uint32_t set_mode(std::uint32_t mode) {
        return tbctSTCSetStatus(requester, settings, setting_ids[0], &mode);
    }
    static std::uint32_t mode() {
        std::uint32_t mode = 0;
        EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[0], &mode), 0u);
        return mode;
    }

    const temporary_folder folder;
    const std::string fresh = folder.file("fresh.img");
    const std::string path = folder.file("earlier.img");
    std::string before;
};

TEST_F(earlier_image, is_read_and_not_written) {
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode(), 7u);
    const std::string reason =
        path +
        ": is a device image of the earlier format version, which is only read; carry its "
        "records over with qrysh --image " +
        path + " -c '.save records.json' and qrysh --new NEW -c '.load records.json'";
    EXPECT_EQ(set_mode(8), 0x5245u);
    EXPECT_EQ(qryhost_error(), reason);
    EXPECT_EQ(tbctResetTable(departments), 0x5245u);
    EXPECT_EQ(qryhost_reset(), 1);
    EXPECT_EQ(qryhost_error(), reason);
}

TEST_F(earlier_image, is_carried_over_by_saving_and_loading) {
    const std::string saved = folder.file("records.json");
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    const std::vector<std::uint8_t> records = store_content();
    ASSERT_EQ(qryhost_save(saved.c_str()), 0) << qryhost_error();
    ASSERT_EQ(qryhost_open(folder.file("new.img").c_str()), 0) << qryhost_error();
    ASSERT_EQ(qryhost_load(saved.c_str()), 0) << qryhost_error();
    EXPECT_EQ(store_content(), records);
    EXPECT_EQ(set_mode(9), 0u);
}

TEST_F(earlier_image, is_examined) {
    std::vector<std::string> found;
    const auto collect = [](void *context, int is_damage, const char *text) {
        EXPECT_EQ(is_damage, 0) << text;
        static_cast<std::vector<std::string> *>(context)->emplace_back(text);
    };
    EXPECT_EQ(qryhost_check(path.c_str(), collect, &found), 0) << qryhost_error();
    EXPECT_EQ(std::count_if(found.begin(), found.end(),
                            [](const std::string &text) {
                                return text.find("of the earlier format version") != std::string::npos;
                            }),
              1);
}

// A process of the earlier version died in the middle of a write: the old value counts.
TEST_F(earlier_image, with_a_write_in_progress_shows_the_old_value) {
    const auto &layout = qryhost::store_layout::get();
    const auto &place = *layout.find(settings, setting_ids[0]);
    const std::size_t guard = header_bytes + place.lock * memory_shape::earlier().guard_stride;
    const std::uint32_t fields[] = {1, qryhost::write_value, place.value_offset(0), place.size};
    const std::uint32_t old_mode = 5;
    before.replace(guard + offsetof(value_guard, sequence), sizeof fields,
                   reinterpret_cast<const char *>(fields), sizeof fields);
    before.replace(guard + memory_shape::earlier().guard_bytes, sizeof old_mode,
                   reinterpret_cast<const char *>(&old_mode), sizeof old_mode);
    std::ofstream(path, std::ios::binary) << before;
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    EXPECT_EQ(mode(), 5u);
}

} // namespace
