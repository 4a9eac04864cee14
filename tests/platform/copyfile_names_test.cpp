// How copyfile gives a copy its name, and what it refuses.
#include "copyfile_fixture.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

namespace fs = std::filesystem;

namespace lumo::test {
namespace {

TEST_F(CopyFile, RefusesANameThatIsTaken) {
    write_file(from, "new");
    write_file(to, "old");
    EXPECT_EQ(try_copy(from, to), EEXIST);
    EXPECT_EQ(try_copy(from, to, COPYFILE_ALL), EEXIST);
    EXPECT_EQ(read_file(to), "old");
    EXPECT_EQ(entries(show), 1U);
}

TEST_F(CopyFile, RefusesTheNameOfADanglingLink) {
    write_file(from, "new");
    fs::create_symlink("nowhere", to);
    EXPECT_EQ(try_copy(from, to), EEXIST);
    EXPECT_FALSE(fs::exists(show / "nowhere"));
}

TEST_F(CopyFile, RefusesANameThatIsTakenInEachWayOfNaming) {
    write_file(to, "old");
    EXPECT_EQ(copy_without({no_link_of_a_descriptor}, "new"), EEXIST);
    EXPECT_EQ(copy_without({no_nameless_files}, "new"), EEXIST);
    EXPECT_EQ(copy_without({no_nameless_files, no_careful_rename}, "new"), EEXIST);
    EXPECT_EQ(read_file(to), "old");
    EXPECT_EQ(entries(show), 1U);
}

TEST_F(CopyFile, WorksWhereThereAreNoNamelessFiles) {
    ASSERT_EQ(copy_without({no_nameless_files}, "bytes"), 0);
    EXPECT_EQ(read_file(to), "bytes");
    EXPECT_EQ(entries(show), 1U);
}

TEST_F(CopyFile, WorksWhereRenamingCannotRefuseToReplace) {
    ASSERT_EQ(copy_without({no_nameless_files, no_careful_rename}, "bytes"), 0);
    EXPECT_EQ(read_file(to), "bytes");
    EXPECT_EQ(entries(show), 1U);
}

TEST_F(CopyFile, WorksWhereDescriptorsCannotBeLinked) {
    ASSERT_EQ(copy_without({no_link_of_a_descriptor}, "bytes"), 0);
    EXPECT_EQ(read_file(to), "bytes");
}

TEST_F(CopyFile, FailsRatherThanReplaceWhereThereIsNoCarefulWayToName) {
    EXPECT_EQ(copy_without({no_nameless_files, no_careful_rename, {SYS_link, EPERM}}, "bytes"),
              EPERM);
    EXPECT_EQ(entries(show), 0U);
}

TEST_F(CopyFile, FailsWithoutRandomNumbersForAHiddenName) {
    EXPECT_EQ(copy_without({no_nameless_files, {SYS_getrandom, ENOSYS}}, "bytes"), ENOSYS);
    EXPECT_EQ(entries(show), 0U);
}

TEST_F(CopyFile, SaysThatTheSourceIsAbsent) {
    EXPECT_EQ(try_copy(from, to), ENOENT);
    EXPECT_EQ(entries(show), 0U);
}

TEST_F(CopyFile, SaysThatTheFolderIsAbsent) {
    write_file(from, "bytes");
    EXPECT_EQ(try_copy(from, folder / "Other/kick.wav"), ENOENT);
    EXPECT_EQ(try_copy(from, from / "kick.wav"), ENOTDIR);
}

TEST_F(CopyFile, SaysThatTheSourceMayNotBeRead) {
    write_file(from, "bytes");
    fs::permissions(from, fs::perms::none);
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(show, fs::perms::all);
    EXPECT_EQ(try_copy_as_nobody(), EACCES);
    EXPECT_EQ(entries(show), 0U);
}

TEST_F(CopyFile, SaysThatTheFolderMayNotBeWritten) {
    write_file(from, "bytes");
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(show, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(try_copy_as_nobody(), EACCES);
}

TEST_F(CopyFile, CopiesOnlyRegularFilesAndNeverWaits) {
    ASSERT_EQ(mkfifo(from.c_str(), 0600), 0);
    EXPECT_EQ(try_copy(from, to), ENOTSUP);
    EXPECT_EQ(try_copy("/dev/zero", to), ENOTSUP);
    EXPECT_EQ(try_copy(folder.path(), to), EISDIR);
    EXPECT_EQ(entries(show), 0U);
}

TEST_F(CopyFile, CopiesALinkItselfWhenCloning) {
    fs::create_symlink("elsewhere.wav", from);
    EXPECT_EQ(try_copy(from, to), 0);
    EXPECT_EQ(fs::read_symlink(to), "elsewhere.wav");
}

TEST_F(CopyFile, SaysThatALinkCannotBeMade) {
    fs::create_symlink("elsewhere.wav", from);
    EXPECT_EQ(in_child([&] {
                  return refuse({{SYS_symlink, EPERM}}) ? try_copy(from, to) : not_possible_here;
              }),
              EPERM);
    EXPECT_EQ(entries(show), 0U);
}

TEST_F(CopyFile, FollowsALinkWhenNotCloning) {
    write_file(folder / "elsewhere.wav", "bytes");
    fs::create_symlink("elsewhere.wav", from);
    EXPECT_EQ(try_copy(from, to, COPYFILE_ALL), 0);
    EXPECT_FALSE(fs::is_symlink(to));
    EXPECT_EQ(read_file(to), "bytes");
}

TEST_F(CopyFile, RefusesWhatItDoesNotDo) {
    write_file(from, "bytes");
    EXPECT_EQ(try_copy(from, to, COPYFILE_METADATA), EINVAL);
    EXPECT_EQ(try_copy(from, to, usual | 1U << 20), EINVAL);
    EXPECT_EQ(copyfile(nullptr, to.c_str(), nullptr, usual), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(entries(show), 0U);
}

} // namespace
} // namespace lumo::test
