// The status of files and file systems: stat, statfs and their variants.
#include "system/flags.h"
#include "system/system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cstdint>
#include <cstring>

namespace lumo::macos {
namespace {

struct MacStat {
    std::int32_t device;
    std::uint16_t mode, links;
    std::uint64_t inode;
    std::uint32_t user, group;
    std::int32_t special_device;
    timespec accessed, modified, changed, born;
    std::int64_t size, blocks;
    std::int32_t block_size;
    std::uint32_t flags, generation;
    std::int32_t spare;
    std::int64_t spares[2];
};
static_assert(sizeof(MacStat) == 144);

/// The Mac's structure for `from`, written to `into` when `result` is 0.
int give(int result, const struct stat& from, void* into) {
    if (result == 0) {
        MacStat to{};
        to.device = static_cast<std::int32_t>(from.st_dev);
        to.mode = static_cast<std::uint16_t>(from.st_mode);
        to.links = static_cast<std::uint16_t>(from.st_nlink);
        to.inode = from.st_ino;
        to.user = from.st_uid;
        to.group = from.st_gid;
        to.special_device = static_cast<std::int32_t>(from.st_rdev);
        to.accessed = from.st_atim;
        to.modified = from.st_mtim;
        to.changed = to.born = from.st_ctim;
        to.size = from.st_size;
        to.blocks = from.st_blocks;
        to.block_size = static_cast<std::int32_t>(from.st_blksize);
        std::memcpy(into, &to, sizeof to);
    }
    return done(result);
}

int mac_stat(const char* path, void* status) {
    struct stat s {};
    return give(::stat(path, &s), s, status);
}

int mac_lstat(const char* path, void* status) {
    struct stat s {};
    return give(::lstat(path, &s), s, status);
}

int mac_stat_64(const char* path, void* status) {
    return mac_stat(path, status);
}

int mac_lstat_64(const char* path, void* status) {
    return mac_lstat(path, status);
}

int mac_fstat(int file, void* status) {
    struct stat s {};
    return give(::fstat(file, &s), s, status);
}

int mac_fstatat(int folder, const char* path, void* status, int flags) {
    struct stat s {};
    return give(::fstatat(folder_of(folder), path, &s, at_flags(flags)), s, status);
}

struct MacStatfs { // the fields that a caller might read
    std::uint32_t block_size;
    std::int32_t io_size;
    std::uint64_t blocks, free, available, files, free_files;
    char rest[2168 - 48];
};

int mac_statfs(const char* path, MacStatfs* into) {
    struct statvfs s {};
    if (::statvfs(path, &s) != 0) {
        return done(-1);
    }
    *into = {};
    into->block_size = static_cast<std::uint32_t>(s.f_frsize);
    into->blocks = s.f_blocks;
    into->free = s.f_bfree;
    into->available = s.f_bavail;
    return 0;
}

struct MacStatvfs {
    unsigned long block_size, fragment_size;
    std::uint32_t blocks, free, available, files, free_files, available_files;
    unsigned long id, flags, max_name;
};

int mac_statvfs(const char* path, MacStatvfs* into) {
    struct statvfs s {};
    if (::statvfs(path, &s) != 0) {
        return done(-1);
    }
    *into = {s.f_bsize,
             s.f_frsize,
             static_cast<std::uint32_t>(s.f_blocks),
             static_cast<std::uint32_t>(s.f_bfree),
             static_cast<std::uint32_t>(s.f_bavail),
             0,
             0,
             0,
             0,
             0,
             s.f_namemax};
    return 0;
}

const Name names[] = {
    row("_stat64", mac_stat_64),          row("_lstat64", mac_lstat_64),
    row("_statvfs", mac_statvfs),         row("_stat" INODE64, mac_stat),
    row("_lstat" INODE64, mac_lstat),     row("_fstat" INODE64, mac_fstat),
    row("_fstatat" INODE64, mac_fstatat), row("_statfs" INODE64, mac_statfs),
};

} // namespace

std::span<const Name> status_names() {
    return names;
}

} // namespace lumo::macos
