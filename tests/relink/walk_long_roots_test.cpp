// Roots with paths that are too long for the system, which the walk opens in pieces.
#include "folder_walk.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <cstddef>
#include <string>

namespace lumo::exs::relink {
namespace {

using test::TempFolder;

std::size_t count_samples(const std::string& root) {
    std::size_t count = 0;
    walk_samples(root, [&](const std::string&, const NameList& names) {
        count += names.count();
        return true;
    });
    return count;
}

/// `count` times `piece`.
std::string repeated(const std::string& piece, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

TEST(WalkOfALongRoot, FindsItsSamples) {
    const TempFolder folder;
    test::write_file(folder / "Kit/a.wav", "");
    for (const char* piece : {"./", "/", ".//"}) {
        const std::string root = folder.path().string() + "/" + repeated(piece, PATH_MAX) + "Kit";
        EXPECT_EQ(count_samples(root), 1u) << piece;
        EXPECT_EQ(count_samples(root + repeated("/", PATH_MAX)), 1u) << piece;
    }
}

TEST(WalkOfALongRoot, FindsNothingWhereItsBeginningDoesNotExist) {
    const TempFolder folder;
    test::write_file(folder / "Kit/a.wav", "");
    // The rest of the path exists below the current folder.
    const std::string rest = repeated("./", PATH_MAX) + "Kit";
    const auto walk_there = [&] {
        return chdir(folder.path().c_str()) == 0 && count_samples(rest) == 1 &&
               count_samples((folder / "absent/").string() + rest) == 0;
    };
    EXPECT_EXIT(_exit(walk_there() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(WalkOfALongRoot, FindsNothingWhereAFolderNameIsTooLong) {
    const std::string name(PATH_MAX + 1, 'n');
    EXPECT_EQ(count_samples(name), 0u);
    EXPECT_EQ(count_samples("/" + name), 0u);
    EXPECT_EQ(count_samples("./" + name), 0u);
    EXPECT_EQ(count_samples("./" + name + "/Kit"), 0u);
}

} // namespace
} // namespace lumo::exs::relink
