// The instruments that the walk finds, and their paths.
#include "fake_readdir.h"
#include "instrument_walk.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace {

namespace fs = std::filesystem;
using namespace lumo::library;
using namespace lumo::test;
using Paths = std::vector<std::string>;

class InstrumentWalk : public testing::Test {
protected:
    void SetUp() override { fs::current_path(folder.path()); }
    void TearDown() override { fs::current_path("/"); }

    static void make(const Paths& files) {
        for (const std::string& file : files) {
            write_file(fs::current_path() / file, "x");
        }
    }
    static void link(const std::string& target, const std::string& name) {
        fs::create_symlink(fs::current_path() / target, name);
    }
    static Instruments find(const Paths& arguments) {
        return find_instruments(arguments, [](std::size_t, std::size_t) { return true; });
    }

    TempFolder folder;
};

TEST_F(InstrumentWalk, FindsBothKindsInAnyLetterCaseAtAnyDepth) {
    make({"lib/a.exs", "lib/b.EXS", "lib/c/d/e.AuPreset", "lib/c/f.aupreset", "lib/g.wav",
          "lib/exs", "lib/h.exs.bak"});
    const Instruments found = find({"lib"});
    EXPECT_EQ(found.paths,
              (Paths{"lib/a.exs", "lib/b.EXS", "lib/c/d/e.AuPreset", "lib/c/f.aupreset"}));
    EXPECT_EQ(found.folders, 3U);
}

TEST_F(InstrumentWalk, SortsByTheBytesOfPaths) {
    make({"lib/b.exs", "lib/B.exs", "lib/a/z.exs", "lib/a.exs", "lib/a b/c.exs",
          "lib/\xc3\xa9.exs"});
    EXPECT_EQ(find({"lib"}).paths, (Paths{"lib/B.exs", "lib/a b/c.exs", "lib/a.exs", "lib/a/z.exs",
                                          "lib/b.exs", "lib/\xc3\xa9.exs"}));
}

TEST_F(InstrumentWalk, LeavesHiddenNamesOut) {
    make({"lib/.a.exs", "lib/._b.exs", "lib/.hidden/c.exs", "lib/d.exs"});
    EXPECT_EQ(find({"lib"}).paths, Paths{"lib/d.exs"});
}

TEST_F(InstrumentWalk, LeavesApplesLibraryOut) {
    make({"Library/Application Support/Logic/a.exs", "b.exs", "x/Logic Pro Library.bundle/c.exs"});
    link("Library/Application Support/Logic", "lib");
    link("Library/Application Support/Logic/a.exs", "d.exs");
    EXPECT_EQ(find({"."}).paths, Paths{"./b.exs"});
    EXPECT_EQ(find({"Library", "lib"}).paths, Paths{});
}

TEST_F(InstrumentWalk, TakesAnInstrumentThatIsNamedWhateverItIs) {
    make({".hidden/a.exs", "b.txt"});
    EXPECT_EQ(find({"b.txt", ".hidden/a.exs"}).paths, (Paths{".hidden/a.exs", "b.txt"}));
}

TEST_F(InstrumentWalk, FollowsLinksOnceAndOutOfCircles) {
    make({"lib/a/b.exs", "other/c.exs"});
    link("lib", "lib/a/round");
    link("other", "lib/z");
    link("other", "lib/y");
    EXPECT_EQ(find({"lib"}).paths, (Paths{"lib/a/b.exs", "lib/y/c.exs"}));
}

TEST_F(InstrumentWalk, TakesEachFileOnceUnderTheNameThatIsNoLink) {
    make({"lib/z/b.exs"});
    link("lib/z/b.exs", "lib/a.exs");
    link("lib/z/b.exs", "lib/c.exs");
    link("lib/z", "lib/linked");
    EXPECT_EQ(find({"lib"}).paths, Paths{"lib/z/b.exs"});
    EXPECT_EQ(find({"lib/c.exs", "lib/a.exs"}).paths, Paths{"lib/a.exs"});
    EXPECT_EQ(find({"lib", "lib/z/b.exs", "lib/z"}).paths, Paths{"lib/z/b.exs"});
}

