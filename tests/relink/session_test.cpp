// The records and answers of a session, observed through the C library and the standard library.
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>

namespace lumo::exs {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;
using Paths = std::vector<std::string>;
using test::read_file;
using test::TempFolder;
using test::write_file;

/// A sample library with an index of it, and paths that do not exist.
class Session : public testing::Test {
protected:
    void SetUp() override {
        write_file(folder / "library/kick.wav", "the kick");
        write_file(folder / "library/snare.wav", "the snare");
        index.add_root((folder / "library").string());
    }

    std::string path(std::string_view name) const { return (folder / name).string(); }

    TempFolder folder;
    SampleIndex index;
};

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

TEST_F(Session, MayEndWhileOtherThreadsLookUp) {
    std::atomic<bool> is_over = false;
    std::atomic<int> wrong = 0;
    std::thread other([&] {
        while (!is_over) {
            const std::string bytes = read_file(path("gone/kick.wav"));
            wrong += bytes.empty() || bytes == "the kick" ? 0 : 1;
        }
    });
    for (int i = 0; i < 200; ++i) {
        const auto own = std::make_unique<SampleIndex>(index);
        relink::begin(*own);
        read_file(path("gone/snare.wav"));
        const relink::Result result = relink::end();
        EXPECT_LE(result.relinked.size(), 2u);
        EXPECT_TRUE(result.unresolved.empty());
    }
    is_over = true;
    other.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(Session, AcceptsLookUpsFromSeveralThreads) {
    constexpr int rounds = 200;
    relink::begin(index);
    std::atomic<int> redirected = 0;
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int round = 0; round < rounds; ++round) {
                const std::string file = "gone/" + std::to_string(round);
                redirected += read_file(path(file + "/kick.wav")) == "the kick" ? 1 : 0;
                redirected += access(path(file + "/tom.wav").c_str(), F_OK) != 0 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const relink::Result result = relink::end();
    EXPECT_EQ(redirected, 4 * rounds * 2);
    EXPECT_EQ(result.relinked.size(), static_cast<std::size_t>(rounds));
    EXPECT_EQ(result.unresolved.size(), static_cast<std::size_t>(rounds));
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

/// Sessions of a user to whom permissions apply: user 65534 when the tests run as root.
class SessionOfAUser : public Session {
protected:
    void SetUp() override {
        Session::SetUp();
        namespace fs = std::filesystem;
        fs::permissions(folder.path(), fs::perms(0755));
        for (const char* name : {"closed/kick.wav", "closed/tom.wav"}) {
            write_file(folder / name, "behind a closed folder");
        }
        fs::permissions(path("closed"), fs::perms::none);
    }
    void TearDown() override {
        std::filesystem::permissions(path("closed"), std::filesystem::perms(0700));
    }

    /// Expects `holds` to return true in a process of that user. Skips the test when the process
    /// cannot become that user or the user cannot read the test's folder.
    void expect_of_user(const std::function<bool()>& holds) const {
        const auto run = [&] {
            const bool is_bound = geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
            if (!is_bound || access(folder.path().c_str(), R_OK | X_OK) != 0) {
                return 2;
            }
            return holds() ? 0 : 1;
        };
        int code = -1;
        const auto take_code = [&code](int status) {
            code = WEXITSTATUS(status);
            return WIFEXITED(status);
        };
        EXPECT_EXIT(_exit(run()), take_code, "");
        if (code == 2) {
            GTEST_SKIP() << "no other user can be taken who sees " << folder.path();
        }
        EXPECT_EQ(code, 0);
    }
};

TEST_F(SessionOfAUser, LooksForASampleBehindAClosedFolder) {
    expect_of_user([&] {
        relink::begin(index);
        const std::string kick = read_file(path("closed/kick.wav"));
        const bool has_kick = std::filesystem::exists(path("closed/kick.wav"));
        errno = 0;
        const int tom = open(path("closed/tom.wav").c_str(), O_RDONLY);
        const int error = errno;
        const relink::Result result = relink::end();
        return kick == "the kick" && has_kick && tom == -1 && error == EACCES &&
               result.relinked == Pairs{{path("closed/kick.wav"), path("library/kick.wav")}} &&
               result.unresolved == Paths{path("closed/tom.wav")};
    });
}

TEST_F(SessionOfAUser, GivesTheErrorOfAnIndexedFileThatMayNotBeWritten) {
    std::filesystem::permissions(path("library/kick.wav"), std::filesystem::perms(0444));
    expect_of_user([&] {
        relink::begin(index);
        errno = 0;
        const int result = access(path("gone/kick.wav").c_str(), W_OK);
        const int error = errno;
        return relink::end().relinked.size() == 1 && result == -1 && error == EACCES;
    });
}

TEST_F(SessionOfAUser, LooksForNoOtherFileWhenTheSampleIsThereAndMayNotBeRead) {
    write_file(folder / "here/kick.wav", "a secret");
    std::filesystem::permissions(path("here/kick.wav"), std::filesystem::perms::none);
    expect_of_user([&] {
        relink::begin(index);
        errno = 0;
        const int file = open(path("here/kick.wav").c_str(), O_RDONLY);
        const int error = errno;
        const relink::Result result = relink::end();
        return file == -1 && error == EACCES && result.relinked.empty() &&
               result.unresolved.empty();
    });
}

} // namespace
} // namespace lumo::exs
