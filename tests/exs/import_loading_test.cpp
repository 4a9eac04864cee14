// The AudioToolbox calls of an import, and the errors it reports when they fail.
#include "import_fixture.h"
#include "sampler_host.h"

#include <sys/stat.h>
#include <unistd.h>

#include <vector>

namespace {

using namespace lumo::test;
using lumo::exs::has_extension;
using lumo::exs::import_instrument;
using lumo::exs::Report;
using lumo::exs::SampleIndex;
using Texts = std::vector<std::string>;

class ImportLoading : public ImportTest {};

/// Whether a sample exists, looked up as a sampler does it.
bool finds(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0;
}

TEST(HasExtension, TakesTheLastOneWithoutRegardToCase) {
    EXPECT_TRUE(has_extension("in/Piano.EXS", ".exs"));
    EXPECT_TRUE(has_extension("a.b.exs", ".exs"));
    EXPECT_FALSE(has_extension("Piano.exs.bak", ".exs"));
    EXPECT_FALSE(has_extension("folder.exs/Piano", ".exs"));
    EXPECT_FALSE(has_extension("Piano", ".exs"));
}

TEST(HasExtension, DoesNotTakeALeadingDotForOne) {
    EXPECT_FALSE(has_extension(".exs", ".exs"));
    EXPECT_FALSE(has_extension("in/.exs", ".exs"));
    EXPECT_TRUE(has_extension("in/.x.exs", ".exs"));
}

TEST_F(ImportLoading, OfAnotherKindOfFileMakesNoSampler) {
    for (const std::string name : {"notes.txt", ".exs", "Piano.exs.bak", "Piano"}) {
        const Report report = import_instrument(name, options);
        EXPECT_EQ(report.error, "not an EXS instrument or an AUSampler preset");
        EXPECT_EQ(report.source, name);
        EXPECT_FALSE(report.ok);
    }
    EXPECT_EQ(import_instrument("in/notes.txt", options).name, "notes");
    EXPECT_EQ(audio_toolbox().units_made, 0);
}

TEST_F(ImportLoading, TakesExtensionsInCapitals) {
    const Report preset = import_preset("Pad.AUPRESET");
    EXPECT_TRUE(preset.ok) << preset.error;
    EXPECT_EQ(preset.name, "Pad");
    const Report song = import_instrument((folder / "song.EXS").string(), options);
    EXPECT_TRUE(song.ok) << song.error;
    EXPECT_EQ(song.name, "song");
}

TEST_F(ImportLoading, HandsAnExsInstrumentToTheSamplerByItsUrl) {
    const std::string path = (folder / "Caf\xc3\xa9 #1.exs").string();
    const Report report = import_instrument(path, options);
    EXPECT_EQ(report.source, path);
    EXPECT_EQ(audio_toolbox().calls.front(), "set 4102 0 0 16");
    EXPECT_EQ(audio_toolbox().instrument_path, path);
    EXPECT_EQ(audio_toolbox().instrument.instrumentType, 4);
    EXPECT_EQ(audio_toolbox().instrument.bankMSB, 121);
    EXPECT_EQ(audio_toolbox().instrument.bankLSB, 0);
    EXPECT_EQ(audio_toolbox().instrument.presetID, 0);
}

TEST_F(ImportLoading, HandsAPresetToTheSamplerAsItsState) {
    Value first;
    audio_toolbox().load = [&](int load) {
        if (load == 1) {
            first = audio_toolbox().loaded_state;
        }
        return 0;
    };
    import_preset();
    ASSERT_TRUE(first);
    EXPECT_TRUE(CFEqual(entry(first, "name").get(), text("Test").get()));
    EXPECT_TRUE(CFEqual(entry(first, "manufacturer").get(), whole(1634758764).get()));
}

TEST_F(ImportLoading, DisposesOfTheSamplerBeforeItChecksWithAFreshOne) {
    import_preset();
    EXPECT_EQ(audio_toolbox().calls,
              (Texts{"set 0 0 0 8", "get 0 0 0 8", "dispose", "set 0 0 0 8", "dispose"}));
    EXPECT_EQ(audio_toolbox().units_made, 2);
}

TEST_F(ImportLoading, AsksForApplesSampler) {
    import_preset();
    const AudioComponentDescription& description = audio_toolbox().description;
    EXPECT_EQ(description.componentType, 0x61756d75U);
    EXPECT_EQ(description.componentSubType, 0x73616d70U);
    EXPECT_EQ(description.componentManufacturer, 0x6170706cU);
    EXPECT_EQ(description.componentFlags, 0U);
    EXPECT_EQ(description.componentFlagsMask, 0U);
}

TEST_F(ImportLoading, SaysThatThereIsNoSampler) {
    audio_toolbox().has_component = false;
    EXPECT_EQ(import_preset().error, "AUSampler not found");
    EXPECT_EQ(import_instrument("a.exs", options).error, "AUSampler not found");
}

TEST_F(ImportLoading, SaysThatNoSamplerCanBeMade) {
    audio_toolbox().instance_status = -1;
    EXPECT_EQ(import_preset().error, "AUSampler not found");
}

TEST_F(ImportLoading, SaysThatTheSamplerDoesNotInitialise) {
    audio_toolbox().initialise_statuses = {-10875};
    EXPECT_EQ(import_preset().error, "AUSampler initialise failed (OSStatus -10875)");
    EXPECT_EQ(audio_toolbox().calls, Texts{"dispose"});
}

TEST_F(ImportLoading, RefusesAPresetThatIsNoPropertyList) {
    write_file(folder / "empty.aupreset", "");
    write_file(folder / "half.aupreset", preset_text({}).substr(0, 200));
    write_file(folder / "array.aupreset", "<plist version=\"1.0\"><array/></plist>");
    write_file(folder / "folder.aupreset/file", "");
    for (const char* name : {"empty.aupreset", "half.aupreset", "array.aupreset", "folder.aupreset",
                             "none.aupreset"}) {
        audio_toolbox().calls.clear();
        const Report report = import_instrument((folder / name).string(), options);
        EXPECT_EQ(report.error, "the preset isn't a property list") << name;
        EXPECT_EQ(report.load_ms, 0.0) << name;
        EXPECT_EQ(audio_toolbox().calls, Texts{"dispose"}) << name;
    }
}

TEST_F(ImportLoading, SaysWhichStatusTheLoadHad) {
    audio_toolbox().load = [](int) { return -10868; };
    EXPECT_EQ(import_preset().error, "AUSampler couldn't load it (OSStatus -10868)");
    audio_toolbox().load = [](int) { return 1954115647; };
    EXPECT_EQ(import_preset().error, "AUSampler couldn't load it (OSStatus 1954115647)");
}

TEST_F(ImportLoading, ReportsTheTimeOfALoadThatFailed) {
    audio_toolbox().load = [](int) { return -1; };
    EXPECT_GT(import_preset().load_ms, 0.0);
}

TEST_F(ImportLoading, NamesTheFirstSampleThatWasNotFound) {
    audio_toolbox().load = [](int) {
        return finds("/no such folder/C3.wav") || finds("/no such folder/D3.wav") ? 0 : -43;
    };
    const Report report = import_preset();
    EXPECT_EQ(report.error, "a sample wasn't found: C3.wav");
    EXPECT_EQ(report.relink.unresolved,
              (Texts{"/no such folder/C3.wav", "/no such folder/D3.wav"}));
    EXPECT_FALSE(report.ok);
}

TEST_F(ImportLoading, NamesApplesLibraryBeforeAnythingElse) {
    const std::string apple = "/Library/Application Support/GarageBand/Instrument Library/C3.caf";
    audio_toolbox().load = [&](int) {
        finds("/no such folder/C3.wav");
        finds(apple);
        return -43;
    };
    const Report report = import_preset();
    EXPECT_EQ(report.error, "it uses samples from Apple's sound library: Lumo imports only your "
                            "own or exported instruments");
    EXPECT_EQ(report.relink.apple_library, Texts{apple});
    EXPECT_EQ(report.relink.unresolved, Texts{"/no such folder/C3.wav"});
}

TEST_F(ImportLoading, RedirectsSamplesToTheIndexOnlyWhileItLoads) {
    write_file(folder / "new/kick.wav", "kick");
    SampleIndex index;
    index.add_root((folder / "new").string());
    options.index = &index;
    std::vector<bool> found;
    audio_toolbox().load = [&](int) {
        found.push_back(finds("/no such folder/kick.wav"));
        return 0;
    };
    const Report report = import_preset();
    EXPECT_EQ(found, (std::vector<bool>{true, false}));
    EXPECT_TRUE(report.ok) << report.error;
    ASSERT_EQ(report.relink.relinked.size(), 1U);
    EXPECT_EQ(report.relink.relinked[0].first, "/no such folder/kick.wav");
    EXPECT_EQ(report.relink.relinked[0].second, (folder / "new/kick.wav").string());
}

TEST_F(ImportLoading, UsesTheSamplesThatWereLoadedEvenIfTheMovedOnesAppearAgain) {
    write_file(folder / "new/Drums/kick.wav", "kick");
    SampleIndex index;
    index.add_root((folder / "new").string());
    options.index = &index;
    const std::string moved = folder / "old/Kit/kick.wav";
    audio_toolbox().load = [&](int) {
        EXPECT_TRUE(finds(moved));
        write_file(moved, "another");
        return 0;
    };
    set_samples({moved});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(report.sample_bytes, 4U);
    EXPECT_EQ(read_file(in_show("samples/Drums/kick.wav")), "kick");
}

TEST_F(ImportLoading, RelinksInTheSameWayForAnExsInstrument) {
    audio_toolbox().load = [](int) { return finds("/no such folder/kick.wav") ? 0 : -43; };
    const Report report = import_instrument((folder / "a.exs").string(), options);
    EXPECT_EQ(report.error, "a sample wasn't found: kick.wav");
}

TEST_F(ImportLoading, SaysThatTheStateCannotBeRead) {
    audio_toolbox().get_status = -10879;
    EXPECT_EQ(import_preset().error, "AUSampler's state couldn't be read");
    audio_toolbox().get_status = 0;
    audio_toolbox().state = {};
    EXPECT_EQ(import_preset().error, "AUSampler's state couldn't be read");
}

TEST_F(ImportLoading, DescribesTheStateThatTheSamplerGives) {
    const Value zones = array({dictionary({{"min key", whole(60)}, {"max key", whole(62)}})});
    audio_toolbox().state = dictionary(
        {{"Instrument",
          dictionary(
              {{"Layers", array({dictionary({{"Zones", zones}, {"name", text("Soft")}})})}})}});
    const Report report = import_preset();
    ASSERT_EQ(report.shape.layers.size(), 1U);
    EXPECT_EQ(report.shape.layers[0].name, "Soft");
    EXPECT_EQ(report.shape.lowest_key, 60);
    EXPECT_EQ(report.shape.highest_key, 62);
}

} // namespace
