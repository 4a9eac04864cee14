// Presets that refer to a sound bank. The bank consists of its header only, which a real sampler
// would refuse.
#include "exs/list_values.h"
#include "tool_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

class SoundBanks : public ToolTest {
protected:
    /// Writes a preset with "Bank:0" as its only reference and a list of banks; returns its path.
    std::string make_bank_preset(const std::string& bank) const {
        std::string preset = preset_text({bank});
        replace(preset, "Sample:268435456", "Bank:0");
        replace(preset, "<key>Layers</key>",
                "<key>Banks</key><dict><key>gm.sf2</key><array><integer>268435456</integer></array>"
                "</dict><key>Layers</key>");
        write_file(folder / "GM.aupreset", preset);
        return (folder / "GM.aupreset").string();
    }

    static void replace(std::string& text, const std::string& old, const std::string& other) {
        text.replace(text.find(old), old.size(), other);
    }
};

const std::string bank_bytes = std::string("RIFF\x10\0\0\0sfbkLIST\4\0\0\0INFO", 24);

TEST_F(SoundBanks, ArePlacedInTheShowLikeSamples) {
    write_file(folder / "Banks/gm.sf2", bank_bytes);
    const json report = import(make_bank_preset((folder / "Banks/gm.sf2").string()));
    ASSERT_EQ(report["ok"], true) << report;
    EXPECT_EQ(report["samples"], 1);
    EXPECT_EQ(report["sampleBytes"], 24);
    EXPECT_EQ(read_file(package / "samples/Banks/gm.sf2"), bank_bytes);
}

TEST_F(SoundBanks, KeepTheInstrumentsListAndTheirKey) {
    write_file(folder / "Banks/gm.sf2", bank_bytes);
    const std::string preset = make_bank_preset((folder / "Banks/gm.sf2").string());
    ASSERT_EQ(import(preset)["ok"], true);
    const Value state = list_in(states / "GM.aupreset");
    EXPECT_TRUE(CFEqual(entry(state, "file-references").get(),
                        dictionary({{"Bank:0", text("samples/Banks/gm.sf2")}}).get()));
    EXPECT_TRUE(
        CFEqual(entry(state, "Instrument").get(), entry(list_in(preset), "Instrument").get()));
}

TEST_F(SoundBanks, ThatAreNoneFailTheLoad) {
    const json report = import(make_bank_preset(make_sound("Banks/gm.sf2")));
    EXPECT_EQ(report["ok"], false);
    EXPECT_EQ(report["error"], "AUSampler couldn't load it (OSStatus 1954115647)");
}

} // namespace