TEST_F(InstrumentWalk, DoesNotDependOnTheOrderOfArguments) {
    make({"a/1.exs", "a/b/2.exs", "c/3.exs", "far/4.exs"});
    link("far", "c/far");
    link("far", "a/far");
    Paths arguments = {"a", "a/b", "c", "./c"};
    const Paths expected = find(arguments).paths;
    EXPECT_EQ(expected, (Paths{"./c/3.exs", "./c/far/4.exs", "a/1.exs", "a/b/2.exs"}));
    while (std::next_permutation(arguments.begin(), arguments.end())) {
        EXPECT_EQ(find(arguments).paths, expected);
    }
}

TEST_F(InstrumentWalk, TwoNamesOfOneFileOnDiskThatAreNoLinksAreTwo) {
    make({"lib/a.exs"});
    fs::create_hard_link("lib/a.exs", "lib/b.exs");
    EXPECT_EQ(find({"lib"}).paths, (Paths{"lib/a.exs", "lib/b.exs"}));
}

TEST_F(InstrumentWalk, TakesFilesOnly) {
    make({"lib/folder.exs/a.exs"});
    ASSERT_EQ(mkfifo("lib/pipe.exs", 0600), 0);
    EXPECT_EQ(find({"lib"}).paths, Paths{"lib/folder.exs/a.exs"});
}

TEST_F(InstrumentWalk, SaysWhatItCouldNotRead) {
    make({"lib/a.exs", "lib/closed/b.exs"});
    link("nowhere", "lib/gone.exs");
    fs::create_symlink("loop", "lib/loop");
    fs::permissions("lib/closed", fs::perms::none);
    const Instruments found = find({"lib"});
    fs::permissions("lib/closed", fs::perms::owner_all);
    if (geteuid() == 0) { // root may open every folder
        EXPECT_EQ(found.unreadable, Paths{"lib/gone.exs"});
    } else {
        EXPECT_EQ(found.unreadable, (Paths{"lib/closed", "lib/gone.exs"}));
        EXPECT_EQ(found.paths, Paths{"lib/a.exs"});
    }
}

#ifdef __linux__
TEST_F(InstrumentWalk, FindsTheSameOnADiskThatReportsNoTypes) {
    make({"lib/a.exs", "lib/b/c.exs", "far/d.exs"});
    link("far", "lib/far");
    link("far/d.exs", "lib/z.exs");
    ASSERT_EQ(mkfifo("lib/pipe.exs", 0600), 0);
    const Paths expected = find({"lib"}).paths;
    EXPECT_EQ(expected, (Paths{"lib/a.exs", "lib/b/c.exs", "lib/far/d.exs"}));
    const FakeReaddir untyped(false);
    EXPECT_EQ(find({"lib"}).paths, expected);
}

TEST_F(InstrumentWalk, KeepsWhatItFoundInAFolderThatCannotBeReadToItsEnd) {
    make({"lib/a.exs"});
    const FakeReaddir failing(true);
    const Instruments found = find({"lib"});
    EXPECT_EQ(found.paths, Paths{"lib/a.exs"});
    EXPECT_EQ(found.unreadable, Paths{"lib"});
}
#endif

TEST_F(InstrumentWalk, ReportsItsProgressAndEndsOnRequest) {
    make({"lib/a/1.exs", "lib/b/2.exs", "lib/c/3.exs"});
    std::vector<std::pair<std::size_t, std::size_t>> counts;
    find_instruments({"lib"}, [&](std::size_t instruments, std::size_t folders) {
        counts.emplace_back(instruments, folders);
        return instruments < 2;
    });
    EXPECT_EQ(counts, (std::vector<std::pair<std::size_t, std::size_t>>{{0, 0}, {1, 1}, {2, 2}}));
}

TEST_F(InstrumentWalk, ReportsWhatIsWrongWithAnArgument) {
    make({"a.exs"});
    EXPECT_EQ(fault_of_argument("a.exs"), "");
    EXPECT_EQ(fault_of_argument("."), "");
    EXPECT_EQ(fault_of_argument("b.exs"), "No such file or directory");
    EXPECT_EQ(fault_of_argument("a.exs/b"), "Not a directory");
}

} // namespace
