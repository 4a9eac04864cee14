// Samples that are not where the instrument recorded them.
#include "tool_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

class Relinking : public ToolTest {
protected:
    json redirection(const std::string& from, const std::string& to) const {
        return {{"from", from}, {"to", (folder / to).string()}};
    }
};

TEST_F(Relinking, FindsSamplesUnderOtherFolders) {
    make_sound("library/Drums/kick.wav", 10);
    make_sound("library/Drums/deep/down/snare.wav", 20);
    const json report =
        import(make_preset("in/Kit.aupreset", {"/Volumes/Old/Kit/kick.wav", "/old/snare.wav"}),
               {"--search", (folder / "library").string()});
    EXPECT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["relinked"],
              json::array({redirection("/Volumes/Old/Kit/kick.wav", "library/Drums/kick.wav"),
                           redirection("/old/snare.wav", "library/Drums/deep/down/snare.wav")}));
    EXPECT_EQ(read_file(package / "samples/Drums/kick.wav"), wav_bytes(10));
    EXPECT_EQ(read_file(package / "samples/down/snare.wav"), wav_bytes(20));
}

TEST_F(Relinking, FindsSamplesInOtherLetterCase) {
    make_sound("library/kick.wav");
    const json report = import(make_preset("in/Kit.aupreset", {"/old/KICK.Wav"}),
                               {"--search", (folder / "library").string()});
    EXPECT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["relinked"], json::array({redirection("/old/KICK.Wav", "library/kick.wav")}));
}

TEST_F(Relinking, FindsSamplesInTheOtherUnicodeForm) {
    make_sound("library/Cafe\xcc\x81.wav");
    make_sound("library/B\xc3\xb6se.wav");
    const json report =
        import(make_preset("in/Kit.aupreset", {"/old/Caf\xc3\xa9.wav", "/old/Bo\xcc\x88se.wav"}),
               {"--search", (folder / "library").string()});
    EXPECT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["relinked"],
              json::array({redirection("/old/Caf\xc3\xa9.wav", "library/Cafe\xcc\x81.wav"),
                           redirection("/old/Bo\xcc\x88se.wav", "library/B\xc3\xb6se.wav")}));
}

TEST_F(Relinking, FindsSamplesBesideTheInstrument) {
    make_sound("in/Sounds/kick.wav");
    const json report = import(make_preset("in/Kit.aupreset", {"/old/kick.wav"}));
    EXPECT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["relinked"],
              json::array({redirection("/old/kick.wav", "in/Sounds/kick.wav")}));
}

TEST_F(Relinking, FindsSamplesBesideAnInstrumentNamedWithoutAFolder) {
    make_sound("kick.wav");
    make_preset("Kit.aupreset", {"/old/kick.wav"});
    const ImportRun run =
        run_import({"--package", "P.lumo", "--states", "S", "Kit.aupreset"}, folder.path());
    ASSERT_EQ(run.lines.size(), 1U);
    EXPECT_EQ(run.lines[0]["ok"], true) << run.lines[0];
    EXPECT_EQ(run.lines[0]["relinked"],
              json::array({{{"from", "/old/kick.wav"}, {"to", "kick.wav"}}}));
    EXPECT_TRUE(fs::exists(folder / "P.lumo/samples/kick.wav"));
}

TEST_F(Relinking, ListsASampleOnceThatSeveralReferencesName) {
    make_sound("in/kick.wav");
    const json report = import(make_preset("in/Kit.aupreset", {"/old/kick.wav", "/old/kick.wav"}));
    EXPECT_EQ(report["relinked"], json::array({redirection("/old/kick.wav", "in/kick.wav")}));
    EXPECT_EQ(report["samples"], 1);
}

TEST_F(Relinking, LeavesSamplesAloneThatAreInTheirPlace) {
    const std::string kick = make_sound("original/kick.wav", 10);
    make_sound("library/kick.wav", 20);
    const json report =
        import(make_preset("in/Kit.aupreset", {kick}), {"--search", (folder / "library").string()});
    EXPECT_EQ(report["relinked"], json::array());
    EXPECT_EQ(read_file(package / "samples/original/kick.wav"), wav_bytes(10));
}

