// Walks of roots that are not plain trees: links, unreadable folders, long and deep paths.
#include "folder_walk.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumo::exs::relink {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::write_file;
using Paths = std::vector<std::string>;

/// The paths of the samples under `root`, sorted.
Paths walk_with_root(const std::string& root) {
    Paths paths;
    walk_samples(root, [&](const std::string& folder, const NameList& names) {
        EXPECT_GT(names.count(), 0u);
        const std::size_t before = paths.size();
        names.for_each([&](std::string_view name, std::size_t place) {
            EXPECT_EQ(names.at(place), name);
            paths.push_back(folder + std::string(name));
        });
        EXPECT_EQ(paths.size() - before, names.count());
        return true;
    });
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// The same paths, without `root` and the slash after it.
Paths walk(const fs::path& root) {
    Paths paths = walk_with_root(root.string());
    for (std::string& path : paths) {
        EXPECT_TRUE(path.starts_with(root.string() + '/')) << path;
        path.erase(0, root.string().size() + 1);
    }
    return paths;
}

TEST(Walk, OfTheEmptyRootTakesTheCurrentFolderWithoutADot) {
    const TempFolder folder;
    write_file(folder / "a.wav", "");
    write_file(folder / "Kit/b.wav", "");
    const auto walk_there = [&] {
        return chdir(folder.path().c_str()) == 0 &&
               walk_with_root("") == Paths{"Kit/b.wav", "a.wav"};
    };
    EXPECT_EXIT(_exit(walk_there() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(Walk, TakesRegularFilesOnly) {
    const TempFolder folder;
    write_file(folder / "file.wav", "");
    write_file(folder / "folder.wav/inner.wav", "");
    ASSERT_EQ(mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    fs::create_symlink("pipe.wav", folder / "link to pipe.wav");
    fs::create_symlink("nowhere.wav", folder / "dangling.wav");
    fs::create_symlink("self.wav", folder / "self.wav");
    EXPECT_EQ(walk(folder.path()), (Paths{"file.wav", "folder.wav/inner.wav"}));
}

TEST(Walk, FollowsLinksToFilesUnderTheirOwnNames) {
    const TempFolder folder;
    write_file(folder / "elsewhere/kick.data", "");
    write_file(folder / "elsewhere/snare.wav", "");
    fs::create_directory(folder / "root");
    fs::create_symlink("../elsewhere/kick.data", folder / "root/kick.wav");
    fs::create_symlink("../elsewhere/snare.wav", folder / "root/snare.data");
    fs::create_symlink("kick.wav", folder / "root/again.wav");
    EXPECT_EQ(walk(folder / "root"), (Paths{"again.wav", "kick.wav"}));
}

TEST(Walk, TakesARootThatIsALink) {
    const TempFolder folder;
    write_file(folder / "real/a.wav", "");
    fs::create_symlink("real", folder / "root");
    EXPECT_EQ(walk(folder / "root"), Paths{"a.wav"});
}

TEST(Walk, PrefersItsOwnFoldersToLinks) {
    const TempFolder folder;
    write_file(folder / "z/a.wav", "");
    fs::create_symlink("z", folder / "a");
    EXPECT_EQ(walk(folder.path()), Paths{"z/a.wav"});
}

TEST(Walk, TakesTheBytewiseSmallestLinkThatWaits) {
    const TempFolder folder;
    write_file(folder / "out/one/a.wav", "");
    fs::create_directories(folder / "out/two");
    fs::create_directory(folder / "root");
    fs::create_symlink("../out/one", folder / "root/b");
    fs::create_symlink("../out/two", folder / "root/a");
    fs::create_symlink("../one", folder / "out/two/c"); // queued as a/c after a was read
    EXPECT_EQ(walk(folder / "root"), Paths{"a/c/a.wav"});
}

TEST(Walk, ComparesThePathsOfLinksWithoutASlashAtTheEnd) {
    const TempFolder folder;
    write_file(folder / "out/a.wav", "");
    fs::create_directory(folder / "root");
    fs::create_symlink("../out", folder / "root/k");
    fs::create_symlink("../out", folder / "root/k b");
    EXPECT_EQ(walk(folder / "root"), Paths{"k/a.wav"});
}

TEST(Walk, ReadsAFolderThatSeveralLinksNameOnce) {
    const TempFolder folder;
    write_file(folder / "out/deep/a.wav", "");
    fs::create_directory(folder / "root");
    fs::create_symlink("../out/deep", folder / "root/x");
    fs::create_symlink("../out", folder / "root/y");
    EXPECT_EQ(walk(folder / "root"), Paths{"x/a.wav"});
}

TEST(Walk, EndsInCirclesOfLinks) {
    const TempFolder folder;
    write_file(folder / "a/a.wav", "");
    write_file(folder / "b/b.wav", "");
    fs::create_symlink("..", folder / "a/up");
    fs::create_symlink("../b", folder / "a/b");
    fs::create_symlink("../a", folder / "b/a");
    fs::create_symlink(".", folder / "here");
    EXPECT_EQ(walk(folder.path()), (Paths{"a/a.wav", "b/b.wav"}));
}

TEST(Walk, OfEachRootReadsASharedFolder) {
    const TempFolder folder;
    write_file(folder / "shared/a.wav", "");
    fs::create_directory(folder / "one");
    fs::create_directory(folder / "two");
    fs::create_symlink("../shared", folder / "one/link");
    fs::create_symlink("../shared", folder / "two/link");
    EXPECT_EQ(walk(folder / "one"), Paths{"link/a.wav"});
    EXPECT_EQ(walk(folder / "two"), Paths{"link/a.wav"});
}

TEST(Walk, TakesTenThousandEntriesOfOneFolder) {
    const TempFolder folder;
    for (int i = 0; i < 10'000; ++i) {
        const std::string name = std::to_string(i) + (i % 2 == 0 ? ".wav" : ".txt");
        close(open((folder / name).c_str(), O_WRONLY | O_CREAT, 0600));
    }
    EXPECT_EQ(walk(folder.path()).size(), 5'000u);
}

TEST(Walk, TakesNamesOf255Bytes) {
    const TempFolder folder;
    const std::string name = std::string(251, 'n') + ".wav";
    const std::string inner = std::string(255, 'f');
    write_file(folder.path() / inner / name, "");
    EXPECT_EQ(walk(folder.path()), Paths{inner + '/' + name});
}

TEST(Walk, WorksWhereStandardInputIsClosed) {
    const TempFolder folder;
    write_file(folder / "Kit/a.wav", "");
    const auto walk_there = [&] {
        close(0); // the folders are opened as descriptor 0
        return walk(folder.path()) == Paths{"Kit/a.wav"} && fcntl(0, F_GETFD) < 0;
    };
    EXPECT_EXIT(_exit(walk_there() ? 0 : 1), testing::ExitedWithCode(0), "");
}

/// Makes `depth` nested folders and a sample in the innermost; returns the sample's path.
std::string make_deep(const fs::path& top, const std::string& name, int depth) {
    std::string path;
    int folder = open(top.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth; ++i) {
        EXPECT_EQ(mkdirat(folder, name.c_str(), 0700), 0);
        const int inner = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
        close(folder);
        folder = inner;
        path.append(name).append("/");
    }
    close(openat(folder, "deep.wav", O_WRONLY | O_CREAT, 0600));
    close(folder);
    return path + "deep.wav";
}

TEST(Walk, GoesOnBeyondTheLongestPathThatTheSystemTakes) {
    const TempFolder folder;
    const std::string deep = make_deep(folder.path(), std::string(200, 'd'), 50);
    ASSERT_GT(deep.size(), static_cast<std::size_t>(2 * PATH_MAX));
    EXPECT_EQ(walk(folder.path()), Paths{deep});
}

TEST(Walk, GoesDeeperThanAProcessMayHaveFilesOpen) {
    const TempFolder folder;
    const std::string deep = make_deep(folder.path(), "d", 1'500);
    EXPECT_EQ(walk(folder.path()), Paths{deep});
}

TEST(Walk, FindsItsWayWherePathsAreAboutAsLongAsTheSystemTakes) {
    const TempFolder folder;
    const std::size_t top = folder.path().string().size() + 1;
    for (std::size_t length = PATH_MAX - 3; length <= PATH_MAX + 3; ++length) {
        // Folders with names of 100 bytes, then one that makes the path `length` bytes long,
        // including the slash.
        const std::size_t count = (length - top) / 101 - 1;
        const std::string last(length - top - count * 101 - 1, 'l');
        const TempFolder tree;
        const std::string deep =
            make_deep(tree.path(), std::string(100, 'd'), static_cast<int>(count));
        const fs::path parent = tree.path() / fs::path(deep).parent_path();
        ASSERT_LT(parent.string().size(), static_cast<std::size_t>(PATH_MAX));
        const int folder_above = open(parent.c_str(), O_RDONLY | O_DIRECTORY);
        ASSERT_EQ(mkdirat(folder_above, last.c_str(), 0700), 0);
        const int inner = openat(folder_above, last.c_str(), O_RDONLY | O_DIRECTORY);
        close(openat(inner, "edge.wav", O_WRONLY | O_CREAT, 0600));
        close(inner);
        close(folder_above);
        EXPECT_EQ(walk(tree.path()).size(), 2u) << length;
    }
}

TEST(Walk, PassesOverAFolderThatMayNotBeRead) {
    const TempFolder folder;
    write_file(folder / "closed/a.wav", "");
    write_file(folder / "open/b.wav", "");
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(folder / "closed", fs::perms::none);
    const auto walk_as_nobody = [&] {
        // Root can read every folder, so a process of root's becomes another user.
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            return 2;
        }
        if (access(folder.path().c_str(), R_OK | X_OK) != 0) {
            return 2;
        }
        return walk(folder.path()) == Paths{"open/b.wav"} ? 0 : 1;
    };
    int code = -1;
    EXPECT_EXIT(
        _exit(walk_as_nobody()),
        [&code](int status) {
            code = WEXITSTATUS(status);
            return WIFEXITED(status);
        },
        "");
    fs::permissions(folder / "closed", fs::perms(0700));
    if (code == 2) {
        GTEST_SKIP() << "no other user can be taken who sees " << folder.path();
    }
    EXPECT_EQ(code, 0);
}

TEST(Walk, GoesOnWhenFoldersVanishUnderIt) {
    const TempFolder folder;
    for (int i = 0; i < 20; ++i) {
        write_file(folder / (std::to_string(i) + "/a.wav"), "");
        write_file(folder / (std::to_string(i) + "/inner/b.wav"), "");
    }
    int found = 0;
    walk_samples(folder.path().string(), [&](const std::string&, const NameList&) {
        ++found;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            fs::remove_all(entry);
        }
        return true;
    });
    EXPECT_EQ(found, 1);
}

TEST(Walk, EndsWhenTheCallerHasSeenEnough) {
    const TempFolder folder;
    const TempFolder elsewhere;
    write_file(elsewhere / "z.wav", "");
    for (int i = 0; i < 20; ++i) {
        write_file(folder / (std::to_string(i) + "/a.wav"), "");
        fs::create_symlink(elsewhere.path(), folder / ("link" + std::to_string(i)));
    }
    int found = 0;
    walk_samples(folder.path().string(),
                 [&](const std::string&, const NameList&) { return ++found < 3; });
    EXPECT_EQ(found, 3);
}

/// Makes a part of Apple's sound library below `folder`; returns its path.
fs::path make_apple_library(const TempFolder& folder) {
    write_file(folder / "disk/Library/Application Support/Logic/EXS Factory Samples/C3.wav", "");
    return folder / "disk/Library/Application Support/Logic";
}

TEST(Walk, LeavesOutAFolderOfApplesLibrary) {
    const TempFolder folder;
    make_apple_library(folder);
    write_file(folder / "disk/Library/Application Support/Mine/a.wav", "");
    write_file(folder / "disk/LOGIC PRO LIBRARY.bundle/b.wav", "");
    write_file(folder / "disk/My Logic/c.wav", "");
    write_file(folder / "disk/Sounds/d.wav", "");
    EXPECT_EQ(walk(folder.path()), (Paths{"disk/Library/Application Support/Mine/a.wav",
                                          "disk/My Logic/c.wav", "disk/Sounds/d.wav"}));
}

TEST(Walk, LeavesOutTheSystemsOwnSoundBank) {
    const TempFolder folder;
    const std::string resources =
        "System/Library/Components/CoreAudio.component/Contents/Resources";
    write_file(folder / (resources + "/gs_instruments.dls"), "");
    write_file(folder / "mine/gs_instruments.dls", "");
    EXPECT_EQ(walk(folder.path()), Paths{"mine/gs_instruments.dls"});
}

TEST(Walk, OfARootInApplesLibraryFindsNothing) {
    const TempFolder folder;
    const fs::path library = make_apple_library(folder);
    EXPECT_EQ(walk(library), Paths());
    EXPECT_EQ(walk(library / "EXS Factory Samples"), Paths());
}

TEST(Walk, OfARootThatALinkLeadsIntoApplesLibraryFindsNothing) {
    const TempFolder folder;
    make_apple_library(folder);
    fs::create_symlink("disk/Library/Application Support/Logic/EXS Factory Samples",
                       folder / "factory");
    fs::create_symlink("disk/Library", folder / "library");
    write_file(folder / "disk/Library/Mine/a.wav", "");
    EXPECT_EQ(walk(folder / "factory"), Paths());
    EXPECT_EQ(walk(folder / "library"), Paths{"Mine/a.wav"});
}

TEST(Walk, LeavesOutWhatLinksLeadToInApplesLibrary) {
    const TempFolder folder;
    const fs::path library = make_apple_library(folder);
    write_file(folder / "mine/a.wav", "");
    fs::create_directory(folder / "root");
    fs::create_symlink(library / "EXS Factory Samples", folder / "root/factory");
    fs::create_symlink(library / "EXS Factory Samples/C3.wav", folder / "root/C3.wav");
    fs::create_symlink("C3.wav", folder / "root/again.wav");
    fs::create_symlink("../mine/a.wav", folder / "root/a.wav");
    fs::create_symlink("../mine", folder / "root/mine");
    EXPECT_EQ(walk(folder / "root"), (Paths{"a.wav", "mine/a.wav"}));
}

} // namespace
} // namespace lumo::exs::relink
