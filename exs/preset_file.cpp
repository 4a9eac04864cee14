// Reads a preset as it comes. It may be a pipe that nobody writes to or a device without an end:
// opening never blocks, and waiting and size have their limits, so that none holds up a run.
#include "preset_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

namespace lumo::exs {
namespace {

constexpr std::size_t largest_preset = std::size_t{1} << 30;
constexpr std::size_t usual_read = 65536;
constexpr int patience_ms = 3000;

/// An open file, closed when it goes.
class File {
public:
    explicit File(const char* path) : descriptor_(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
    ~File() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool is_open() const { return descriptor_ >= 0; }

    /// How many bytes to expect, as far as the file can tell.
    std::size_t expected_size() const {
        struct stat status = {};
        const bool known = fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
        return known ? static_cast<std::size_t>(status.st_size) : usual_read;
    }

    /// Reads up to `size` bytes: how many came, 0 at the end, less than 0 on a failure or when
    /// nothing comes.
    ssize_t read_some(unsigned char* bytes, std::size_t size) const {
        for (;;) {
            pollfd ready = {descriptor_, POLLIN, 0};
            const int events = poll(&ready, 1, patience_ms);
            const ssize_t count = events > 0 ? read(descriptor_, bytes, size) : -1;
            if (events == 0 || count >= 0 || (errno != EINTR && errno != EAGAIN)) {
                return count;
            }
        }
    }

private:
    int descriptor_;
};

} // namespace

std::vector<unsigned char> read_preset(const std::string& path) {
    const File file(path.c_str());
    if (!file.is_open()) {
        return {};
    }
    const std::size_t expected_size = file.expected_size(); // asked once: a file may grow
    if (expected_size > largest_preset) {
        return {};
    }
    std::vector<unsigned char> bytes(expected_size + 1);
    for (std::size_t used = 0; used <= largest_preset;) {
        const ssize_t count = file.read_some(bytes.data() + used, bytes.size() - used);
        if (count <= 0) {
            bytes.resize(count == 0 ? used : 0);
            return bytes;
        }
        used += static_cast<std::size_t>(count);
        if (used == bytes.size()) {
            bytes.resize(std::min(2 * used, largest_preset + 1));
        }
    }
    return {};
}

} // namespace lumo::exs
