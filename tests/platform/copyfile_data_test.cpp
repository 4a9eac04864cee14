// The data of files that copyfile copies.
#include "base/descriptor.h"
#include "copyfile_fixture.h"
#include "support/loop_volume.h"

#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace lumo::test {
namespace {

TEST_F(CopyFile, CopiesEveryByte) {
    write_file(from, noise(3'000'001));
    EXPECT_EQ(try_copy(from, to), 0);
    EXPECT_EQ(read_file(to), noise(3'000'001));
    EXPECT_EQ(entries(show), 1U);
}

TEST_F(CopyFile, CopiesAnEmptyFile) {
    write_file(from, "");
    EXPECT_EQ(try_copy(from, to), 0);
    EXPECT_TRUE(fs::is_regular_file(to));
    EXPECT_EQ(fs::file_size(to), 0U);
}

TEST_F(CopyFile, CopiesWithoutTheCloneFlag) {
    write_file(from, noise(70'000));
    EXPECT_EQ(try_copy(from, to, COPYFILE_ALL), 0);
    EXPECT_EQ(read_file(to), noise(70'000));
}

TEST_F(CopyFile, CopiesByHandWhereTheKernelDoesNotCopy) {
    ASSERT_EQ(copy_without({no_clone, no_copy_in_kernel}, noise(300'001)), 0);
    EXPECT_EQ(read_file(to), noise(300'001));
}

TEST_F(CopyFile, CopiesASmallFile) {
    write_file(from, noise(4097));
    EXPECT_EQ(try_copy(from, to), 0);
    EXPECT_EQ(read_file(to), noise(4097));
}

TEST_F(CopyFile, CopiesASmallFileByHandWhereTheKernelDoesNotCopy) {
    ASSERT_EQ(copy_without({{SYS_sendfile, EINVAL}}, noise(4097)), 0);
    EXPECT_EQ(read_file(to), noise(4097));
}

TEST_F(CopyFile, CopiesAFileThatDoesNotKnowItsSize) {
    EXPECT_EQ(try_copy("/proc/version", to), 0);
    EXPECT_EQ(read_file(to), read_file("/proc/version"));
    EXPECT_FALSE(read_file(to).empty());
}

TEST_F(CopyFile, KeepsHolesAsHoles) {
    constexpr off_t size = 8 << 20;
    write_file(from, noise(5000));
    ASSERT_EQ(truncate(from.c_str(), size), 0);
    std::FILE* file = std::fopen(from.c_str(), "r+b");
    ASSERT_TRUE(file);
    std::fseek(file, size / 2, SEEK_SET);
    std::fputs("in the middle", file);
    std::fclose(file);
    ASSERT_EQ(try_copy(from, to), 0);
    struct stat status {};
    ASSERT_EQ(stat(to.c_str(), &status), 0);
    EXPECT_EQ(status.st_size, size);
    EXPECT_LT(status.st_blocks * 512, size / 4);
    EXPECT_EQ(read_file(to), read_file(from));
}

TEST_F(CopyFile, CopiesAFileThatIsAllHole) {
    write_file(from, "");
    ASSERT_EQ(truncate(from.c_str(), 1 << 20), 0);
    EXPECT_EQ(try_copy(from, to), 0);
    EXPECT_EQ(read_file(to), std::string(1 << 20, '\0'));
}

TEST_F(CopyFile, LeavesNothingOfAFileWithHolesThatTheDiskDoesNotGive) {
    write_file(from, noise(5000));
    ASSERT_EQ(truncate(from.c_str(), 1 << 20), 0);
    const std::vector<RefusedCall> faults[] = {
        {no_clone, no_look_for_data},
        {no_clone, no_look_for_holes},
        {no_clone, no_copy_in_kernel, {SYS_pread64, EIO}},
        {no_clone, {SYS_ftruncate, EIO}},
    };
    for (const std::vector<RefusedCall>& fault : faults) {
        EXPECT_EQ(in_child([&] { return refuse(fault) ? try_copy(from, to) : not_possible_here; }),
                  EIO)
            << fault.back().number;
        EXPECT_EQ(entries(show), 0U);
    }
}

TEST_F(CopyFile, WorksWhereTheStandardStreamsAreClosed) {
    write_file(from, noise(5000));
    ASSERT_EQ(truncate(from.c_str(), 1 << 20), 0);
    EXPECT_EQ(in_child([&] {
                  close(0);
                  close(1);
                  const int error = try_copy(from, to);
                  const bool closed = fcntl(0, F_GETFD) < 0 && fcntl(1, F_GETFD) < 0;
                  return closed ? error : not_possible_here;
              }),
              0);
    EXPECT_EQ(read_file(to), read_file(from));
}

TEST_F(CopyFile, LeavesNothingOfAFileThatIsTooLarge) {
    write_file(from, noise(300'000));
    for (const bool named : {false, true}) {
        EXPECT_EQ(in_child([&] {
                      signal(SIGXFSZ, SIG_IGN);
                      const rlimit limit{100'000, 100'000};
                      return setrlimit(RLIMIT_FSIZE, &limit) == 0 &&
                                     (!named || refuse({no_nameless_files}))
                                 ? try_copy(from, to)
                                 : not_possible_here;
                  }),
                  EFBIG);
        EXPECT_EQ(entries(show), 0U);
    }
}

TEST_F(CopyFile, LeavesNothingOnAFullVolume) {
    write_file(from, noise(300'000));
    for (const bool named : {false, true}) {
        const int outcome = in_child([&] {
            if (!mount_small_volume(show.c_str(), 128 * 1024) ||
                (named && !refuse({no_nameless_files}))) {
                return not_possible_here;
            }
            const int error = try_copy(from, to);
            return entries(show) == 0 ? error : 0;
        });
        if (outcome == not_possible_here) {
            GTEST_SKIP() << "mounting is not permitted";
        }
        EXPECT_EQ(outcome, ENOSPC);
    }
}

/// Whether other files share the first blocks of the file at `path`.
bool is_shared(const fs::path& path) {
    alignas(fiemap) std::array<char, sizeof(fiemap) + sizeof(fiemap_extent)> room{};
    auto* const map = reinterpret_cast<fiemap*>(room.data());
    map->fm_length = FIEMAP_MAX_OFFSET;
    map->fm_flags = FIEMAP_FLAG_SYNC;
    map->fm_extent_count = 1;
    const Descriptor file(open(path.c_str(), O_RDONLY));
    return ioctl(file.get(), FS_IOC_FIEMAP, map) == 0 &&
           (map->fm_extents[0].fe_flags & FIEMAP_EXTENT_SHARED) != 0;
}

TEST_F(CopyFile, SharesTheBlocksWhereTheVolumeCan) {
    for (const char* kind : {"xfs", "btrfs"}) {
        const TempFolder place;
        const LoopVolume volume(place.path(), kind, 512 << 20);
        if (!volume.is_mounted()) {
            GTEST_SKIP() << "no volume of " << kind << " can be mounted here";
        }
        const fs::path sample = volume.path() / "kick.wav";
        write_file(sample, noise(1'000'001));
        EXPECT_FALSE(is_shared(sample));
        EXPECT_EQ(try_copy(sample, volume.path() / "copy.wav"), 0);
        EXPECT_TRUE(is_shared(volume.path() / "copy.wav")) << kind;
        EXPECT_EQ(read_file(volume.path() / "copy.wav"), noise(1'000'001));
        const fs::path small = volume.path() / "small.wav";
        write_file(small, noise(16'385));
        EXPECT_EQ(try_copy(small, volume.path() / "small copy.wav"), 0);
        EXPECT_TRUE(is_shared(volume.path() / "small copy.wav")) << kind;
        ASSERT_EQ(truncate(small.c_str(), 16'384), 0);
        EXPECT_EQ(try_copy(small, volume.path() / "smaller copy.wav"), 0);
        EXPECT_FALSE(is_shared(volume.path() / "smaller copy.wav")) << kind;
        ASSERT_EQ(truncate(sample.c_str(), 8 << 20), 0);
        EXPECT_EQ(try_copy(sample, volume.path() / "with a hole.wav"), 0);
        EXPECT_TRUE(is_shared(volume.path() / "with a hole.wav")) << kind;
    }
}

} // namespace
} // namespace lumo::test
