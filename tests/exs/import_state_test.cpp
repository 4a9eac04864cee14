// How the state of an instrument is written and checked.
#include "import_fixture.h"

#include <cstddef>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using lumo::exs::import_instrument;
using lumo::exs::Report;

class ImportState : public ImportTest {
protected:
    std::string state_path(const std::string& name) const {
        return (fs::path(options.states) / name).string();
    }

    /// The number of entries in the states folder.
    std::ptrdiff_t states() const {
        return std::distance(fs::directory_iterator(options.states), fs::directory_iterator());
    }
};

TEST_F(ImportState, RefersIntoTheShowAndIsOtherwiseTheSamplers) {
    write_file(folder / "Kit/kick.wav", "kick");
    audio_toolbox().state =
        dictionary({{"Instrument", dictionary({{"Layers", array({})}})},
                    {"gain", real(-1.5)},
                    {"file-references",
                     dictionary({{"Sample:1", text((folder / "Kit/kick.wav").string())}})}});
    const Report report = import_preset();
    const Value expected =
        dictionary({{"Instrument", dictionary({{"Layers", array({})}})},
                    {"gain", real(-1.5)},
                    {"file-references", dictionary({{"Sample:1", text("samples/Kit/kick.wav")}})}});
    EXPECT_EQ(report.state_file, state_path("Kit.aupreset"));
    EXPECT_TRUE(CFEqual(list_in(report.state_file).get(), expected.get()));
}

TEST_F(ImportState, IsCheckedWithReferencesThroughThePackage) {
    write_file(folder / "Kit/kick.wav", "kick");
    set_samples({folder / "Kit/kick.wav"});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok);
    EXPECT_EQ(report.error, "");
    const Value expected =
        dictionary({{"Sample:1", text(in_show("samples/Kit/kick.wav").string())}});
    EXPECT_TRUE(
        CFEqual(entry(audio_toolbox().loaded_state, "file-references").get(), expected.get()));
}

TEST_F(ImportState, IsNumberedWhereAnotherIs) {
    EXPECT_EQ(import_preset("X.aupreset").state_file, state_path("X.aupreset"));
    EXPECT_EQ(import_preset("X.aupreset").state_file, state_path("X-2.aupreset"));
    const std::string exs = (folder / "X.exs").string();
    EXPECT_EQ(import_instrument(exs, options).state_file, state_path("X-3.aupreset"));
}

TEST_F(ImportState, GoesOnAfterTheLastNumberAsLongAsThatIsThere) {
    const auto next = [&] { return import_preset("X.aupreset").state_file; };
    EXPECT_EQ(next(), state_path("X.aupreset"));
    EXPECT_EQ(next(), state_path("X-2.aupreset"));
    write_file(state_path("X-3.aupreset"), "of another process");
    EXPECT_EQ(next(), state_path("X-4.aupreset"));
    std::filesystem::remove(state_path("X-2.aupreset"));
    EXPECT_EQ(next(), state_path("X-5.aupreset"));
    std::filesystem::remove_all(options.states);
    EXPECT_EQ(next(), state_path("X.aupreset"));
    EXPECT_EQ(next(), state_path("X-2.aupreset"));
}

TEST_F(ImportState, NeverOverwrites) {
    write_file(state_path("X.aupreset"), "as it was");
    fs::create_directories(state_path("X-2.aupreset"));
    EXPECT_EQ(import_preset("X.aupreset").state_file, state_path("X-3.aupreset"));
    EXPECT_EQ(read_file(state_path("X.aupreset")), "as it was");
}

TEST_F(ImportState, IsNotWrittenThroughALinkToNowhere) {
    fs::create_directories(options.states);
    fs::create_symlink(folder / "elsewhere", state_path("X.aupreset"));
    EXPECT_EQ(import_preset("X.aupreset").state_file, state_path("X-2.aupreset"));
    EXPECT_FALSE(fs::exists(folder / "elsewhere"));
}

TEST_F(ImportState, HasItsFolderMade) {
    options.states = (folder / "a/b/states").string();
    EXPECT_TRUE(import_preset().ok);
    EXPECT_TRUE(fs::exists(folder / "a/b/states/Kit.aupreset"));
}

TEST_F(ImportState, WhoseFolderCannotBeMadeEndsTheImport) {
    write_file(options.states, "a file");
    const Report report = import_preset();
    EXPECT_TRUE(report.error.starts_with("the samples couldn't be copied into the show: "))
        << report.error;
    EXPECT_EQ(read_file(options.states), "a file");
}

TEST_F(ImportState, ThatCannotBeWrittenEndsTheImport) {
    write_file(folder / "Kit/kick.wav", "kick");
    const std::string path = "/a";
    const Value url = adopt(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()), 2, false));
    audio_toolbox().state =
        dictionary({{"url", url},
                    {"file-references",
                     dictionary({{"Sample:1", text((folder / "Kit/kick.wav").string())}})}});
    const Report report = import_preset();
    EXPECT_EQ(report.error, "its state couldn't be written");
    EXPECT_EQ(report.state_file, "");
    EXPECT_EQ(states(), 0);
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "kick");
}

TEST_F(ImportState, WhoseSampleIsGoneFromTheShowFailsItsCheck) {
    copier().after = [](const std::string& to) { fs::remove(to); };
    write_file(folder / "Kit/kick.wav", "kick");
    set_samples({folder / "Kit/kick.wav"});
    const Report report = import_preset();
    EXPECT_EQ(report.error,
              "check: missing from the show: " + in_show("samples/Kit/kick.wav").string());
    EXPECT_FALSE(report.ok);
    EXPECT_EQ(report.state_file, state_path("Kit.aupreset"));
    EXPECT_TRUE(fs::exists(report.state_file));
    EXPECT_EQ(audio_toolbox().units_made, 1);
}

TEST_F(ImportState, ThatDoesNotLoadFailsItsCheck) {
    audio_toolbox().load = [](int load) { return load == 2 ? -43 : 0; };
    const Report report = import_preset();
    EXPECT_EQ(report.error, "check: it didn't load from the show (OSStatus -43)");
    EXPECT_FALSE(report.ok);
    EXPECT_EQ(report.state_file, state_path("Kit.aupreset"));
    EXPECT_TRUE(fs::exists(report.state_file));
}

TEST_F(ImportState, ForWhichThereIsNoSamplerFailsItsCheckWithStatusZero) {
    audio_toolbox().initialise_statuses = {0, -10875};
    const Report report = import_preset();
    EXPECT_EQ(report.error, "check: it didn't load from the show (OSStatus 0)");
    EXPECT_FALSE(report.ok);
    EXPECT_EQ(report.state_file, state_path("Kit.aupreset"));
}

TEST_F(ImportState, WhoseNameCannotBeTestedThrows) {
    const std::string name(250, 'x');
    EXPECT_THROW(import_instrument(name + ".exs", options), fs::filesystem_error);
}

} // namespace
