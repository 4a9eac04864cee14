// The number of system calls for importing a library of small instruments.
#include "tool_fixture.h"

#include <algorithm>
#include <filesystem>

namespace {

using namespace lumo::test;

class SystemCalls : public ToolTest {
protected:
    static constexpr int samples_of_each = 8;

    /// Makes presets, each in its own folder with the moved samples; returns their paths.
    std::vector<std::string> make_library(int instruments) const {
        std::vector<std::string> presets;
        for (int i = 0; i < instruments; ++i) {
            const std::string kit = "Kit " + std::to_string(i);
            std::vector<std::string> recorded;
            for (int sample = 0; sample < samples_of_each; ++sample) {
                std::filesystem::path name = std::filesystem::path(kit) / kit;
                name += " " + std::to_string(sample) + ".wav";
                make_sound(name.string());
                recorded.push_back(("/Volumes/Gone" / name).string());
            }
            const std::filesystem::path preset = std::filesystem::path(kit) / (kit + ".aupreset");
            presets.push_back(make_preset(preset.string(), recorded));
        }
        return presets;
    }

    /// The calls of one import of these instruments that name a file or use an open one.
    std::ptrdiff_t calls_of_import(const std::vector<std::string>& presets) const {
        std::filesystem::remove_all(package);
        std::filesystem::remove_all(states);
        const Path trace = folder / "trace";
        // A leak checker cannot work while the process is traced.
        std::vector<std::string> words = {
            "env", "ASAN_OPTIONS=detect_leaks=0", "strace", "-f",          "-s", "0",
            "-e",  "trace=%file,%desc",           "-o",     trace.string()};
        for (const std::string& word : command(presets)) {
            words.push_back(word);
        }
        const ProcessResult result = run_process(words);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out.find("\"ok\":false"), std::string::npos) << result.out;
        const std::string lines = read_file(trace);
        return std::count(lines.begin(), lines.end(), '\n');
    }
};

TEST_F(SystemCalls, OfASmallSampleThatMovedAreFew) {
    constexpr int few = 5;
    constexpr int many = 15;
    const std::vector<std::string> presets = make_library(many);
    const std::ptrdiff_t start = calls_of_import({presets.begin(), presets.begin() + few});
    const std::ptrdiff_t all = calls_of_import(presets);
    const double of_a_sample = static_cast<double>(all - start) / ((many - few) * samples_of_each);
    EXPECT_GT(of_a_sample, 10.0);
    EXPECT_LT(of_a_sample, 25.0);
}

TEST_F(SystemCalls, OfInstrumentsOfOneNameDoNotGrowWithTheirNumber) {
    const std::string preset = make_preset("Kit.aupreset", {make_sound("Kit/kick.wav")});
    const auto calls = [&](std::size_t times) {
        return calls_of_import(std::vector<std::string>(times, preset));
    };
    const std::ptrdiff_t few = calls(20);
    const std::ptrdiff_t more = calls(40);
    const std::ptrdiff_t many = calls(60);
    EXPECT_LT((many - more) - (more - few),
              20); // 400 if each import tests all names before its own
}

} // namespace
