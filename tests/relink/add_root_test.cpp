// Which files SampleIndex::add_root adds.
#include "index_paths.h"
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace lumo::exs {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::write_file;
using Paths = std::vector<std::string>;

/// The paths that add_root adds for `root`, without `root` and the slash after it.
Paths walk(const fs::path& root) {
    SampleIndex index;
    index.add_root(root.string());
    Paths paths = paths_of(index);
    for (std::string& path : paths) {
        path.erase(0, root.string().size() + 1);
    }
    EXPECT_EQ(index.entries, paths.size());
    return paths;
}

TEST(SampleIndexType, IsAPlainValueOfMapAndCount) {
    const SampleIndex index;
    EXPECT_LE(index.files.bucket_count(), 1u); // an empty map has one in libstdc++, none in libc++
    EXPECT_EQ(index.files.max_load_factor(), 1.0f);
    EXPECT_EQ(index.entries, 0u);
    static_assert(std::is_nothrow_move_assignable_v<SampleIndex>);
    static_assert(std::is_aggregate_v<SampleIndex> && std::is_aggregate_v<SampleIndex::Entry>);
}

TEST(AddRoot, FindsSamplesInAllFoldersBelow) {
    const TempFolder folder;
    write_file(folder / "a.wav", "");
    write_file(folder / "Kits/808/Kick.AIF", "");
    write_file(folder / "Kits/808/Kick.exs", "");
    write_file(folder / "Kits/Kick.aupreset", "");
    EXPECT_EQ(walk(folder.path()), (Paths{"Kits/808/Kick.AIF", "a.wav"}));
}

TEST(AddRoot, NotesPathAndRootUnderTheKeyOfTheName) {
    const TempFolder folder;
    write_file(folder / "Kits/U\u0308ber.WAV", "");
    SampleIndex index;
    index.add_root(folder.path().string());
    const auto& entries = index.files.at("\u00fcber.wav");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].path, (folder / "Kits/U\u0308ber.WAV").string());
    EXPECT_EQ(entries[0].root, folder.path().string());
}

TEST(AddRoot, AddsOneSlashBetweenRootAndName) {
    const TempFolder folder;
    write_file(folder / "a.wav", "");
    SampleIndex index;
    index.add_root(folder.path().string() + "/");
    EXPECT_EQ(paths_of(index), (Paths{folder.path().string() + "/a.wav"}));
}

TEST(AddRoot, AddsARootOnceHoweverOftenItIsGiven) {
    const TempFolder folder;
    write_file(folder / "Kits/a.wav", "");
    write_file(folder / "Kits/b.wav", "");
    SampleIndex index;
    index.add_root(folder.path().string());
    index.add_root(folder.path().string());
    EXPECT_EQ(index.entries, 2u);
    EXPECT_EQ(paths_of(index).size(), 2u);
}

TEST(AddRoot, GivesEachNameJustTheRoomForItsFiles) {
    const TempFolder folder;
    for (int i = 0; i < 5; ++i) {
        write_file(folder / (std::to_string(i) + "/kick.wav"), "");
        write_file(folder / (std::to_string(i) + "/" + std::to_string(i) + ".wav"), "");
    }
    SampleIndex index;
    index.add_root(folder.path().string());
    EXPECT_EQ(index.files.at("kick.wav").size(), 5u);
    for (const auto& [key, entries] : index.files) {
        EXPECT_EQ(entries.capacity(), entries.size()) << key;
    }
}

TEST(AddRoot, TakesSeveralRoots) {
    const TempFolder folder;
    write_file(folder / "one/a.wav", "");
    write_file(folder / "two/a.wav", "");
    SampleIndex index;
    index.add_root((folder / "one").string());
    index.add_root((folder / "two").string());
    EXPECT_EQ(index.files.size(), 1u);
    EXPECT_EQ(paths_of(index), (Paths{folder / "one/a.wav", folder / "two/a.wav"}));
}

TEST(AddRoot, PassesOverARootThatIsAbsentOrAFile) {
    const TempFolder folder;
    write_file(folder / "a.wav", "");
    SampleIndex index;
    index.add_root((folder / "gone").string());
    index.add_root((folder / "a.wav").string());
    EXPECT_EQ(index.entries, 0u);
}

TEST(AddRoot, SkipsNamesThatBeginWithADot) {
    const TempFolder folder;
    write_file(folder / "._a.wav", "");
    write_file(folder / ".wav", "");
    write_file(folder / ".hidden/b.wav", "");
    write_file(folder / "c.wav", "");
    EXPECT_EQ(walk(folder.path()), Paths{"c.wav"});
}

TEST(AddRoot, AddsARootOnceThoughNewFilesCameFirst) {
    const TempFolder folder;
    for (const char* name : {"m.wav", "n.wav", "Kits/m.wav", "Kits/o.wav"}) {
        write_file(folder / name, "");
    }
    SampleIndex index;
    index.add_root(folder.path().string());
    // So many that some come before the old files in any order in which the disk lists them.
    for (int i = 0; i < 50; ++i) {
        write_file(folder / ("new " + std::to_string(i) + ".wav"), "");
        write_file(folder / ("New " + std::to_string(i) + "/a.wav"), "");
    }
    index.add_root(folder.path().string());
    EXPECT_EQ(index.entries, 4u);
    EXPECT_EQ(paths_of(index).size(), 4u);
}

TEST(AddRoot, KnowsARootByAnyOfItsFilesThatIsLeft) {
    const TempFolder folder;
    write_file(folder / "a.wav", "");
    write_file(folder / "z.wav", "");
    SampleIndex index;
    index.add_root(folder.path().string());
    fs::remove(folder / "a.wav");
    write_file(folder / "b.wav", "");
    index.add_root(folder.path().string());
    EXPECT_EQ(paths_of(index), (Paths{folder / "a.wav", folder / "z.wav"}));
}

TEST(AddRoot, AddsARootInsideAnother) {
    const TempFolder folder;
    write_file(folder / "Kits/a.wav", "");
    SampleIndex index;
    index.add_root(folder.path().string());
    index.add_root((folder / "Kits").string());
    EXPECT_EQ(index.entries, 2u);
}

} // namespace
} // namespace lumo::exs
