// The samples of a preset: the order in which they are opened, and the status of the load.
#include "audio_bytes.h"
#include "recorded_opens.h"
#include "sampler_host.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace lumo::test {
namespace {

using Paths = std::vector<std::string>;

std::string entry(const std::string& key, const std::string& path) {
    return "<key>" + key + "</key><string>" + path + "</string>";
}

class PresetSamples : public testing::Test {
protected:
    TempFolder folder;
    Sampler sampler;
    void SetUp() override { reset_opens(); }

    OSStatus load(const std::string& references) const {
        return sampler.set(class_info_with_references(references));
    }
    std::string reference(const char* key) const {
        const Ref<CFDictionaryRef> state = sampler.state();
        return text_at(value_of<CFDictionaryRef>(state.get(), "file-references"), key);
    }
};

TEST_F(PresetSamples, AreOpenedInAscendingByteOrderOfTheirKeys) {
    EXPECT_EQ(load(entry("Sample:9", "/recorded/e") + entry("Sample:10", "/recorded/c") +
                   entry("sample", "/recorded/f") + entry("Sample:1", "/recorded/b") +
                   entry("A", "/recorded/a") + entry("Sample:10 ", "/recorded/d")),
              not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/a", "/recorded/b", "/recorded/c", "/recorded/d",
                                "/recorded/e", "/recorded/f"}));
}

TEST_F(PresetSamples, AreAllOpenedThoughOneHasFailed) {
    write_file(folder / "text.wav", "no audio");
    EXPECT_EQ(load(entry("1", folder / "text.wav") + entry("2", "/recorded/a.wav") +
                   entry("3", "/recorded/b.wav")),
              not_audio);
    EXPECT_EQ(asked_for, (Paths{"/recorded/a.wav", "/recorded/b.wav"}));
}

TEST_F(PresetSamples, FailTheLoadWithTheStatusOfTheFirstThatFailed) {
    write_audio(folder / "kick.wav", wav);
    write_file(folder / "text.wav", "no audio");
    const std::string kick = entry("1", folder / "kick.wav");
    EXPECT_EQ(load(kick + entry("2", "/recorded/a.wav") + entry("3", folder / "text.wav")),
              not_found);
    EXPECT_EQ(load(kick + entry("2", folder / "text.wav") + entry("3", "/recorded/a.wav")),
              not_audio);
    EXPECT_EQ(load(kick), 0);
}

TEST_F(PresetSamples, AreKeptUnderTheirRecordedPathsWhereverTheyWereFound) {
    given_instead = folder / "moved.wav";
    write_audio(given_instead, wav);
    EXPECT_EQ(load(entry("Sample:268435456", "/recorded/kick.wav")), 0);
    EXPECT_EQ(reference("Sample:268435456"), "/recorded/kick.wav");
}

TEST_F(PresetSamples, AreNotOpenedForARefusedState) {
    const std::string references =
        "<key>file-references</key><dict>" + entry("1", "/recorded/a.wav") + "</dict>";
    EXPECT_NE(sampler.set(parse("<dict>" + references + "</dict>")), 0);
    EXPECT_NE(sampler.set(class_info_with(references + "<key>part</key><integer>1</integer>")), 0);
    EXPECT_NE(sampler.set(class_info_with(references + "<key>data</key>"
                                                       "<data>AAAACQAAAAAAAAAA</data>")),
              0);
    EXPECT_EQ(asked_for, Paths{});
}

TEST_F(PresetSamples, ThatFailLeaveTheUnitAsItWas) {
    write_audio(folder / "kick.wav", wav);
    ASSERT_EQ(load(entry("Sample:1", folder / "kick.wav")), 0);
    const Ref<CFDictionaryRef> before = sampler.state();
    EXPECT_EQ(load(entry("Sample:2", "/recorded/a.wav")), not_found);
    EXPECT_TRUE(CFEqual(before.get(), sampler.state().get()));
}

TEST_F(PresetSamples, MayBeNamedByFileUrls) {
    load(entry("1", "file://localhost/recorded/Kit%20%231/ki%CC%82ck.wav") +
         entry("2", "file:///recorded/a%26b.wav") + entry("3", "FILE:///recorded/c.wav"));
    EXPECT_EQ(asked_for,
              (Paths{"/recorded/Kit #1/ki\u0302ck.wav", "/recorded/a&b.wav", "/recorded/c.wav"}));
}

