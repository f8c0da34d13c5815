// The file system under an image: network file systems, full disks, and file locks in the way of an opener.
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>

#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

std::uint32_t pretended_kind = 0; // of every file system; 0: as it is

} // namespace

// Stands before the system's: no network is needed to see what happens on one.
extern "C" int fstatfs(int file, struct statfs *status) noexcept {
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const int result = statfs(link.c_str(), status);
    if (pretended_kind != 0) {
        std::memcpy(&status->f_type, &pretended_kind, sizeof pretended_kind);
        status->f_type = static_cast<decltype(status->f_type)>(pretended_kind);
    }
    return result;
}

namespace {

using namespace test;

class file_system : public host_test {
  protected:
    ~file_system() override {
        pretended_kind = 0;
        EXPECT_EQ(qryhost_open(nullptr), 0);
    }

    void create_image() {
        EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
        EXPECT_EQ(qryhost_open(nullptr), 0);
    }

    const temporary_folder folder;
    const std::string path = folder.file("device.img");
};

TEST_F(file_system, of_a_network_is_only_read) {
    create_image();
    pretended_kind = 0x6969;
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    std::uint32_t mode = 0;
    EXPECT_EQ(tbctSTCGetStatus(settings, setting_ids[0], &mode), 0u);
    EXPECT_EQ(tbctSTCSetStatus(requester, settings, setting_ids[0], &mode), 0x5245u);
    EXPECT_EQ(std::string(qryhost_error()),
              path + ": is on a network file system (NFS), where processes do not see "
                     "each other's writes: it is only read");
}

TEST_F(file_system, of_a_network_gets_no_new_image) {
    pretended_kind = 0xFF534D42;
    EXPECT_EQ(qryhost_open(path.c_str()), 1);
    EXPECT_NE(std::strstr(qryhost_error(), "is on a network file system (CIFS)"), nullptr) << qryhost_error();
    EXPECT_EQ(folder.entries(), 0);
}

// A disk of its own, seen by the calling child alone.
bool mount_small_disk(const std::string &where, std::uintmax_t bytes) {
    const int spaces = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    return unshare(spaces) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", where.c_str(), "tmpfs", 0, ("size=" + std::to_string(bytes)).c_str()) == 0;
}

// A sparse copy of the image on a disk that has no room for it.
void copy_to_full_disk(const std::string &image, const std::string &disk) {
    std::ifstream from(image, std::ios::binary);
    std::string header(4096, '\0');
    from.read(header.data(), static_cast<std::streamsize>(header.size()));
    std::ofstream(disk + "/sparse.img", std::ios::binary) << header;
    EXPECT_EQ(truncate((disk + "/sparse.img").c_str(), static_cast<off_t>(std::filesystem::file_size(image))),
              0);
    std::ofstream fill(disk + "/rest", std::ios::binary);
    while (fill << std::string(4096, 'x') && fill.flush()) {
    }
}

TEST_F(file_system, that_is_full_refuses_a_sparse_image) {
    create_image();
    const std::string disk = folder.file("disk");
    ASSERT_EQ(mkdir(disk.c_str(), 0755), 0);
    const std::string sparse = disk + "/sparse.img";
    const std::uintmax_t size = std::filesystem::file_size(path);
    child_process child([&] {
        if (!mount_small_disk(disk, size / 2)) {
            _exit(77);
        }
        copy_to_full_disk(path, disk);
        EXPECT_EQ(qryhost_open(sparse.c_str()), 1);
        EXPECT_EQ(std::string(qryhost_error()),
                  sparse + ": its room on the disk cannot be reserved: No space left on device");
        EXPECT_EQ(qryhost_check(sparse.c_str(), nullptr, nullptr), 1);
        EXPECT_NE(std::strstr(qryhost_error(), "has parts without room"), nullptr) << qryhost_error();
        EXPECT_EQ(std::remove((disk + "/rest").c_str()), 0);
        EXPECT_EQ(
            mount("none", disk.c_str(), nullptr, MS_REMOUNT, ("size=" + std::to_string(4 * size)).c_str()),
            0);
        EXPECT_EQ(qryhost_open(sparse.c_str()), 0) << qryhost_error();
        struct stat status {};
        EXPECT_EQ(stat(sparse.c_str(), &status), 0);
        EXPECT_GE(static_cast<std::uintmax_t>(status.st_blocks) * 512, size) << "the room is taken";
        return !HasFailure();
    });
    const int status = child.exit_status();
    if (status == 77) {
        GTEST_SKIP() << "no disk can be mounted here";
    }
    EXPECT_EQ(status, 0);
}

// A process that may only read the image holds the byte that every opener locks.
TEST_F(file_system, locks_of_others_keep_no_opener_waiting) {
    create_image();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const child_process reader([&] {
        const int file = open(path.c_str(), O_RDONLY);
        struct flock range {};
        range.l_type = F_RDLCK;
        range.l_whence = SEEK_SET;
        const bool locked = fcntl(file, F_OFD_SETLK, &range) == 0;
        EXPECT_EQ(write(ready[1], "x", 1), 1);
        pause();
        return locked;
    });
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(qryhost_open(path.c_str()), 1);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(900));
    EXPECT_LT(waited, std::chrono::seconds(3));
    EXPECT_EQ(std::string(qryhost_error()),
              path + ": process " + std::to_string(reader.id()) + " holds the image locked");
    EXPECT_EQ(qryhost_check(path.c_str(), nullptr, nullptr), 0) << "examining needs no lock";
    close(ready[0]);
    close(ready[1]);
}

} // namespace
