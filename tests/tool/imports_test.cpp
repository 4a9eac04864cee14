// Runs of the tool that import presets.
#include "exs/list_values.h"
#include "tool_fixture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

class Imports : public ToolTest {};

/// The contents and modification times of all files in a folder.
std::map<std::string, std::pair<std::string, std::int64_t>> contents(const fs::path& folder) {
    std::map<std::string, std::pair<std::string, std::int64_t>> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            const auto time = entry.last_write_time().time_since_epoch();
            files[entry.path().string()] = {read_file(entry.path()),
                                            static_cast<std::int64_t>(time.count())};
        }
    }
    return files;
}

TEST_F(Imports, ReportEverythingAboutAnInstrument) {
    const std::string kick = make_sound("sounds/Kit/kick.wav", 10);
    const std::string snare = make_sound("sounds/Kit/snare.wav", 20);
    const std::string preset = make_preset("in/My Kit.aupreset", {kick, snare});
    const json report = import(preset);
    EXPECT_EQ(report["name"], "My Kit");
    EXPECT_EQ(report["source"], preset);
    EXPECT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["error"], "");
    EXPECT_EQ(report["relinked"], json::array());
    EXPECT_EQ(report["unresolved"], json::array());
    EXPECT_EQ(report["appleLibrary"], json::array());
    EXPECT_EQ(report["samples"], 2);
    EXPECT_EQ(report["sampleBytes"], sound_size(10) + sound_size(20));
    EXPECT_EQ(report["copiedBytes"], sound_size(10) + sound_size(20));
    EXPECT_EQ(report["stateFile"], (states / "My Kit.aupreset").string());
    EXPECT_EQ(report["shape"]["zones"], 2);
    EXPECT_EQ(report["shape"]["lowestKey"], 36);
    EXPECT_EQ(report["shape"]["highestKey"], 37);
    EXPECT_EQ(report["shape"]["layers"].size(), 1U);
}

TEST_F(Imports, CopyTheSamplesIntoTheShow) {
    const std::string kick = make_sound("sounds/Kit/kick.wav", 10);
    import(make_preset("Kit.aupreset", {kick}));
    EXPECT_EQ(read_file(package / "samples/Kit/kick.wav"), wav_bytes(10));
}

TEST_F(Imports, WriteABinaryStateWithReferencesIntoTheShow) {
    const std::string kick = make_sound("sounds/Kit/kick.wav", 10);
    const std::string preset = make_preset("Kit.aupreset", {kick});
    import(preset);
    EXPECT_EQ(read_file(states / "Kit.aupreset").substr(0, 8), "bplist00");
    const Value state = list_in(states / "Kit.aupreset");
    EXPECT_TRUE(CFEqual(entry(state, "file-references").get(),
                        dictionary({{"Sample:268435456", text("samples/Kit/kick.wav")}}).get()));
    EXPECT_TRUE(
        CFEqual(entry(state, "Instrument").get(), entry(list_in(preset), "Instrument").get()));
}

TEST_F(Imports, GoOnAfterAnInstrumentThatFails) {
    const std::string first = make_preset("first.aupreset");
    const std::string third = make_preset("third.aupreset");
    const ImportRun run = import_all({first, (folder / "second.aupreset").string(), third});
    EXPECT_EQ(run.process.status, 0);
    EXPECT_EQ(run.process.err, "");
    ASSERT_EQ(run.lines.size(), 3U);
    EXPECT_EQ(run.lines[0]["source"], first);
    EXPECT_EQ(run.lines[0]["ok"], true);
    EXPECT_EQ(run.lines[1]["error"], "the preset isn't a property list");
    EXPECT_EQ(run.lines[1]["ok"], false);
    EXPECT_EQ(run.lines[2]["source"], third);
    EXPECT_EQ(run.lines[2]["ok"], true);
}

TEST_F(Imports, OfAnInstrumentNamedTwiceAreTwo) {
    const std::string preset = make_preset("X.aupreset", {make_sound("Kit/kick.wav")});
    const ImportRun run = import_all({preset, preset, preset});
    ASSERT_EQ(run.lines.size(), 3U);
    EXPECT_EQ(run.lines[0]["stateFile"], (states / "X.aupreset").string());
    EXPECT_EQ(run.lines[1]["stateFile"], (states / "X-2.aupreset").string());
    EXPECT_EQ(run.lines[2]["stateFile"], (states / "X-3.aupreset").string());
    EXPECT_EQ(run.lines[0]["copiedBytes"], sound_size(100));
    EXPECT_EQ(run.lines[1]["copiedBytes"], 0);
    EXPECT_EQ(run.lines[1]["sampleBytes"], sound_size(100));
}

