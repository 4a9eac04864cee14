// A killed run may leave its last line truncated. The next run then starts a new line.
#include "lines_file.h"

#include "base/descriptor.h"
#include "line_splitter.h"
#include "write_all.h"

#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace lumo::library {
namespace {

std::string last_failure() {
    return strerror(errno);
}

/// Calls `take` for each line of a file, and passes whether the line is complete. False, with errno
/// set, when the file cannot be read to its end. (Streams of libc++ do not report a failed read.)
template <typename Take>
bool read_lines(int descriptor, Take take) {
    std::array<char, 1 << 16> buffer{};
    LineSplitter lines;
    for (;;) {
        const ssize_t size =
            uninterrupted([&] { return ::read(descriptor, buffer.data(), buffer.size()); });
        if (size < 0) {
            return false;
        }
        if (size == 0) {
            take(lines.rest(), false);
            return true;
        }
        lines.add({buffer.data(), static_cast<std::size_t>(size)},
                  [&](std::string_view line) { take(line, true); });
    }
}

bool ends_inside_a_line(int descriptor) {
    const off_t size = lseek(descriptor, 0, SEEK_END);
    char last = '\n';
    return pread(descriptor, &last, 1, size - 1) == 1 && last != '\n'; // fails for an empty file
}

} // namespace

LinesRead read_lines_file(const std::string& path, const std::function<void(Report&&)>& take) {
    LinesRead result;
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const bool is_read = file && read_lines(file.get(), [&](std::string_view line, bool has_end) {
                             if (std::optional<Report> report = parse_report(line)) {
                                 take(std::move(*report));
                             } else if (has_end && !line.empty()) {
                                 ++result.unknown;
                             }
                         });
    if (!is_read) {
        result.fault = last_failure();
    }
    return result;
}

std::string LinesFile::open(const std::string& path) {
    constexpr int flags = O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC;
    file_ = Descriptor(::open(path.c_str(), flags, 0666));
    if (!file_ || (ends_inside_a_line(file_.get()) && !write_all(file_.get(), "\n"))) {
        return last_failure();
    }
    return {};
}

std::string LinesFile::append(std::string_view line) const {
    return write_all(file_.get(), std::string(line) + '\n') ? std::string() : last_failure();
}

} // namespace lumo::library
