// Which indexed file find returns for a recorded path. The tests fill the index themselves, as find
// does not access the disk.
#include <lumo/relink.h>

#include <gtest/gtest.h>

namespace lumo::exs {
namespace {

using Found = std::optional<std::string>;

/// An index with these paths under `key`. The files do not have to exist.
SampleIndex index_of(const std::string& key, const std::vector<std::string>& paths) {
    SampleIndex index;
    for (const std::string& path : paths) {
        index.files[key].push_back({path, ""});
        ++index.entries;
    }
    return index;
}

TEST(Find, GivesTheFileOfThatNameWhateverItsFolders) {
    const SampleIndex index = index_of("kick.wav", {"/new/Drums/Kick.wav"});
    EXPECT_EQ(index.find("/Volumes/Old/Kits/Kick.wav"), "/new/Drums/Kick.wav");
    EXPECT_EQ(index.find("Kick.wav"), "/new/Drums/Kick.wav");
    EXPECT_EQ(index.find("/old/KICK.WAV"), "/new/Drums/Kick.wav");
}

TEST(Find, GivesNothingForANameThatIsNotIndexed) {
    const SampleIndex index = index_of("kick.wav", {"/new/Kick.wav"});
    EXPECT_EQ(index.find("/old/Kick 2.wav"), std::nullopt);
    EXPECT_EQ(index.find("/old/Kick.aif"), std::nullopt);
    EXPECT_EQ(index.find("/old/Kick.wav/"), std::nullopt);
    EXPECT_EQ(index.find(""), std::nullopt);
    EXPECT_EQ(SampleIndex().find("/old/Kick.wav"), std::nullopt);
}

TEST(Find, PrefersTheLongestRunOfSharedFoldersFromTheFileUpwards) {
    const SampleIndex index = index_of(
        "k.wav", {"/x/Kits/909/k.wav", "/x/Other/808/k.wav", "/x/Kits/808/k.wav", "/x/Kits/k.wav"});
    EXPECT_EQ(index.find("/old/Kits/808/k.wav"), "/x/Kits/808/k.wav");
    EXPECT_EQ(index.find("/old/Other/808/k.wav"), "/x/Other/808/k.wav");
    EXPECT_EQ(index.find("/old/Kits/k.wav"), "/x/Kits/k.wav");
}

TEST(Find, CountsWholeFoldersOnly) {
    const SampleIndex index = index_of("k.wav", {"/z/long/808/k.wav", "/a/My 808/k.wav"});
    EXPECT_EQ(index.find("/old/808/k.wav"), "/z/long/808/k.wav");
    EXPECT_EQ(index.find("/old/Your 808/k.wav"), "/a/My 808/k.wav");
}

TEST(Find, PrefersFewerComponentsAmongEquals) {
    const SampleIndex index = index_of("k.wav", {"/a/b/c/Kit/k.wav", "/z/Kit/k.wav"});
    EXPECT_EQ(index.find("/old/Kit/k.wav"), "/z/Kit/k.wav");
    EXPECT_EQ(index.find("/nothing/shared/k.wav"), "/z/Kit/k.wav");
}

TEST(Find, PrefersTheBytewiseSmallestPathAmongEquals) {
    const SampleIndex index = index_of("k.wav", {"/b/Kit/k.wav", "/B/Kit/k.wav", "/a/Kit/k.wav"});
    EXPECT_EQ(index.find("/old/Kit/k.wav"), "/B/Kit/k.wav");
}

TEST(Find, ComparesFoldersByTheirKeys) {
    const SampleIndex index =
        index_of("k.wav", {"/a/x/k.wav", "/zzz/zz/Stra\u00dfe/U\u0308ber/k.wav"});
    const Found found = "/zzz/zz/Stra\u00dfe/U\u0308ber/k.wav";
    EXPECT_EQ(index.find("/old/STRASSE/\u00fcber/k.wav"), found);
    EXPECT_EQ(index.find("/old/STRA\u1e9eE/\u00dcBER/k.wav"), found);
    EXPECT_EQ(index.find("/old/x/k.wav"), "/a/x/k.wav");
}

TEST(Find, ComparesFoldersByTheirKeysAlsoWhereTheyEndInByte80) {
    const SampleIndex index = index_of("k.wav", {"/a/x/k.wav", "/zzz/zz/Cafe\xCC\x80/k.wav"});
    EXPECT_EQ(index.find("/old/Caf\u00e8/k.wav"), "/zzz/zz/Cafe\xCC\x80/k.wav");
}

TEST(Find, ComparesFoldersThatAreNotUtf8ByteForByte) {
    const SampleIndex index = index_of("k.wav", {"/a/x/k.wav", "/zzz/zz/Kit\xff/k.wav"});
    EXPECT_EQ(index.find("/old/Kit\xff/k.wav"), "/zzz/zz/Kit\xff/k.wav");
    EXPECT_EQ(index.find("/old/kit\xff/k.wav"), "/a/x/k.wav");
}

TEST(Find, LeavesOutComponentsThatSayNothing) {
    const SampleIndex index = index_of("k.wav", {"/a/x/k.wav", "z//zz/./Kits//808/./k.wav"});
    EXPECT_EQ(index.find("/old/Kits/808/k.wav"), "z//zz/./Kits//808/./k.wav");
    EXPECT_EQ(index.find("/old//x/.///k.wav"), "/a/x/k.wav");
}

TEST(Find, SharesTheFirstFolderOfARelativePath) {
    const SampleIndex index = index_of("k.wav", {"A/k.wav", "Kits/k.wav", "z/Kits/k.wav"});
    EXPECT_EQ(index.find("/old/Kits/k.wav"), "Kits/k.wav");
    EXPECT_EQ(index.find("/old/z/Kits/k.wav"), "z/Kits/k.wav");
    EXPECT_EQ(index.find("Kits/k.wav"), "Kits/k.wav");
}

constexpr const char* mangled = "/old/12_Legacy_Pulsar_SH1#3BA81A.wav";
constexpr const char* long_key = "12_legacy_pulsar_sh101_filter_sweep.wav";
constexpr const char* long_path = "/new/12_Legacy_Pulsar_SH101_Filter_Sweep.wav";

TEST(FindByMangledName, GivesTheOneLongerNameWithThatStartAndExtension) {
    EXPECT_EQ(index_of(long_key, {long_path}).find(mangled), long_path);
}

TEST(FindByMangledName, TakesFourDigitsOrMore) {
    const SampleIndex index = index_of(long_key, {long_path});
    EXPECT_EQ(index.find("/old/12_Legacy_Pulsar_SH101#3BA8.wav"), long_path);
    EXPECT_EQ(index.find("/old/12_Legacy_Pulsar#0123456789.wav"), long_path);
}

TEST(FindByMangledName, ComparesStartAndExtensionByTheirKeys) {
    const SampleIndex index = index_of("\u00fcber_legacy_pulsar_sh101_filter.wav",
                                       {"/new/\u00dcBER_LEGACY_Pulsar_SH101_Filter.WAV"});
    EXPECT_EQ(index.find("\u00fcber_Legacy_Pulsar_#3BA81A0.wav"),
              "/new/\u00dcBER_LEGACY_Pulsar_SH101_Filter.WAV");
}

TEST(FindByMangledName, PrefersAFileOfTheVeryName) {
    SampleIndex index = index_of(long_key, {long_path});
    index.files["12_legacy_pulsar_sh1#3ba81a.wav"] = {{"/a/12_Legacy_Pulsar_SH1#3BA81A.wav", ""}};
    EXPECT_EQ(index.find(mangled), "/a/12_Legacy_Pulsar_SH1#3BA81A.wav");
}

TEST(FindByMangledName, GivesNothingWhenSeveralFilesFit) {
    EXPECT_EQ(
        index_of(long_key, {long_path, "/b/12_Legacy_Pulsar_SH101_Filter_Sweep.wav"}).find(mangled),
        std::nullopt);
    SampleIndex index = index_of(long_key, {long_path});
    index.files["12_legacy_pulsar_sh101_other_sweeps.wav"] = {
        {"/new/12_Legacy_Pulsar_SH101_Other_Sweeps.wav", ""}};
    EXPECT_EQ(index.find(mangled), std::nullopt);
}

TEST(FindByMangledName, TakesAFileThatTwoRootsBroughtForOne) {
    EXPECT_EQ(index_of(long_key, {long_path, long_path}).find(mangled), long_path);
}

TEST(FindByMangledName, TakesNoNameOf31CharactersOrFewer) {
    EXPECT_EQ(index_of("12_legacy_pulsar_sh101_12345.wav", {"/a/12_Legacy_Pulsar_SH101_12345.wav"})
                  .find(mangled),
              "/a/12_Legacy_Pulsar_SH101_12345.wav"); // 32 characters
    EXPECT_EQ(index_of("12_legacy_pulsar_sh101_1234.wav", {"/a/12_Legacy_Pulsar_SH101_1234.wav"})
                  .find(mangled),
              std::nullopt); // 31
}

TEST(FindByMangledName, WantsTheSameStartAndExtension) {
    EXPECT_EQ(index_of("12_legacy_pulsar_sh2_filter_sweeps.wav",
                       {"/new/12_Legacy_Pulsar_SH2_Filter_Sweeps.wav"})
                  .find(mangled),
              std::nullopt);
    EXPECT_EQ(index_of("12_legacy_pulsar_sh101_filter_sweep.aif",
                       {"/new/12_Legacy_Pulsar_SH101_Filter_Sweep.aif"})
                  .find(mangled),
              std::nullopt);
}

TEST(FindByMangledName, Wants31CharactersAStartAndFourUpperCaseDigits) {
    for (const char* name : {
             "12_Legacy_Pulsar_SH1#3BA81A2.wav", // 32 characters
             "12_Legacy_Pulsar_SH1#3BA81.wav",   // 30
             "12_Legacy_Pulsar_SH1#3ba81a.wav",  // lower case
             "12_Legacy_Pulsar_SH101_#3BA.wav",  // three digits
             "12_Legacy_Pulsar_SH10#3BG81.wav",  // no hexadecimal digit
             "12_Legacy_Pulsar_SH1#_BA81A.wav",  // no digit
             "12_Legacy_Pulsar_SH1_3BA81A.wav",  // no '#'
             "12_Legacy_Pulsar_SH101_#3BA81A0",  // no extension
         }) {
        EXPECT_EQ(index_of(long_key, {long_path}).find(name), std::nullopt) << name;
    }
    EXPECT_EQ(
        index_of("12345678901234567890123456789.wav", {"/a/12345678901234567890123456789.wav"})
            .find("#ABCDEF1234567890ABCDEF0123.wav"),
        std::nullopt); // nothing before the '#'
}

TEST(FindByMangledName, LeavesANoteNameAlone) {
    const SampleIndex index = index_of("f_a long name of a sample, by far.wav",
                                       {"/new/F_a long name of a sample, by far.wav"});
    EXPECT_EQ(index.find("/old/F#2.wav"), std::nullopt);
    EXPECT_EQ(index.find("/old/F#2222.wav"), std::nullopt);
    EXPECT_EQ(index_of("f#2.wav", {"/new/F#2.wav"}).find("/old/F#2.wav"), "/new/F#2.wav");
}

} // namespace
} // namespace lumo::exs
