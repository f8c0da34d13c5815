// The device access file, in a folder of the test's own.
#include <qrylib/device_data.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <qrylib/types.h>

namespace {

namespace fs = std::filesystem;

class device_access : public ::testing::Test {
  protected:
    device_access() {
        std::string folder = (fs::temp_directory_path() / "device_access_XXXXXX").string();
        if (::mkdtemp(&folder[0]) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        folder_ = folder;
        fs::current_path(folder_);
    }
    ~device_access() override {
        fs::current_path(before_);
        fs::remove_all(folder_);
    }

    static std::string contents() {
        std::ifstream in("test_file_debug.dat", std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    static std::string read(std::uint32_t offset, std::uint32_t size) {
        std::string buffer(size, '-');
        EXPECT_EQ(qry_lib_dev_access_read(0, offset, &buffer[0], size), 0u);
        return buffer;
    }

  private:
    fs::path before_ = fs::current_path();
    fs::path folder_;
};

TEST_F(device_access, init_creates_a_file_of_zeros) {
    for (const std::uint32_t size : {0u, 1u, 4095u, 4096u, 4097u, 10000u}) {
        qry_lib_dev_access_init(size);
        EXPECT_TRUE(fs::exists("test_file_debug.dat"));
        EXPECT_EQ(contents(), std::string(size, '\0'));
        fs::remove("test_file_debug.dat");
    }
}

TEST_F(device_access, init_leaves_an_existing_file_alone) {
    std::ofstream("test_file_debug.dat") << "kept";
    qry_lib_dev_access_init(100);
    EXPECT_EQ(contents(), "kept");
}

TEST_F(device_access, init_that_cannot_create_the_file_goes_on) {
    fs::create_symlink("nowhere/at/all", "test_file_debug.dat");
    qry_lib_dev_access_init(16);
    EXPECT_FALSE(fs::exists("test_file_debug.dat"));
}

volatile std::sig_atomic_t refused_writes = 0;

// Lets no file of the process grow beyond a size while it lives, and counts the writes that try.
class file_size_limit {
  public:
    explicit file_size_limit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, count)) {
        refused_writes = 0;
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    file_size_limit(const file_size_limit &) = delete;
    file_size_limit &operator=(const file_size_limit &) = delete;
    ~file_size_limit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

  private:
    static void count(int) { refused_writes = refused_writes + 1; }

    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(device_access, init_ends_where_the_device_is_full) {
    {
        const file_size_limit limit(8192);
        qry_lib_dev_access_init(1 << 20);
    }
    EXPECT_EQ(contents(), std::string(8192, '\0'));
    // The write that fails, and what the file's closing may still try.
    EXPECT_GE(refused_writes, 1);
    EXPECT_LE(refused_writes, 2);
}

TEST_F(device_access, without_its_position_nothing_is_transferred) {
    // A pipe has bytes, but no positions.
    ASSERT_EQ(::mkfifo("test_file_debug.dat", 0600), 0);
    const int pipe = ::open("test_file_debug.dat", O_RDWR | O_NONBLOCK);
    ASSERT_NE(pipe, -1);
    EXPECT_EQ(qry_lib_dev_access_write(0, 0, "abc", 3), 0u);
    char byte = '-';
    EXPECT_EQ(::read(pipe, &byte, 1), -1);
    EXPECT_EQ(::write(pipe, "xyz", 3), 3);
    EXPECT_EQ(read(0, 3), "---");
    ::close(pipe);
}

TEST_F(device_access, writes_are_read_back) {
    qry_lib_dev_access_init(8);
    EXPECT_EQ(qry_lib_dev_access_write(1, 2, "abc", 3), 0u);
    EXPECT_EQ(contents(), std::string("\0\0abc\0\0\0", 8));
    EXPECT_EQ(read(1, 4), std::string("\0abc", 4));
}

TEST_F(device_access, a_write_beyond_the_end_makes_the_file_longer) {
    qry_lib_dev_access_init(2);
    EXPECT_EQ(qry_lib_dev_access_write(0, 4, "x", 1), 0u);
    EXPECT_EQ(contents(), std::string("\0\0\0\0x", 5));
}

TEST_F(device_access, a_short_read_is_a_success) {
    std::ofstream("test_file_debug.dat") << "abc";
    EXPECT_EQ(read(1, 4), "bc--");
    EXPECT_EQ(read(100, 2), "--");
    EXPECT_EQ(read(UINT32_MAX, 2), "--");
}

TEST_F(device_access, offsets_use_all_32_bits) {
    qry_lib_dev_access_init(4);
    EXPECT_EQ(qry_lib_dev_access_write(0, 0x80000001u, "far", 3), 0u);
    EXPECT_EQ(fs::file_size("test_file_debug.dat"), 0x80000004u);
    EXPECT_EQ(read(0x80000001u, 3), "far");
    EXPECT_EQ(read(0, 4), std::string(4, '\0'));
}

TEST_F(device_access, a_file_that_is_not_there_is_announced) {
    char buffer[4] = "abc";
    testing::internal::CaptureStdout();
    EXPECT_EQ(qry_lib_dev_access_read(0, 0, buffer, 3), 1u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "*** test.data file open err(r)\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(qry_lib_dev_access_write(0, 0, buffer, 3), 1u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "*** test.data file open err(r+)\n");
    EXPECT_STREQ(buffer, "abc");
    EXPECT_FALSE(fs::exists("test_file_debug.dat"));
}

TEST_F(device_access, null_buffers_are_refused) {
    qry_lib_dev_access_init(4);
    EXPECT_EQ(qry_lib_dev_access_read(0, 0, nullptr, 4), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_dev_access_write(0, 0, nullptr, 4), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(contents(), std::string(4, '\0'));
}

} // namespace
