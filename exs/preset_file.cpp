// Reads a preset from any kind of file. It may be a pipe that is never written to, or an endless
// device: opening never blocks, and time and size are limited, so no file can hang a run. A pipe
// that has a writer is read without a time limit, since the writer may be a slow program.
#include "preset_file.h"

#include "base/cf_values.h"
#include "base/descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

namespace lumo::exs {
namespace {

constexpr std::size_t max_preset_size = std::size_t{1} << 30;
constexpr std::size_t usual_read_size = 65536;
constexpr int read_timeout_ms = 3000;
constexpr int no_timeout = -1;

/// The kind and the expected size of a file, read once before its contents. A regular file may
/// still grow.
struct FileStatus {
    bool is_pipe;
    bool is_regular;
    std::size_t expected_size;
};

/// The status of an open file; on failure that of a file that is neither regular nor a pipe.
FileStatus status_of(int file) {
    struct stat status = {};
    fstat(file, &status);
    const bool is_regular = S_ISREG(status.st_mode);
    return {S_ISFIFO(status.st_mode), is_regular,
            is_regular ? static_cast<std::size_t>(status.st_size) : usual_read_size};
}

/// Waits until the file has bytes or is at its end; false after `timeout_ms`, or on a failure.
bool wait_for(int file, int timeout_ms) {
    pollfd ready = {file, POLLIN, {}};
    return uninterrupted([&] { return poll(&ready, 1, timeout_ms); }) > 0;
}

/// Reads up to `size` bytes. Returns their number, 0 at the end, or -1 on a failure or timeout.
ssize_t read_some(int file, int timeout_ms, unsigned char* bytes, std::size_t size) {
    for (;;) {
        const ssize_t count = uninterrupted([&] { return read(file, bytes, size); });
        if (count >= 0 || errno != EAGAIN || !wait_for(file, timeout_ms)) {
            return count;
        }
    }
}

} // namespace

std::vector<unsigned char> read_preset(const std::string& path) {
    const Descriptor file(
        uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
    const FileStatus status = status_of(file.get()); // reading fails if the file was not opened
    if (status.expected_size > max_preset_size) {
        return {};
    }
    if (status.is_pipe) {
        // A pipe without a writer reads as if it had ended, so a writer is waited for first. While
        // the writer has written nothing yet, the read fails with EAGAIN.
        wait_for(file.get(), read_timeout_ms);
    }
    const int timeout_ms = status.is_pipe ? no_timeout : read_timeout_ms;
    std::vector<unsigned char> bytes(status.expected_size + 1);
    for (std::size_t used = 0; used <= max_preset_size;) {
        const ssize_t count =
            read_some(file.get(), timeout_ms, bytes.data() + used, bytes.size() - used);
        used += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        // The read asked for one byte more than a regular file should have; if there is none, the
        // file ends here.
        if (count <= 0 || (status.is_regular && used == status.expected_size)) {
            bytes.resize(count >= 0 ? used : 0);
            return bytes;
        }
        if (used == bytes.size()) {
            bytes.resize(std::min(2 * used, max_preset_size + 1));
        }
    }
    return {};
}

Ref<CFDictionaryRef> read_dictionary(const std::string& path) {
    const std::vector<unsigned char> bytes = read_preset(path);
    const auto data = adopt(CFDataCreateWithBytesNoCopy(
        kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()), kCFAllocatorNull));
    const auto list = adopt(CFPropertyListCreateWithData(
        kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
    return retain(value_as<CFDictionaryRef>(list.get()));
}

} // namespace lumo::exs
