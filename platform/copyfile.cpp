// copyfile for Linux: one regular file with its data, mode, times, extended attributes, access
// control list and, where permitted, its owner.
//
// The copy is written into an unnamed file in the destination folder and is linked to its name when
// it is complete, so no process ever sees an incomplete copy, and a killed process leaves no file
// behind. On a file system without unnamed files it is written under a hidden name and renamed.
// Neither method replaces an existing file; EEXIST is reported only after the copy, so a caller
// that expects an existing file should check first.
#include "base/descriptor.h"
#include "copyfile_contents.h"

#include <copyfile.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>

namespace lumo::platform {
namespace {

constexpr copyfile_flags_t known_flags =
    COPYFILE_ALL | COPYFILE_EXCL | COPYFILE_NOFOLLOW_SRC | COPYFILE_CLONE;
constexpr copyfile_flags_t clone_implies =
    COPYFILE_EXCL | COPYFILE_STAT | COPYFILE_XATTR | COPYFILE_DATA | COPYFILE_NOFOLLOW_SRC;

constexpr mode_t private_mode = S_IRUSR | S_IWUSR;

/// The folder of a path, with a slash at the end.
std::string folder_of(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? "./" : std::string(path.substr(0, slash + 1));
}

/// A path for a hidden file beside `path`, with a random name; empty, with errno set, when the
/// system provides no random numbers.
std::string hidden_path(std::string_view path) {
    std::uint64_t number = 0;
    if (uninterrupted([&] { return getrandom(&number, sizeof number, 0); }) == -1) {
        return {};
    }
    std::array<char, 40> name{};
    std::snprintf(name.data(), name.size(), ".lumo-copy-%016llx",
                  static_cast<unsigned long long>(number));
    return folder_of(path) + name.data();
}

bool lacks_nameless_files(int error) {
    return error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == ENOSYS;
}

/// The file that becomes the copy. The destructor removes it unless it was published.
class PendingFile {
public:
    PendingFile() = default;
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile() {
        if (!hidden_.empty()) {
            const int error = errno;
            ::unlink(hidden_.c_str());
            errno = error;
        }
    }

    int fd() const { return fd_.get(); }

    /// Creates the file in the folder of `path` with `mode`; a hidden file, which others can find,
    /// is accessible to its owner only. False, with errno set, on failure.
    bool create(const std::string& path, mode_t mode) {
        const std::string folder = folder_of(path);
        fd_ = Descriptor(uninterrupted(
            [&] { return ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode); }));
        return fd_ || (lacks_nameless_files(errno) && create_hidden(path));
    }

    /// Gives the file the name `path`. False, with errno set, on failure (EEXIST: the name is
    /// taken).
    bool publish(const std::string& path) {
        return hidden_.empty() ? link_nameless(path) : rename_hidden(path);
    }

private:
    bool create_hidden(const std::string& path) {
        const std::string name = hidden_path(path);
        if (name.empty()) {
            return false;
        }
        fd_ = Descriptor(uninterrupted([&] {
            return ::open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, private_mode);
        }));
        if (fd_) {
            hidden_ = name;
        }
        return static_cast<bool>(fd_);
    }

    bool link_nameless(const std::string& path) const {
        if (::linkat(fd_.get(), "", AT_FDCWD, path.c_str(), AT_EMPTY_PATH) == 0) {
            return true;
        }
        if (errno != ENOENT) {
            return false;
        }
        // Before Linux 6.10 only root may link a descriptor directly; every user may link it
        // through /proc.
        const std::string self = "/proc/self/fd/" + std::to_string(fd_.get());
        return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }

    bool rename_hidden(const std::string& path) {
        // Network file systems may report only here that data could not be written.
        if (::close(fd_.release()) != 0 && errno != EINTR) {
            return false;
        }
        if (::renameat2(AT_FDCWD, hidden_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
            hidden_.clear();
            return true;
        }
        // The file system does not support RENAME_NOREPLACE: a hard link is made instead, and the
        // destructor removes the hidden name.
        return (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP) &&
               ::link(hidden_.c_str(), path.c_str()) == 0;
    }

    Descriptor fd_;
    std::string hidden_; ///< the hidden path; empty when the file has none
};

bool copy_link(const char* from, const char* to, const struct stat& status) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink(from, target.data(), target.size() - 1);
    if (length == -1 || ::symlink(target.data(), to) != 0) {
        return false;
    }
    // The link exists; errors in setting its times and owner are ignored.
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    if (::lchown(to, status.st_uid, status.st_gid) != 0 ||
        ::utimensat(AT_FDCWD, to, times.data(), AT_SYMLINK_NOFOLLOW) != 0) {
        errno = 0;
    }
    return true;
}

bool copy_regular(int from, const std::string& to, const struct stat& status,
                  copyfile_flags_t flags) {
    // The owner may read and write until the attributes are set, which is not permitted on a
    // read-only file.
    PendingFile copy;
    return copy.create(to, (status.st_mode & ACCESSPERMS) | private_mode) &&
           copy_data(from, copy.fd(), status, (flags & COPYFILE_CLONE) != 0) &&
           copy_metadata(from, copy.fd(), status, flags) && copy.publish(to);
}

bool copy_file(const char* from, const char* to, copyfile_flags_t flags) {
    struct stat status {};
    const int nofollow = (flags & COPYFILE_NOFOLLOW_SRC) != 0 ? O_NOFOLLOW : 0;
    const Descriptor source(uninterrupted(
        [&] { return ::open(from, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | nofollow); }));
    if (!source) {
        return errno == ELOOP && nofollow != 0 && ::lstat(from, &status) == 0 &&
               S_ISLNK(status.st_mode) && copy_link(from, to, status);
    }
    if (::fstat(source.get(), &status) != 0) {
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : ENOTSUP;
        return false;
    }
    return copy_regular(source.get(), to, status, flags);
}

} // namespace
} // namespace lumo::platform

extern "C" int copyfile(const char* from, const char* to, copyfile_state_t state,
                        copyfile_flags_t flags) try {
    using namespace lumo::platform;
    if ((flags & COPYFILE_CLONE) != 0) {
        flags |= clone_implies;
    }
    if (!from || !to || state || (flags & COPYFILE_DATA) == 0 || (flags & ~known_flags) != 0) {
        errno = EINVAL;
        return -1;
    }
    return copy_file(from, to, flags) ? 0 : -1;
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return -1;
}
