// Input that is not an instrument, samples that are not audio files, folders that cannot be
// written: each produces a report line.
#include "tool_fixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

const std::string cannot_copy = "the samples couldn't be copied into the show: ";

class BadInput : public ToolTest {
protected:
    std::string error(const Path& instrument, const std::vector<std::string>& options = {}) const {
        const json report = import(instrument, options);
        EXPECT_EQ(report["ok"], false) << report;
        return report["error"];
    }

    std::string error_of_bytes(const std::string& bytes) const {
        write_file(folder / "x.aupreset", bytes);
        return error(folder / "x.aupreset");
    }

    std::string error_of_sample(const std::string& path) const {
        return error(make_preset("x.aupreset", {path}));
    }
};

TEST_F(BadInput, OfAnUnknownKindIsRefused) {
    write_file(folder / "notes.txt", "notes");
    const json report = import(folder / "notes.txt");
    EXPECT_EQ(report["error"], "not an EXS instrument or an AUSampler preset");
    EXPECT_EQ(report["name"], "notes");
    EXPECT_EQ(report["shape"]["lowestKey"], 127);
}

TEST_F(BadInput, ThatIsNoPropertyListIsRefused) {
    const std::string refusal = "the preset isn't a property list";
    const std::string preset = preset_text({"/old/kick.wav"});
    EXPECT_EQ(error(folder / "missing.aupreset"), refusal);
    EXPECT_EQ(error_of_bytes(""), refusal);
    EXPECT_EQ(error_of_bytes("bplist00"), refusal);
    EXPECT_EQ(error_of_bytes(preset.substr(0, preset.size() / 2)), refusal);
    EXPECT_EQ(error_of_bytes("<plist version=\"1.0\"><array/></plist>"), refusal);
    EXPECT_EQ(error_of_bytes(wav_bytes(1000)), refusal);
    fs::create_directories(folder / "folder.aupreset");
    EXPECT_EQ(error(folder / "folder.aupreset"), refusal);
}

TEST_F(BadInput, OfAMillionNestedArraysIsRefused) {
    std::string bytes = "<plist version=\"1.0\">";
    for (int i = 0; i < 1000000; ++i) {
        bytes += "<array>";
    }
    EXPECT_EQ(error_of_bytes(bytes), "the preset isn't a property list");
}

TEST_F(BadInput, ThatContainsItselfIsRefused) {
    // One array whose only element is object 0, the array itself.
    std::string bytes = std::string("bplist00") + '\xa1' + '\0' + '\x08';
    const std::string trailer("\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\n",
                              32);
    EXPECT_EQ(error_of_bytes(bytes + trailer), "the preset isn't a property list");
}

TEST_F(BadInput, WithAPromiseOfABillionElementsIsRefused) {
    std::string bytes = std::string("bplist00") + '\xaf' + "\x12\x3b\x9a\xca" + '\0' + '\x08';
    const std::string trailer("\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\xe",
                              32);
    EXPECT_EQ(error_of_bytes(bytes + trailer), "the preset isn't a property list");
}

TEST_F(BadInput, ThatIsAnotherUnitsPresetIsRefusedWithTheStatus) {
    EXPECT_EQ(error_of_bytes("<plist version=\"1.0\"><dict/></plist>"),
              "AUSampler couldn't load it (OSStatus -10851)");
}

TEST_F(BadInput, ThatIsAPipeWithoutAWriterIsRefused) {
    ASSERT_EQ(mkfifo((folder / "x.aupreset").c_str(), 0600), 0);
    EXPECT_EQ(error(folder / "x.aupreset"), "the preset isn't a property list");
}

