// The data of a copied file. The kernel copies it (copy_file_range) and shares blocks where the
// volume supports this; otherwise it is read and written. A small file does not share blocks:
// copying it (sendfile) takes no longer, and its copy is in memory, while the first read of a clone
// waits for the disk. A file with holes is cloned (FICLONE); otherwise the data between the holes
// is copied.
#include "base/descriptor.h"
#include "copyfile_contents.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <limits>

namespace lumo::platform {
namespace {

constexpr std::size_t buffer_size = std::size_t{128} * 1024;
constexpr off_t max_step = off_t{1} << 30; ///< of one copy_file_range, in bytes
constexpr off_t max_small = 16384;         ///< size of a file that does not share blocks
constexpr off_t to_the_end = std::numeric_limits<off_t>::max();

/// Copies from `at` up to `end` or the end of the file, as far as copy_file_range succeeds, and
/// advances `at`. Errors are ignored: copy_by_hand continues from `at` and reports the failure.
void copy_in_kernel(int from, int to, off_t& at, off_t end) {
    off_t out = at;
    ssize_t count = 1;
    while (count > 0 && at < end) {
        count = uninterrupted([&] {
            const auto length = static_cast<std::size_t>(std::min(end - at, max_step));
            return ::copy_file_range(from, &at, to, &out, length, 0);
        });
    }
}

bool write_all(int to, const char* bytes, std::size_t count, off_t at) {
    while (count > 0) {
        const ssize_t written = uninterrupted([&] { return ::pwrite(to, bytes, count, at); });
        if (written < 0) {
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
        at += written;
    }
    return true;
}

/// Copies from `at` up to `end` or the end of the file by reading and writing.
bool copy_by_hand(int from, int to, off_t at, off_t end) {
    std::array<char, buffer_size> buffer; // not zeroed: pread fills the part that is used
    while (at < end) {
        const auto length = std::min(buffer.size(), static_cast<std::size_t>(end - at));
        const ssize_t count =
            uninterrupted([&] { return ::pread(from, buffer.data(), length, at); });
        if (count <= 0) {
            return count == 0;
        }
        if (!write_all(to, buffer.data(), static_cast<std::size_t>(count), at)) {
            return false;
        }
        at += count;
    }
    return true;
}

bool copy_range(int from, int to, off_t at, off_t end) {
    copy_in_kernel(from, to, at, end);
    return copy_by_hand(from, to, at, end);
}

/// Copies a file without holes. Some files, such as those of /proc, have a size of 0 or one that is
/// too large, and the kernel's functions stop early in them; reading finds their end.
bool copy_whole(int from, int to, off_t size) {
    off_t at = 0;
    if (size > max_small) {
        copy_in_kernel(from, to, at, size);
    } else {
        ::sendfile(to, from, &at, static_cast<std::size_t>(size)); // errors: as in copy_in_kernel
    }
    return copy_by_hand(from, to, at, size > 0 ? size : to_the_end);
}

bool copy_sparse(int from, int to, off_t size) {
    off_t at = ::lseek(from, 0, SEEK_DATA);
    while (at >= 0) {
        const off_t end = ::lseek(from, at, SEEK_HOLE);
        if (end < 0 || !copy_range(from, to, at, end)) {
            return false;
        }
        at = ::lseek(from, end, SEEK_DATA);
    }
    return errno == ENXIO && ::ftruncate(to, size) == 0; // ENXIO: no data after the last hole
}

} // namespace

bool copy_data(int from, int to, const struct stat& status, bool clone) {
    constexpr off_t block = 512; // the unit of st_blocks on every file system
    if (status.st_blocks >= status.st_size / block) {
        return copy_whole(from, to, status.st_size);
    }
    return (clone && ::ioctl(to, FICLONE, from) == 0) || copy_sparse(from, to, status.st_size);
}

} // namespace lumo::platform
