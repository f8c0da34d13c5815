// The ring: at every moment the file holds the newest frames, whole and in order.
#include "tools/field/ring.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <random>

#include "tools/field/recording.h"
#include "tools/files/whole_file.h"

namespace {

constexpr std::uint32_t ring_size = 16 * 1024;
constexpr std::size_t size_max = std::size_t{1024} * 1024;

class a_ring : public testing::Test {
  protected:
    void SetUp() override {
        char folder[] = "/tmp/ring.XXXXXX";
        ASSERT_NE(::mkdtemp(folder), nullptr);
        folder_ = folder;
        path = folder_ + "/a.rec";
        const char *reason = "";
        ASSERT_TRUE(frames.create(path.c_str(), ring_size, field::recording_values, "1.2.3", reason))
            << reason;
    }
    void TearDown() override {
        frames.forget();
        ::unlink(path.c_str());
        ::rmdir(folder_.c_str());
    }

    // A call, whose arguments have this many bytes.
    void write(std::uint32_t bytes) {
        std::vector<std::uint8_t> frame(field::frame_size + 10 + bytes + 4);
        frames.append(frame.data(), 10 + bytes, 1, field::frame_call, 0);
    }
    field::recording read() const { return field::read_recording(qryfiles::read_file(path, size_max)); }

    field::ring frames;
    std::string path;

  private:
    std::string folder_;
};

TEST_F(a_ring, KeepsTheNewestFrames) {
    const auto seed = static_cast<unsigned>(std::random_device()());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uint32_t written = 0;
    for (int round = 0; round < 3000; ++round) {
        write(static_cast<std::uint32_t>(random() % (round % 10 == 0 ? 3900 : 200)));
        ++written;
        if (round % 7 != 0) {
            continue;
        }
        const field::recording found = read();
        ASSERT_EQ(found.unreadable, 0U) << round;
        ASSERT_EQ(found.overwritten + found.calls.size(), written) << round;
        ASSERT_GE(found.calls.size(), std::min<std::size_t>(written, 3)) << round;
    }
    EXPECT_GT(read().overwritten, 1000U);
    EXPECT_EQ(read().library, "1.2.3");
}

TEST_F(a_ring, CountsWhatIsTooLarge) {
    write(100);
    write(ring_size / 4);
    frames.count_dropped();
    EXPECT_EQ(read().dropped, 2U);
    EXPECT_EQ(read().calls.size(), 1U);
}

TEST_F(a_ring, StopsForGood) {
    write(10);
    frames.freeze();
    write(10);
    EXPECT_EQ(read().calls.size(), 1U);
    EXPECT_TRUE(read().is_frozen);
}

// A copy that is taken while frames are overwritten is read from the first whole one that the second look
// knows.
TEST_F(a_ring, IsReadWhileItIsWritten) {
    for (int i = 0; i < 100; ++i) {
        write(300);
    }
    std::string early = qryfiles::read_file(path, size_max);
    for (int i = 0; i < 5; ++i) {
        write(300);
    }
    const std::string late = qryfiles::read_file(path, size_max);
    early.replace(field::place_tail, 4, late, field::place_tail, 4);
    const field::recording found = field::read_recording(early);
    EXPECT_EQ(found.unreadable, 0U);
    EXPECT_GT(found.calls.size(), 20U);
}

TEST_F(a_ring, ReplacesARecordingAndNothingElse) {
    field::ring other;
    const char *reason = "";
    EXPECT_TRUE(other.create(path.c_str(), ring_size, 0, "", reason)) << reason;
    other.forget();
    qryfiles::write_file(path, "mine");
    EXPECT_FALSE(other.create(path.c_str(), ring_size, 0, "", reason));
    EXPECT_STREQ(reason, "it is there, and is no recording");
    EXPECT_EQ(qryfiles::read_file(path, size_max), "mine");
}

} // namespace