TEST_F(PresetSamples, NamedByFileUrlsAreKeptUnderPaths) {
    given_instead = folder / "kick.wav";
    write_audio(given_instead, wav);
    ASSERT_EQ(load(entry("Sample:1", "file://localhost/recorded/Kit%20%231/kick.wav")), 0);
    EXPECT_EQ(reference("Sample:1"), "/recorded/Kit #1/kick.wav");
}

TEST_F(PresetSamples, NamedByPathsAreTakenAsTheyStand) {
    EXPECT_EQ(load(entry("1", "/recorded/100%25 #1.wav")), not_found);
    EXPECT_EQ(asked_for, Paths{"/recorded/100%25 #1.wav"});
}

TEST_F(PresetSamples, NamedByNoPathAreNotFound) {
    EXPECT_EQ(load(entry("1", "")), not_found);
    EXPECT_EQ(load(entry("1", "file://")), not_found);
    EXPECT_EQ(load(entry("1", "file:///recorded/%FF.wav")), not_found);
    EXPECT_EQ(load(entry("1", "https://localhost/recorded/kick.wav")), not_found);
}

TEST_F(PresetSamples, NamedByWhatNoFileSystemHasAreNotFound) {
    // An unpaired surrogate after the path of a sample that exists.
    given_instead = folder / "kick.wav";
    write_audio(given_instead, wav);
    const std::u16string path = u"/recorded/kick.wav\xD800";
    const auto string = adopt(CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
        static_cast<CFIndex>(path.size() * sizeof(char16_t)), kCFStringEncodingUTF16LE, false));
    ASSERT_TRUE(string);
    const auto info = adopt(CFDictionaryCreateMutableCopy(
        kCFAllocatorDefault, 0, static_cast<CFDictionaryRef>(class_info_with("").get())));
    const auto references = make_mutable_dictionary();
    CFDictionarySetValue(references.get(), make_string("Sample:1").get(), string.get());
    CFDictionarySetValue(info.get(), make_string("file-references").get(), references.get());
    EXPECT_EQ(sampler.set(info.get()), not_found);
    EXPECT_EQ(asked_for, Paths{});
}

TEST_F(PresetSamples, MayBeSoundBanksUnderTheKeyOfOne) {
    write_file(folder / "gm.sf2", bank_bytes("sfbk"));
    write_file(folder / "gs.dls", bank_bytes("DLS "));
    EXPECT_EQ(load(entry("Bank:0", folder / "gm.sf2") + entry("Bank:1", folder / "gs.dls")), 0);
    EXPECT_EQ(reference("Bank:0"), (folder / "gm.sf2").string());
    EXPECT_EQ(load(entry("Sample:1", folder / "gm.sf2")), not_audio);
    EXPECT_EQ(load(entry("Sample:1", folder / "gs.dls")), not_audio);
}

TEST_F(PresetSamples, UnderTheKeyOfASoundBankAreNoOtherFiles) {
    write_audio(folder / "kick.wav", wav);
    EXPECT_EQ(load(entry("Bank:0", folder / "kick.wav")), not_audio);
    EXPECT_EQ(load(entry("bank:0", folder / "kick.wav")), 0);
}

TEST_F(PresetSamples, AreOpenedTogetherWithSoundBanksInTheOrderOfAllKeys) {
    EXPECT_EQ(load(entry("Sample:1", "/recorded/b") + entry("Bank:10", "/recorded/gm.sf2") +
                   entry("A", "/recorded/a")),
              not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/a", "/recorded/gm.sf2", "/recorded/b"}));
}

TEST_F(PresetSamples, WithSoundBanksKeepTheInstrumentsListOfThem) {
    const std::string instrument =
        "<key>Instrument</key><dict><key>Banks</key><dict><key>gm.sf2</key><array>"
        "<integer>268435456</integer><integer>268435457</integer></array></dict>"
        "<key>Layers</key><array/></dict>";
    write_file(folder / "gm.sf2", bank_bytes("sfbk"));
    const auto info = class_info_with(instrument + "<key>file-references</key><dict>" +
                                      entry("Bank:0", folder / "gm.sf2") + "</dict>");
    ASSERT_EQ(sampler.set(info), 0);
    const Ref<CFDictionaryRef> state = sampler.state();
    EXPECT_TRUE(CFEqual(value_of(state.get(), "Instrument"),
                        value_of(static_cast<CFDictionaryRef>(info.get()), "Instrument")));
}

TEST_F(PresetSamples, ThatAreFoldersPipesOrDevicesAreNotAudio) {
    EXPECT_EQ(load(entry("1", folder.path())), not_audio);
    EXPECT_EQ(load(entry("1", "/dev/zero")), not_audio);
}

} // namespace
} // namespace lumo::test
