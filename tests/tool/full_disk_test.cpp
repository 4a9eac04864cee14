// A disk that is full while samples are copied and states are written.
#include "support/small_disk.h"
#include "tool_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

class FullDisk : public ToolTest {
protected:
    void SetUp() override {
        if (!disk.is_mounted()) {
            GTEST_SKIP() << "no small disk can be mounted here";
        }
    }

    SmallDisk disk{folder / "disk"};
};

TEST_F(FullDisk, EndsTheImportAndLeavesNoHalfSample) {
    package = folder / "disk/Show.lumo";
    const json report = import(make_preset(
        "Kit.aupreset", {make_sound("Kit/a.wav", 5000), make_sound("Kit/b.wav", 50000)}));
    const std::string error = report["error"];
    EXPECT_TRUE(error.starts_with("the samples couldn't be copied into the show: ")) << error;
    EXPECT_NE(error.find("No space left on device"), std::string::npos) << error;
    EXPECT_EQ(report["copiedBytes"], sound_size(5000));
    EXPECT_EQ(read_file(package / "samples/Kit/a.wav"), wav_bytes(5000));
    EXPECT_FALSE(fs::exists(package / "samples/Kit/b.wav"));
    EXPECT_FALSE(fs::exists(states));
}

TEST_F(FullDisk, IsSeenWhenTheStateIsWritten) {
    states = folder / "disk/states";
    write_file(folder / "disk/filler", std::string(30000, 'x'));
    write_file(folder / "disk/more filler", std::string(28000, 'x'));
    const std::vector<std::string> samples(1, make_sound("Kit/kick.wav"));
    std::string layers;
    for (int i = 0; i < 1000; ++i) {
        layers += "<dict><key>name</key><string>Layer " + std::to_string(i) + "</string></dict>";
    }
    write_file(folder / "Kit.aupreset", preset_text(samples, layers));
    const json report = import(folder / "Kit.aupreset");
    EXPECT_EQ(report["error"], "its state couldn't be written");
    EXPECT_EQ(report["stateFile"], "");
    EXPECT_EQ(read_file(package / "samples/Kit/kick.wav"), wav_bytes(100));
    EXPECT_EQ(read_file(folder / "disk/filler"), std::string(30000, 'x'));
}

} // namespace
