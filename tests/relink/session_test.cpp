// The records and answers of a session, observed through the C library and the standard library.
#include "session_fixture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>

namespace lumo::exs {
namespace {

using test::read_file;
using test::write_file;

TEST_F(Session, WithoutLookUpsHasAnEmptyResult) {
    relink::begin(index);
    const relink::Result result = relink::end();
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
    EXPECT_TRUE(result.apple_library.empty());
}

TEST_F(Session, UsesAnExistingSampleAsItIs) {
    write_file(folder / "here/kick.wav", "another kick");
    relink::begin(index);
    const std::string bytes = read_file(path("here/kick.wav"));
    const relink::Result result = relink::end();
    EXPECT_EQ(bytes, "another kick");
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, GivesTheIndexedFileForAnAbsentSample) {
    relink::begin(index);
    const std::string bytes = read_file(path("gone/Kick.WAV"));
    const relink::Result result = relink::end();
    EXPECT_EQ(bytes, "the kick");
    EXPECT_EQ(result.relinked, (Pairs{{path("gone/Kick.WAV"), path("library/kick.wav")}}));
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, RecordsAnAbsentSampleThatIsNotIndexed) {
    relink::begin(index);
    const std::string bytes = read_file(path("gone/tom.wav"));
    const relink::Result result = relink::end();
    EXPECT_EQ(bytes, "");
    EXPECT_EQ(result.unresolved, Paths{path("gone/tom.wav")});
    EXPECT_TRUE(result.relinked.empty());
}

TEST_F(Session, AgainstAnEmptyIndexRelinksNothing) {
    const SampleIndex empty;
    relink::begin(empty);
    read_file(path("gone/kick.wav"));
    const relink::Result result = relink::end();
    EXPECT_EQ(result.unresolved, Paths{path("gone/kick.wav")});
    EXPECT_TRUE(result.relinked.empty());
}

TEST_F(Session, TakesAFileInThePlaceOfAFolderAsAbsence) {
    write_file(folder / "flat", "no folder");
    relink::begin(index);
    const std::string bytes = read_file(path("flat/kick.wav"));
    const relink::Result result = relink::end();
    EXPECT_EQ(bytes, "the kick");
    EXPECT_EQ(result.relinked.size(), 1u);
}

TEST_F(Session, CountsASampleAsUnresolvedWhenTheIndexedFileIsGone) {
    std::filesystem::remove(path("library/kick.wav"));
    relink::begin(index);
    struct stat status {};
    errno = 0;
    const int result = stat(path("gone/kick.wav").c_str(), &status);
    const int error = errno;
    const relink::Result recorded = relink::end();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error, ENOENT);
    EXPECT_EQ(recorded.unresolved, Paths{path("gone/kick.wav")});
    EXPECT_TRUE(recorded.relinked.empty());
}

TEST_F(Session, ListsEachPathOnceInTheOrderOfTheFirstLookUps) {
    relink::begin(index);
    for (const char* name : {"b/snare.wav", "a/kick.wav", "z/tom.wav", "b/snare.wav", "a//kick.wav",
                             "y/rim.wav", "z/tom.wav", "a/kick.wav"}) {
        const bool exists = std::filesystem::exists(path(name));
        EXPECT_EQ(read_file(path(name)).empty(), !exists) << name;
    }
    const relink::Result result = relink::end();
    EXPECT_EQ(result.relinked, (Pairs{{path("b/snare.wav"), path("library/snare.wav")},
                                      {path("a/kick.wav"), path("library/kick.wav")},
                                      {path("a//kick.wav"), path("library/kick.wav")}}));
    EXPECT_EQ(result.unresolved, (Paths{path("z/tom.wav"), path("y/rim.wav")}));
}

TEST_F(Session, HoldsOnlyItsOwnLookUps) {
    relink::begin(index);
    read_file(path("gone/kick.wav"));
    read_file(path("gone/tom.wav"));
    relink::end();
    relink::begin(index);
    read_file(path("gone/snare.wav"));
    const relink::Result second = relink::end();
    EXPECT_EQ(second.relinked, (Pairs{{path("gone/snare.wav"), path("library/snare.wav")}}));
    EXPECT_TRUE(second.unresolved.empty());
}

TEST_F(Session, ThatHasEndedRedirectsNothing) {
    relink::begin(index);
    relink::end();
    EXPECT_EQ(read_file(path("gone/kick.wav")), "");
    EXPECT_FALSE(std::filesystem::exists(path("gone/kick.wav")));
}

TEST_F(Session, RecordsASampleOfApplesLibraryAndDoesNotRelinkIt) {
    const std::string apples = "/Library/Application Support/Logic/EXS Factory Samples/kick.wav";
    const std::string moved = path("Logic Pro Library.bundle/snare.wav");
    write_file(moved, "Apple's snare");
    relink::begin(index);
    const std::string absent = read_file(apples);
    const std::string present = read_file(moved);
    read_file(apples);
    const relink::Result result = relink::end();
    EXPECT_EQ(absent, "");
    EXPECT_EQ(present, "Apple's snare");
    EXPECT_EQ(result.apple_library, (Paths{apples, moved}));
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, LeavesPathsAloneThatAreNoSamples) {
    relink::begin(index);
    for (const char* name : {"gone/kick.txt", "gone/kick", "gone/._kick.wav", "gone/kick.wav/",
                             "gone/.AppleDouble/kick.wav", "gone/kick.wav/..namedfork/rsrc"}) {
        EXPECT_FALSE(std::ifstream(path(name))) << name;
    }
    const relink::Result result = relink::end();
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, KeepsErrnoWhenALookUpIsRedirected) {
    relink::begin(index);
    errno = EDOM;
    const int result = access(path("gone/kick.wav").c_str(), R_OK);
    const int error = errno;
    relink::end();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(error, EDOM);
}

TEST_F(Session, LeavesErrnoAsTheRealFunctionSetIt) {
    write_file(folder / "flat", "no folder");
    relink::begin(index);
    errno = 0;
    const int first = access(path("gone/tom.wav").c_str(), R_OK);
    const int absent = errno;
    const int second = access(path("flat/tom.wav").c_str(), R_OK);
    const int no_folder = errno;
    relink::end();
    EXPECT_EQ(first, -1);
    EXPECT_EQ(second, -1);
    EXPECT_EQ(absent, ENOENT);
    EXPECT_EQ(no_folder, ENOTDIR);
}

TEST_F(Session, NeverRedirectsACallThatMayWrite) {
    relink::begin(index);
    const int created = open(path("gone/kick.wav").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int updated = open(path("gone/kick.wav").c_str(), O_RDWR);
    const bool streamed = std::ofstream(path("gone/kick.wav")).is_open();
    const relink::Result result = relink::end();
    EXPECT_LT(created, 0);
    EXPECT_LT(updated, 0);
    EXPECT_FALSE(streamed);
    EXPECT_EQ(read_file(path("library/kick.wav")), "the kick");
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, CreatesASampleWhereTheCallerSaysWithTheCallersMode) {
    umask(022);
    relink::begin(index);
    const int created = open(path("library/new.wav").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0751);
    const relink::Result result = relink::end();
    ASSERT_GE(created, 0);
    struct stat status {};
    fstat(created, &status);
    close(created);
    EXPECT_EQ(status.st_mode & 0777u, 0751u);
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, TakesPathsRelativeToTheCurrentFolder) {
    relink::begin(index);
    const std::string bytes = read_file("no such folder/kick.wav");
    const std::string tom = read_file("no such folder/tom.wav");
    const relink::Result result = relink::end();
    EXPECT_EQ(bytes, "the kick");
    EXPECT_EQ(tom, "");
    EXPECT_EQ(result.relinked, (Pairs{{"no such folder/kick.wav", path("library/kick.wav")}}));
    EXPECT_EQ(result.unresolved, Paths{"no such folder/tom.wav"});
}

/// Look-ups with a folder's descriptor and a name.
class SessionWithFolder : public Session {
protected:
    void SetUp() override {
        Session::SetUp();
        write_file(folder / "here/tom.wav", "the tom");
        here = open(path("here").c_str(), O_RDONLY | O_DIRECTORY);
    }
    void TearDown() override { close(here); }

    bool exists(const std::string& name) const {
        return faccessat(here, name.c_str(), F_OK, 0) == 0;
    }

    int here = -1;
};

TEST_F(SessionWithFolder, LeavesANameRelativeToItAlone) {
    relink::begin(index);
    const bool has_tom = exists("tom.wav");
    const bool has_kick = exists("kick.wav");
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_tom);
    EXPECT_FALSE(has_kick);
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(SessionWithFolder, LooksForAnAbsolutePath) {
    relink::begin(index);
    const bool has_kick = exists(path("gone/kick.wav"));
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_kick);
    EXPECT_EQ(result.relinked, (Pairs{{path("gone/kick.wav"), path("library/kick.wav")}}));
}

TEST_F(SessionWithFolder, GivesAFileOfARelativeRootFromTheCurrentFolder) {
    const auto look_up = [&] {
        SampleIndex relative;
        const bool is_there = chdir(folder.path().c_str()) == 0;
        relative.add_root("library");
        relink::begin(relative);
        const bool has_kick = exists(path("gone/kick.wav"));
        const relink::Result result = relink::end();
        return is_there && has_kick && result.relinked[0].second == "library/kick.wav";
    };
    EXPECT_EXIT(_exit(look_up() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST_F(Session, LeavesCallsWithoutAPathToTheRealFunction) {
    int (*volatile call)(const char*, int, ...) = open; // its declaration forbids a null path
    relink::begin(index);
    errno = 0;
    const int result = call(nullptr, O_RDONLY);
    const int error = errno;
    relink::end();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error, EFAULT);
}

TEST_F(Session, LeavesFlagsAndOffsetsOfAnOpenedFileAsAsked) {
    relink::begin(index);
    const int file = open(path("gone/kick.wav").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    relink::end();
    ASSERT_GE(file, 0);
    EXPECT_TRUE(fcntl(file, F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(fcntl(file, F_GETFD) & FD_CLOEXEC);
    EXPECT_EQ(lseek(file, 0, SEEK_CUR), 0);
    close(file);
}

TEST_F(Session, TakesNoOtherErrorForAbsence) {
    // A link to itself is an example of an error other than absence: it fails for every user.
    std::filesystem::create_directory(folder / "there");
    std::filesystem::create_symlink("kick.wav", folder / "there/kick.wav");
    relink::begin(index);
    errno = 0;
    const int result = access(path("there/kick.wav").c_str(), R_OK);
    const int error = errno;
    const relink::Result recorded = relink::end();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error, ELOOP);
    EXPECT_TRUE(recorded.relinked.empty());
    EXPECT_TRUE(recorded.unresolved.empty());
}

TEST_F(Session, RecordsAnExistingSampleThatALinkLeadsToInApplesLibrary) {
    const std::string apples = "disk/Library/Application Support/Logic/EXS Factory Samples";
    write_file(folder / (apples + "/C3.wav"), "Apple's C3");
    std::filesystem::create_directory(folder / "mine");
    std::filesystem::create_symlink(folder / (apples + "/C3.wav"), folder / "mine/kick.wav");
    std::filesystem::create_symlink(folder / apples, folder / "factory");
    relink::begin(index);
    const std::string first = read_file(path("mine/kick.wav"));
    const std::string again = read_file(path("mine/kick.wav"));
    const bool exists = std::filesystem::exists(path("factory/C3.wav"));
    const std::string own = read_file(path("library/kick.wav"));
    const relink::Result result = relink::end();
    EXPECT_EQ(first, "Apple's C3");
    EXPECT_EQ(again, "Apple's C3");
    EXPECT_TRUE(exists);
    EXPECT_EQ(own, "the kick");
    EXPECT_EQ(result.apple_library, (Paths{path("mine/kick.wav"), path("factory/C3.wav")}));
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Session, RecordsNothingOfAnExistingSampleThatIsOpenedAsAFolder) {
    write_file(folder / "here/kick.wav", "another kick");
    relink::begin(index);
    errno = 0;
    const int result = open(path("here/kick.wav").c_str(), O_RDONLY | O_DIRECTORY);
    const int error = errno;
    const relink::Result recorded = relink::end();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error, ENOTDIR);
    EXPECT_TRUE(recorded.relinked.empty());
    EXPECT_TRUE(recorded.unresolved.empty());
}

TEST_F(Session, GivesTheErrorOfAnIndexedFileThatIsThere) {
    std::array<char, 16> text{};
    relink::begin(index);
    errno = 0;
    const ssize_t length = readlink(path("gone/kick.wav").c_str(), text.data(), text.size());
    const int no_link = errno;
    errno = 0;
    const int folder_of_it = open(path("gone/kick.wav").c_str(), O_RDONLY | O_DIRECTORY);
    const int no_folder = errno;
    const relink::Result result = relink::end();
    EXPECT_EQ(length, -1);
    EXPECT_EQ(no_link, EINVAL);
    EXPECT_EQ(folder_of_it, -1);
    EXPECT_EQ(no_folder, ENOTDIR);
    EXPECT_EQ(result.relinked, (Pairs{{path("gone/kick.wav"), path("library/kick.wav")}}));
}

} // namespace
} // namespace lumo::exs
