// libsndfile is loaded when a sample needs it. In these tests the dynamic linker finds an empty
// file in its place.
#include "tool_fixture.h"

namespace {

using namespace lumo::test;

class WithoutLibsndfile : public ToolTest {
protected:
    ProcessResult run(const std::string& instrument) const {
        write_file(folder / "broken/libsndfile.so.1", "");
        std::vector<std::string> words = {"env", "LD_LIBRARY_PATH=" + (folder / "broken").string()};
        for (const std::string& word : command({instrument})) {
            words.push_back(word);
        }
        return run_process(words);
    }
};

TEST_F(WithoutLibsndfile, AWaveFileFailsWithAStatusOfItsOwn) {
    const ProcessResult result = run(make_preset("x.aupreset", {make_sound("Kit/kick.wav")}));
    EXPECT_NE(result.out.find("AUSampler couldn't load it (OSStatus -10875)"), std::string::npos)
        << result.out;
    EXPECT_EQ(result.err, "");
}

TEST_F(WithoutLibsndfile, InstrumentsThatDoNotNeedItAreImported) {
    const Path sample = folder / "Kit/kick.caf";
    write_file(sample, std::string("caff\0\1\0\0desc", 12));
    const ProcessResult result = run(make_preset("x.aupreset", {sample.string()}));
    EXPECT_NE(result.out.find("\"ok\":true"), std::string::npos) << result.out;
    EXPECT_EQ(result.err, "");
}

} // namespace
