// File systems that do not share memory, and files with holes.
#include "platform/host/file_system.h"

#include <sys/vfs.h>

#include <algorithm>
#include <iterator>

namespace qryhost {

namespace {

struct file_system_kind {
    std::uint32_t number; // as statfs tells it
    const char *name;
};

// Another machine may write these files, and neither its memory nor its locks are ours.
constexpr file_system_kind network_kinds[] = {
    {0x00006969, "NFS"},    {0x0000517B, "SMB"},   {0xFF534D42, "CIFS"}, {0xFE534D42, "SMB2"},
    {0x5346414F, "AFS"},    {0x73757245, "Coda"},  {0x01021997, "9P"},   {0x00C36400, "Ceph"},
    {0x0BD00BD0, "Lustre"}, {0x7461636F, "OCFS2"}, {0x01161970, "GFS2"}, {0x65735546, "FUSE"}};

constexpr std::uint32_t memory_kind = 0x01021994; // reading a hole takes room there

std::uint32_t kind_of(const open_file &file) {
    struct statfs status {};
    return ::fstatfs(file.number(), &status) == 0 ? static_cast<std::uint32_t>(status.f_type) : 0;
}

// A file whose holes cannot be told has none.
bool has_hole(const open_file &file, std::uint32_t bytes) {
    const off_t hole = ::lseek(file.number(), 0, SEEK_HOLE);
    return hole >= 0 && hole < static_cast<off_t>(bytes);
}

} // namespace

std::string unshared_reason(const open_file &file) {
    const std::uint32_t kind = kind_of(file);
    const auto *found = std::find_if(std::begin(network_kinds), std::end(network_kinds),
                                     [kind](const file_system_kind &row) { return row.number == kind; });
    return found == std::end(network_kinds)
               ? ""
               : std::string("is on a network file system (") + found->name +
                     "), where processes do not see each other's writes: it is only read";
}

// Not posix_fallocate: where the file system cannot do it, that one writes into the file beside its users.
void reserve_room(const std::string &path, const open_file &file, std::uint32_t bytes) {
    int result = 0;
    do {
        result = ::fallocate(file.number(), 0, 0, bytes);
    } while (result != 0 && errno == EINTR);
    const int error = errno;
    if (result != 0 && (error != EOPNOTSUPP || has_hole(file, bytes))) {
        fail(path, "its room on the disk cannot be reserved", error);
    }
}

void require_room(const std::string &path, const open_file &file, std::uint32_t bytes) {
    if (kind_of(file) == memory_kind && has_hole(file, bytes)) {
        throw refusal(path +
                      ": has parts without room in memory; open it for writing once, which reserves it");
    }
}

} // namespace qryhost
