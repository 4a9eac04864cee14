// The fixture of the tests of copyfile's data and names, and the system calls that they refuse.
#pragma once

#include "in_child.h"
#include "support/temp_folder.h"

#include <copyfile.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

namespace lumo::test {

/// The flags of the tool's own calls.
inline constexpr copyfile_flags_t usual = COPYFILE_ALL | COPYFILE_CLONE;
/// The result of a child process that could not be prepared.
inline constexpr int not_possible_here = 255;

/// 0, or the errno that the copy ended with.
inline int try_copy(const std::filesystem::path& from, const std::filesystem::path& to,
                    copyfile_flags_t flags = usual) {
    errno = 0;
    const int result = copyfile(from.c_str(), to.c_str(), nullptr, flags);
    return result == 0 ? 0 : errno;
}

/// The same pseudorandom bytes in each call.
inline std::string noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

/// The number of entries of a folder.
inline std::size_t entries(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder),
                                                  std::filesystem::directory_iterator()));
}

class CopyFile : public testing::Test {
protected:
    TempFolder folder;
    const std::filesystem::path from = folder / "kick.wav";
    const std::filesystem::path show = folder / "Show";
    const std::filesystem::path to = show / "kick.wav";
    void SetUp() override { std::filesystem::create_directory(show); }

    /// A copy of `bytes` in a process for which the system refuses `calls`.
    int copy_without(const std::vector<RefusedCall>& calls, const std::string& bytes) {
        write_file(from, bytes);
        return in_child([&] { return refuse(calls) ? try_copy(from, to) : not_possible_here; });
    }

    int try_copy_as_nobody() {
        return in_child([&] {
            become_nobody(); // a user other than root has no rights here anyway
            return try_copy(from, to);
        });
    }
};

inline constexpr RefusedCall no_nameless_files{SYS_openat, EOPNOTSUPP, 2, O_TMPFILE, O_TMPFILE};
inline constexpr RefusedCall no_careful_rename{SYS_renameat2, EINVAL};
inline constexpr RefusedCall no_link_of_a_descriptor{SYS_linkat, ENOENT, 4, AT_EMPTY_PATH,
                                                     AT_EMPTY_PATH};
inline constexpr RefusedCall no_clone{SYS_ioctl, EOPNOTSUPP, 1, ~0U, FICLONE};
inline constexpr RefusedCall no_copy_in_kernel{SYS_copy_file_range, EXDEV};
inline constexpr RefusedCall no_look_for_data{SYS_lseek, EIO, 2, ~0U, SEEK_DATA};
inline constexpr RefusedCall no_look_for_holes{SYS_lseek, EIO, 2, ~0U, SEEK_HOLE};

} // namespace lumo::test