TEST_F(Relinking, ListsAllSamplesThatAreMissing) {
    const json report =
        import(make_preset("Kit.aupreset", {"/old/b.wav", "/old/a.wav", make_sound("c.wav")}));
    EXPECT_EQ(report["ok"], false);
    EXPECT_EQ(report["error"], "a sample wasn't found: b.wav");
    EXPECT_EQ(report["unresolved"], json::array({"/old/b.wav", "/old/a.wav"}));
    EXPECT_EQ(report["samples"], 0);
    EXPECT_FALSE(fs::exists(package));
    EXPECT_FALSE(fs::exists(states));
}

TEST_F(Relinking, BeginsAfreshWithEachInstrument) {
    make_sound("in/kick.wav");
    const ImportRun run =
        import_all({make_preset("in/a.aupreset", {"/old/a.wav"}),
                    make_preset("in/b.aupreset", {"/old/kick.wav"}), make_preset("in/c.aupreset")});
    ASSERT_EQ(run.lines.size(), 3U);
    EXPECT_EQ(run.lines[0]["unresolved"], json::array({"/old/a.wav"}));
    EXPECT_EQ(run.lines[1]["unresolved"], json::array());
    EXPECT_EQ(run.lines[1]["relinked"].size(), 1U);
    EXPECT_EQ(run.lines[2]["relinked"], json::array());
}

TEST_F(Relinking, RefusesSamplesOfApplesLibrary) {
    const std::string apple = "/Library/Application Support/Logic/EXS Factory Samples/Piano/C3.wav";
    make_sound("in/C3.wav");
    const json report = import(make_preset("in/Piano.aupreset", {apple, "/old/missing.wav"}));
    EXPECT_EQ(report["error"], "it uses samples from Apple's sound library: Lumo imports only "
                               "your own or exported instruments");
    EXPECT_EQ(report["appleLibrary"], json::array({apple}));
    EXPECT_EQ(report["unresolved"], json::array({"/old/missing.wav"}));
    EXPECT_EQ(report["relinked"], json::array());
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(Relinking, NeverTakesASampleOfApplesLibraryForAnother) {
    const std::string apples = "disk/Library/Application Support/Logic/EXS Factory Samples/Piano/";
    make_sound(apples + "C3.wav");
    fs::create_directories(folder / "links");
    fs::create_symlink(folder / (apples + "C3.wav"), folder / "links/C3.wav");
    const json report =
        import(make_preset("in/Piano.aupreset", {"/old/Piano/C3.wav"}),
               {"--search", (folder / "disk").string(), "--search", (folder / "links").string()});
    EXPECT_EQ(report["error"], "a sample wasn't found: C3.wav");
    EXPECT_EQ(report["unresolved"], json::array({"/old/Piano/C3.wav"}));
    EXPECT_EQ(report["relinked"], json::array());
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(Relinking, RefusesASampleThatALinkLeadsToInApplesLibrary) {
    const std::string apples = "disk/Library/Application Support/Logic/EXS Factory Samples/";
    make_sound(apples + "C3.wav");
    fs::create_directories(folder / "mine");
    fs::create_symlink(folder / (apples + "C3.wav"), folder / "mine/C3.wav");
    const std::string link = (folder / "mine/C3.wav").string();
    const json report = import(make_preset("in/Piano.aupreset", {link}));
    EXPECT_EQ(report["error"], "it uses samples from Apple's sound library: Lumo imports only "
                               "your own or exported instruments");
    EXPECT_EQ(report["appleLibrary"], json::array({link}));
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(Relinking, NamesASoundBankThatIsMissing) {
    const json report = import(make_preset("in/Piano.aupreset", {"/old/Piano.sf2", "/old/gm.DLS"}));
    EXPECT_EQ(report["error"], "a sample wasn't found: Piano.sf2");
    EXPECT_EQ(report["unresolved"], json::array({"/old/Piano.sf2", "/old/gm.DLS"}));
}

} // namespace
