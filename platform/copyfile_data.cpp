// The data of a copied file: the kernel copies it (copy_file_range), by sharing the blocks where
// the volume can; else it is read and written. A file with holes is cloned (FICLONE), or else its
// data is copied piece by piece between them.
#include "base/descriptor.h"
#include "copyfile_contents.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <limits>

namespace lumo::platform {
namespace {

constexpr std::size_t buffer_size = std::size_t{128} * 1024;
constexpr off_t largest_step = off_t{1} << 30; ///< of one copy_file_range; any whole page will do
constexpr off_t to_the_end = std::numeric_limits<off_t>::max();

/// Copies from `at` up to `end` or the end of the file, and moves `at` along, as far as the kernel
/// does it by itself. Where it stops, for whatever reason, reading and writing go on or meet the
/// same failure.
void copy_in_kernel(int from, int to, off_t& at, off_t end) {
    off_t out = at;
    ssize_t count = 1;
    while (count > 0 && at < end) {
        count = uninterrupted([&] {
            const auto length = static_cast<std::size_t>(std::min(end - at, largest_step));
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

/// Copies from `at` up to `end` or the end of the file.
bool copy_by_hand(int from, int to, off_t at, off_t end) {
    std::array<char, buffer_size> buffer; // not zeroed: pread fills what is used of it
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

/// Copies a file without holes. The kernel also stops early in files that do not know their size
/// (those of /proc): of one that is shorter than it says, or says 0, a read finds the end.
bool copy_whole(int from, int to, off_t size) {
    off_t at = 0;
    copy_in_kernel(from, to, at, size);
    return (size > 0 && at >= size) || copy_by_hand(from, to, at, to_the_end);
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
    return errno == ENXIO && ::ftruncate(to, size) == 0; // ENXIO: no data behind the last hole
}

} // namespace

bool copy_data(int from, int to, const struct stat& status, bool clone) {
    constexpr off_t block = 512; // the unit of st_blocks, whatever the file system's own
    if (status.st_blocks >= status.st_size / block) {
        return copy_whole(from, to, status.st_size);
    }
    return (clone && ::ioctl(to, FICLONE, from) == 0) || copy_sparse(from, to, status.st_size);
}

} // namespace lumo::platform