TEST_F(Imports, AgainCopyNothingAndChangeNothing) {
    const std::string kick = make_sound("sounds/Kit/kick.wav", 10);
    const std::string other_kick = make_sound("other/Kit/kick.wav", 20);
    const std::string a = make_preset("a.aupreset", {kick});
    const std::string b = make_preset("b.aupreset", {other_kick, kick});
    import_all({a, b});
    const auto before = contents(folder.path());
    const ImportRun run = import_all({a, b});
    ASSERT_EQ(run.lines.size(), 2U);
    for (const json& line : run.lines) {
        EXPECT_EQ(line["ok"], true) << line;
        EXPECT_EQ(line["copiedBytes"], 0);
    }
    auto after = contents(folder.path());
    EXPECT_EQ(after.erase((states / "a-2.aupreset").string()), 1U);
    EXPECT_EQ(after.erase((states / "b-2.aupreset").string()), 1U);
    EXPECT_EQ(after, before);
}

TEST_F(Imports, NumberSamplesOfOneNameAndSeveralSizes) {
    const std::string a = make_preset("a.aupreset", {make_sound("a/Kit/kick.wav", 10)});
    const std::string b = make_preset("b.aupreset", {make_sound("b/Kit/kick.wav", 20)});
    import_all({a, b});
    EXPECT_EQ(read_file(package / "samples/Kit/kick.wav"), wav_bytes(10));
    EXPECT_EQ(read_file(package / "samples/Kit/kick-2.wav"), wav_bytes(20));
}

TEST_F(Imports, UseTheLastPackage) {
    const std::string preset = make_preset("a.aupreset", {make_sound("Kit/kick.wav")});
    const ImportRun run = import_all({"--package", (folder / "Other.lumo").string(), preset});
    EXPECT_TRUE(fs::exists(folder / "Other.lumo/samples/Kit/kick.wav"));
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(Imports, TakeAnInstrumentWhoseNameBeginsWithADash) {
    make_preset("-x.aupreset");
    const ImportRun run =
        run_import({"--package", "P.lumo", "--states", "S", "-x.aupreset"}, folder.path());
    ASSERT_EQ(run.lines.size(), 1U);
    EXPECT_EQ(run.lines[0]["ok"], true) << run.lines[0];
    EXPECT_EQ(run.lines[0]["name"], "-x");
}

TEST_F(Imports, TakeRelativePaths) {
    make_sound("Kit/kick.wav");
    make_preset("in/Kit.aupreset", {"Kit/kick.wav"});
    const ImportRun run = run_import(
        {"--package", "Show.lumo", "--states", "states/", "in/Kit.aupreset"}, folder.path());
    ASSERT_EQ(run.lines.size(), 1U);
    EXPECT_EQ(run.lines[0]["ok"], true) << run.lines[0];
    EXPECT_EQ(run.lines[0]["stateFile"], "states/Kit.aupreset");
    EXPECT_TRUE(fs::exists(package / "samples/Kit/kick.wav"));
}

TEST_F(Imports, OfAPresetInBinaryFormWork) {
    const Value list = list_in(make_preset("xml.aupreset", {make_sound("Kit/kick.wav")}));
    const Value bytes = adopt(CFPropertyListCreateData(
        kCFAllocatorDefault, list.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    const auto* data = static_cast<CFDataRef>(bytes.get());
    write_file(folder / "binary.aupreset", {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                                            static_cast<std::size_t>(CFDataGetLength(data))});
    EXPECT_EQ(import(folder / "binary.aupreset")["ok"], true);
}

TEST_F(Imports, OfAStateInAShowWorkFromWithinIt) {
    import(make_preset("Kit.aupreset", {make_sound("Kit/kick.wav")}));
    const ImportRun run =
        run_import({"--package", (folder / "New.lumo").string(), "--states",
                    (folder / "new").string(), (states / "Kit.aupreset").string()},
                   package);
    ASSERT_EQ(run.lines.size(), 1U);
    EXPECT_EQ(run.lines[0]["ok"], true) << run.lines[0];
    EXPECT_TRUE(fs::exists(folder / "New.lumo/samples/Kit/kick.wav"));
}

TEST_F(Imports, EndEachLineWithOneNewline) {
    const ImportRun run = import_all({make_preset("a.aupreset"), make_preset("b.aupreset")});
    EXPECT_EQ(std::count(run.process.out.begin(), run.process.out.end(), '\n'), 2);
    EXPECT_TRUE(run.process.out.ends_with("}}\n"));
    EXPECT_EQ(run.process.out.find("\n\n"), std::string::npos);
    EXPECT_EQ(run.process.out.find(' '), std::string::npos);
}

} // namespace
