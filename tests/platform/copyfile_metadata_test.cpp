// The metadata that copyfile copies besides the data.
#include "in_child.h"
#include "support/descriptors.h"
#include "support/temp_folder.h"

#include <copyfile.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace lumo::test {
namespace {

constexpr const char* acl_name = "system.posix_acl_access";

struct stat status_of(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

/// The value of an extended attribute; "(none)" when the file does not have it.
std::string attribute(const fs::path& path, const char* name) {
    std::string value(65536, '\0');
    const ssize_t size = getxattr(path.c_str(), name, value.data(), value.size());
    value.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return size < 0 ? "(none)" : value;
}

bool set_attribute(const fs::path& path, const char* name, std::string_view value) {
    return setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

/// An access control list in the kernel's format: owner rw-, user 4242 rw-, group r--, mask rw-,
/// others ---.
std::string acl_bytes() {
    std::string bytes = "\2\0\0\0"s; // the version
    const auto entry = [&](int tag, int rights, std::uint32_t id) {
        for (const std::uint32_t part : {std::uint32_t(tag) | std::uint32_t(rights) << 16, id}) {
            for (int shift = 0; shift < 32; shift += 8) {
                bytes.push_back(static_cast<char>(part >> shift));
            }
        }
    };
    entry(0x01, 6, ~0U);
    entry(0x02, 6, 4242);
    entry(0x04, 4, ~0U);
    entry(0x10, 6, ~0U);
    entry(0x20, 0, ~0U);
    return bytes;
}

class CopyFileMetadata : public testing::Test {
protected:
    TempFolder folder;
    const fs::path from = folder / "kick.wav";
    const fs::path show = folder / "Show";
    const fs::path to = show / "kick.wav";
    void SetUp() override {
        fs::create_directory(show);
        write_file(from, "bytes");
    }
    int copy(copyfile_flags_t flags = COPYFILE_ALL | COPYFILE_CLONE) const {
        return copyfile(from.c_str(), to.c_str(), nullptr, flags) == 0 ? 0 : errno;
    }
    /// Copies in a process of an unprivileged user. A process that does not run as root is
    /// unprivileged already.
    int copy_as_nobody() const {
        fs::permissions(folder.path(), fs::perms::all);
        fs::permissions(show, fs::perms::all);
        return in_child([&] {
            become_nobody();
            return copy();
        });
    }
};

TEST_F(CopyFileMetadata, CarriesTheModeWhateverTheUmask) {
    for (const mode_t mode : {0400U, 0444U, 0640U, 0666U, 0755U, 0777U}) {
        chmod(from.c_str(), mode);
        EXPECT_EQ(in_child([&] {
                      umask(0077);
                      return copy();
                  }),
                  0);
        EXPECT_EQ(status_of(to).st_mode & ALLPERMS, mode);
        fs::remove(to);
    }
}

TEST_F(CopyFileMetadata, DropsTheSetIdBits) {
    chmod(from.c_str(), 06755);
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(status_of(to).st_mode & ALLPERMS, 0755U);
}

TEST_F(CopyFileMetadata, CarriesTheTimesToTheNanosecond) {
    const std::array<timespec, 2> times{timespec{1'000'000'000, 123'456'789},
                                        timespec{1'100'000'000, 987'654'321}};
    ASSERT_EQ(utimensat(AT_FDCWD, from.c_str(), times.data(), 0), 0);
    EXPECT_EQ(copy(), 0);
    const struct stat status = status_of(to);
    EXPECT_EQ(status.st_atim.tv_sec, 1'000'000'000);
    EXPECT_EQ(status.st_atim.tv_nsec, 123'456'789);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'100'000'000);
    EXPECT_EQ(status.st_mtim.tv_nsec, 987'654'321);
}

TEST_F(CopyFileMetadata, LeavesModeAndTimesToTheSystemWithoutTheStatFlag) {
    const std::array<timespec, 2> times{timespec{1'000'000'000, 0}, timespec{1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, from.c_str(), times.data(), 0), 0);
    EXPECT_EQ(copy(COPYFILE_DATA), 0);
    EXPECT_NE(status_of(to).st_mtim.tv_sec, 1'000'000'000);
}

TEST_F(CopyFileMetadata, CarriesExtendedAttributes) {
    if (!set_attribute(from, "user.comment", "a kick\0with a zero"s)) {
        GTEST_SKIP() << "no extended attributes in the temporary folder";
    }
    ASSERT_TRUE(set_attribute(from, "user.empty", ""));
    ASSERT_TRUE(set_attribute(from, "user.large", std::string(2000, 'x')));
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(attribute(to, "user.comment"), "a kick\0with a zero"s);
    EXPECT_EQ(attribute(to, "user.empty"), "");
    EXPECT_EQ(attribute(to, "user.large"), std::string(2000, 'x'));
}

TEST_F(CopyFileMetadata, CarriesExtendedAttributesOfAReadOnlyFileOfAnybody) {
    if (!set_attribute(from, "user.comment", "a kick")) {
        GTEST_SKIP() << "no extended attributes in the temporary folder";
    }
    chmod(from.c_str(), 0444);
    EXPECT_EQ(copy_as_nobody(), 0);
    EXPECT_EQ(attribute(to, "user.comment"), "a kick");
    EXPECT_EQ(status_of(to).st_mode & ALLPERMS, 0444U);
}

TEST_F(CopyFileMetadata, CarriesTheAccessControlList) {
    if (!set_attribute(from, acl_name, acl_bytes())) {
        GTEST_SKIP() << "no access control lists in the temporary folder";
    }
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(attribute(to, acl_name), acl_bytes());
    EXPECT_EQ(status_of(to).st_mode, status_of(from).st_mode);
}

TEST_F(CopyFileMetadata, LeavesTheAccessControlListWithoutItsFlag) {
    if (!set_attribute(from, acl_name, acl_bytes())) {
        GTEST_SKIP() << "no access control lists in the temporary folder";
    }
    EXPECT_EQ(copy(COPYFILE_CLONE), 0);
    EXPECT_EQ(attribute(to, acl_name), "(none)");
}

TEST_F(CopyFileMetadata, GivesNoAccessThatTheSourceDidNotGive) {
    if (!set_attribute(show, "system.posix_acl_default", acl_bytes())) {
        GTEST_SKIP() << "no access control lists in the temporary folder";
    }
    chmod(from.c_str(), 0640);
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(attribute(to, acl_name), "(none)");
    EXPECT_EQ(status_of(to).st_mode & ALLPERMS, 0640U);
}

TEST_F(CopyFileMetadata, CarriesTheOwnerWherePermitted) {
    if (chown(from.c_str(), 4242, 4343) != 0) {
        GTEST_SKIP() << "only the superuser gives files away";
    }
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(status_of(to).st_uid, 4242U);
    EXPECT_EQ(status_of(to).st_gid, 4343U);
}

TEST_F(CopyFileMetadata, KeepsItsOwnOwnerWhereTheOtherIsNotPermitted) {
    chmod(from.c_str(), 0644);
    EXPECT_EQ(copy_as_nobody(), 0);
    EXPECT_EQ(read_file(to), "bytes");
}

TEST_F(CopyFileMetadata, DoesWithoutMetadataWhereTheVolumeHasNone) {
    set_attribute(from, "user.comment", "a kick");
    chown(from.c_str(), 4242, 4343); // changes the owner only when that is permitted
    EXPECT_EQ(in_child([&] {
                  if (!refuse({{SYS_fsetxattr, EOPNOTSUPP},
                               {SYS_fgetxattr, EOPNOTSUPP},
                               {SYS_flistxattr, EOPNOTSUPP},
                               {SYS_fchown, EPERM},
                               {SYS_fchmod, EPERM},
                               {SYS_utimensat, EPERM}})) {
                      return 255;
                  }
                  return copy();
              }),
              0);
    EXPECT_EQ(read_file(to), "bytes");
}

TEST_F(CopyFileMetadata, ReportsAnAttributeThatWasLost) {
    if (!set_attribute(from, "user.comment", "a kick")) {
        GTEST_SKIP() << "no extended attributes in the temporary folder";
    }
    EXPECT_EQ(in_child([&] { return refuse({{SYS_fsetxattr, EIO}}) ? copy() : 255; }), EIO);
    EXPECT_FALSE(fs::exists(to));
}

TEST_F(CopyFileMetadata, ReportsAModeOrTimesThatWereLost) {
    chmod(from.c_str(), 0444);
    for (const int call : {SYS_fchmod, SYS_utimensat}) {
        EXPECT_EQ(in_child([&] { return refuse({{call, EIO}}) ? copy() : 255; }), EIO) << call;
        EXPECT_FALSE(fs::exists(to));
    }
}

TEST_F(CopyFileMetadata, ReportsACopyWhoseModeCannotBeRead) {
    const auto copy_fd = static_cast<unsigned>(next_descriptor() + 1); // after the source's
    EXPECT_EQ(in_child([&] {
                  return refuse({{SYS_fstat, EIO, 0, ~0U, copy_fd},
                                 {SYS_newfstatat, EIO, 0, ~0U, copy_fd}})
                             ? copy()
                             : 255;
              }),
              EIO);
    EXPECT_FALSE(fs::exists(to));
}

} // namespace
} // namespace lumo::test
