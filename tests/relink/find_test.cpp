// Which indexed file stands for a recorded path. The index is filled by hand: find sees no disk.
#include <lumo/relink.h>

#include <gtest/gtest.h>

namespace lumo::exs {
namespace {

using Found = std::optional<std::string>;

/// An index of files that need not exist, under `key`.
SampleIndex index_of(const std::string& key, const std::vector<std::string>& paths) {
    SampleIndex index;
    for (const std::string& path : paths) {
        index.files[key].push_back({path, ""});
        ++index.entries;
    }
    return index;
}

TEST(Find, gives_the_file_of_that_name_whatever_its_folders) {
    const SampleIndex index = index_of("kick.wav", {"/new/Drums/Kick.wav"});
    EXPECT_EQ(index.find("/Volumes/Old/Kits/Kick.wav"), "/new/Drums/Kick.wav");
    EXPECT_EQ(index.find("Kick.wav"), "/new/Drums/Kick.wav");
    EXPECT_EQ(index.find("/old/KICK.WAV"), "/new/Drums/Kick.wav");
}

TEST(Find, gives_nothing_for_a_name_that_is_not_indexed) {
    const SampleIndex index = index_of("kick.wav", {"/new/Kick.wav"});
    EXPECT_EQ(index.find("/old/Kick 2.wav"), std::nullopt);
    EXPECT_EQ(index.find("/old/Kick.aif"), std::nullopt);
    EXPECT_EQ(index.find("/old/Kick.wav/"), std::nullopt);
    EXPECT_EQ(index.find(""), std::nullopt);
    EXPECT_EQ(SampleIndex().find("/old/Kick.wav"), std::nullopt);
}

TEST(Find, prefers_the_longest_run_of_shared_folders_from_the_file_upwards) {
    const SampleIndex index = index_of(
        "k.wav", {"/x/Kits/909/k.wav", "/x/Other/808/k.wav", "/x/Kits/808/k.wav", "/x/Kits/k.wav"});
    EXPECT_EQ(index.find("/old/Kits/808/k.wav"), "/x/Kits/808/k.wav");
    EXPECT_EQ(index.find("/old/Other/808/k.wav"), "/x/Other/808/k.wav");
    EXPECT_EQ(index.find("/old/Kits/k.wav"), "/x/Kits/k.wav");
}

TEST(Find, counts_whole_folders_only) {
    const SampleIndex index = index_of("k.wav", {"/z/long/808/k.wav", "/a/My 808/k.wav"});
    EXPECT_EQ(index.find("/old/808/k.wav"), "/z/long/808/k.wav");
    EXPECT_EQ(index.find("/old/Your 808/k.wav"), "/a/My 808/k.wav");
}

TEST(Find, prefers_fewer_components_among_equals) {
    const SampleIndex index = index_of("k.wav", {"/a/b/c/Kit/k.wav", "/z/Kit/k.wav"});
    EXPECT_EQ(index.find("/old/Kit/k.wav"), "/z/Kit/k.wav");
    EXPECT_EQ(index.find("/nothing/shared/k.wav"), "/z/Kit/k.wav");
}

TEST(Find, prefers_the_bytewise_smallest_path_among_equals) {
    const SampleIndex index = index_of("k.wav", {"/b/Kit/k.wav", "/B/Kit/k.wav", "/a/Kit/k.wav"});
    EXPECT_EQ(index.find("/old/Kit/k.wav"), "/B/Kit/k.wav");
}

TEST(Find, compares_folders_by_their_keys) {
    const SampleIndex index =
        index_of("k.wav", {"/a/x/k.wav", "/zzz/zz/Stra\u00dfe/U\u0308ber/k.wav"});
    const Found found = "/zzz/zz/Stra\u00dfe/U\u0308ber/k.wav";
    EXPECT_EQ(index.find("/old/STRASSE/\u00fcber/k.wav"), found);
    EXPECT_EQ(index.find("/old/STRA\u1e9eE/\u00dcBER/k.wav"), found);
    EXPECT_EQ(index.find("/old/x/k.wav"), "/a/x/k.wav");
}

TEST(Find, compares_folders_that_are_not_utf8_byte_for_byte) {
    const SampleIndex index = index_of("k.wav", {"/a/x/k.wav", "/zzz/zz/Kit\xff/k.wav"});
    EXPECT_EQ(index.find("/old/Kit\xff/k.wav"), "/zzz/zz/Kit\xff/k.wav");
    EXPECT_EQ(index.find("/old/kit\xff/k.wav"), "/a/x/k.wav");
}

TEST(Find, leaves_out_components_that_say_nothing) {
    const SampleIndex index = index_of("k.wav", {"/a/x/k.wav", "z//zz/./Kits//808/./k.wav"});
    EXPECT_EQ(index.find("/old/Kits/808/k.wav"), "z//zz/./Kits//808/./k.wav");
    EXPECT_EQ(index.find("/old//x/.///k.wav"), "/a/x/k.wav");
}

TEST(Find, shares_the_first_folder_of_a_relative_path) {
    const SampleIndex index = index_of("k.wav", {"a/k.wav", "Kits/k.wav", "z/Kits/k.wav"});
    EXPECT_EQ(index.find("/old/Kits/k.wav"), "Kits/k.wav");
    EXPECT_EQ(index.find("/old/z/Kits/k.wav"), "z/Kits/k.wav");
    EXPECT_EQ(index.find("Kits/k.wav"), "Kits/k.wav");
}

} // namespace
} // namespace lumo::exs