TEST_F(BadInput, WithASampleThatIsNoSoundIsRefusedWithTheStatus) {
    write_file(folder / "notes.wav", "notes");
    EXPECT_EQ(error_of_sample((folder / "notes.wav").string()),
              "AUSampler couldn't load it (OSStatus 1954115647)");
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(BadInput, WithASampleThatIsAFolderAPipeOrADeviceIsRefused) {
    fs::create_directories(folder / "folder.wav");
    ASSERT_EQ(mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", folder / "zero.wav");
    for (const char* name : {"folder.wav", "pipe.wav", "zero.wav"}) {
        EXPECT_TRUE(error_of_sample((folder / name).string()).starts_with("AUSampler couldn't"))
            << name;
    }
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(BadInput, WithASampleThatClimbsToAFileOfTheSystemCopiesNothing) {
    EXPECT_NE(error_of_sample("../../../../../../../../etc/passwd"), "");
    EXPECT_NE(error_of_sample("/etc/passwd"), "");
    EXPECT_FALSE(fs::exists(package));
}

TEST_F(BadInput, APackageThatIsAFileIsLeftAsItIs) {
    write_file(package, "a file");
    const std::string text = error_of_sample(make_sound("Kit/kick.wav"));
    EXPECT_TRUE(text.starts_with(cannot_copy)) << text;
    EXPECT_EQ(read_file(package), "a file");
    EXPECT_FALSE(fs::exists(states));
}

TEST_F(BadInput, AStatesFolderThatIsAFileIsLeftAsItIs) {
    write_file(states, "a file");
    const std::string text = error_of_sample(make_sound("Kit/kick.wav"));
    EXPECT_TRUE(text.starts_with(cannot_copy)) << text;
    EXPECT_EQ(read_file(states), "a file");
    EXPECT_TRUE(fs::exists(package / "samples/Kit/kick.wav"));
}

TEST_F(BadInput, AnInstrumentWhoseNameIsNotUtf8KeepsItsBytes) {
    const std::string path = (folder / "Caf\xe9.aupreset").string();
    std::error_code refused;
    fs::create_directories(path, refused);
    if (refused) {
        GTEST_SKIP() << "this file system has UTF-8 names only";
    }
    fs::remove(path);
    make_preset("Caf\xe9.aupreset");
    const ProcessResult run = run_process(command({path}));
    EXPECT_TRUE(run.out.starts_with("{\"name\":\"Caf\xe9\",\"source\":\"" + path +
                                    "\",\"ok\":true,\"error\":\"\","))
        << run.out;
    EXPECT_TRUE(fs::exists(states / "Caf\xe9.aupreset"));
}

TEST_F(BadInput, ASampleWhoseFolderIsNotUtf8IsNotCopied) {
    std::error_code refused;
    fs::create_directories(folder / "Caf\xe9", refused);
    if (refused) {
        GTEST_SKIP() << "this file system has UTF-8 names only";
    }
    make_sound("Caf\xe9/kick.wav");
    const std::string preset = make_preset("x.aupreset", {"/old/kick.wav"});
    const ProcessResult run = run_process(command({preset}));
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("\"ok\":false,\"error\":\"" + cannot_copy), std::string::npos)
        << run.out;
    EXPECT_FALSE(fs::exists(package));
}

/// Runs the tool as a user to whom permissions apply: as user 65534 when the tests run as root.
class Permissions : public ToolTest {
protected:
    void SetUp() override {
        if (geteuid() == 0 && !can_be_nobody()) {
            GTEST_SKIP() << "root is bound by no permissions, and setpriv is missing";
        }
        fs::permissions(folder.path(), fs::perms::all);
    }

    static bool can_be_nobody() { return run_process(as_nobody({"true"})).status == 0; }

    static std::vector<std::string> as_nobody(const std::vector<std::string>& command) {
        std::vector<std::string> words = {"setpriv", "--reuid=65534", "--regid=65534",
                                          "--clear-groups"};
        words.insert(words.end(), command.begin(), command.end());
        return words;
    }

    ProcessResult run(const std::vector<std::string>& arguments) const {
        return run_process(geteuid() == 0 ? as_nobody(command(arguments)) : command(arguments));
    }

    std::string error(const std::string& instrument) const {
        const ProcessResult result = run({instrument});
        EXPECT_EQ(result.status, 0) << result.err;
        const json report = json::parse(result.out, nullptr, false);
        return report.is_object() ? report["error"].get<std::string>() : result.out;
    }
};

TEST_F(Permissions, MissingForAFolderHideASampleThatIsFoundBesideTheInstrument) {
    const std::string hidden = make_sound("closed/Kit/kick.wav");
    const std::string found = make_sound("in/kick.wav", 50);
    const std::string preset = make_preset("in/x.aupreset", {hidden});
    fs::permissions(folder / "closed", fs::perms::none);
    const json report = json::parse(run({preset}).out, nullptr, false);
    fs::permissions(folder / "closed", fs::perms::owner_all);
    ASSERT_TRUE(report.is_object());
    EXPECT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["relinked"], json::array({{{"from", hidden}, {"to", found}}}));
    EXPECT_EQ(read_file(package / "samples/in/kick.wav"), wav_bytes(50));
}

TEST_F(Permissions, MissingForAFolderHideASampleThatIsFoundNowhere) {
    const std::string hidden = make_sound("closed/Kit/kick.wav");
    const std::string preset = make_preset("in/x.aupreset", {hidden});
    fs::permissions(folder / "closed", fs::perms::none);
    const json report = json::parse(run({preset}).out, nullptr, false);
    fs::permissions(folder / "closed", fs::perms::owner_all);
    ASSERT_TRUE(report.is_object());
    EXPECT_EQ(report["error"], "a sample wasn't found: kick.wav");
    EXPECT_EQ(report["unresolved"], json::array({hidden}));
}

TEST_F(Permissions, AreMissingForAPreset) {
    const std::string preset = make_preset("x.aupreset");
    fs::permissions(preset, fs::perms::none);
    EXPECT_EQ(error(preset), "the preset isn't a property list");
}

TEST_F(Permissions, AreMissingForASample) {
    const std::string kick = make_sound("Kit/kick.wav");
    fs::permissions(kick, fs::perms::none);
    EXPECT_EQ(error(make_preset("x.aupreset", {kick})),
              "AUSampler couldn't load it (OSStatus -54)");
}

TEST_F(Permissions, AreMissingForThePackage) {
    fs::create_directories(package);
    fs::permissions(package, fs::perms::owner_read | fs::perms::owner_exec |
                                 fs::perms::others_read | fs::perms::others_exec);
    const std::string text = error(make_preset("x.aupreset", {make_sound("Kit/kick.wav")}));
    EXPECT_TRUE(text.starts_with(cannot_copy)) << text;
}

TEST_F(Permissions, AreMissingForWritingAState) {
    fs::create_directories(states);
    fs::permissions(states, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                fs::perms::others_exec);
    EXPECT_EQ(error(make_preset("x.aupreset")), "its state couldn't be written");
}

TEST_F(Permissions, AreMissingForTestingTheNameOfAStateAndEndTheRun) {
    const std::string good = make_preset("good.txt");
    const std::string preset = make_preset("x.aupreset");
    fs::create_directories(states);
    fs::permissions(states, fs::perms::owner_read | fs::perms::others_read);
    const ProcessResult result = run({good, preset, good});
    fs::permissions(states, fs::perms::all);
    EXPECT_LT(result.status, 0);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    EXPECT_TRUE(result.out.starts_with("{\"name\":\"good\"")) << result.out;
    EXPECT_TRUE(fs::is_empty(states));
}

} // namespace
