// How a state is written to its file, observed by its system calls.
#include "tool_fixture.h"

#include <sstream>
#include <string_view>

namespace {

using namespace lumo::test;

/// The results of all writing calls that strace recorded for the file at `path`.
std::vector<std::string> results_of_writes(const std::string& trace, const std::string& path) {
    std::vector<std::string> results;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        if (line.find('<' + path + '>') != line.npos) {
            results.push_back(line.substr(line.rfind(' ') + 1));
        }
    }
    return results;
}

class StateWrite : public ToolTest {
protected:
    /// Imports a preset with `layer_count` layers and checks that one call wrote its state.
    void expect_one_write(int layer_count) {
        std::string layers;
        for (int i = 0; i < layer_count; ++i) {
            layers +=
                "<dict><key>name</key><string>Layer " + std::to_string(i) + "</string></dict>";
        }
        write_file(folder / "Kit.aupreset", preset_text({make_sound("Kit/kick.wav")}, layers));
        const Path trace = folder / "trace";
        // Leak checkers do not work in a traced process.
        std::vector<std::string> words = {
            "env",
            "ASAN_OPTIONS=detect_leaks=0",
            "strace",
            "-f",
            "-y",
            "-s",
            "0",
            "-e",
            "trace=write,writev,pwrite64,pwritev,pwritev2,sendfile,copy_file_range",
            "-o",
            trace.string()};
        for (const std::string& word : command({(folder / "Kit.aupreset").string()})) {
            words.push_back(word);
        }
        const ProcessResult result = run_process(words);
        ASSERT_EQ(result.status, 0) << result.err;
        const Path state = states / "Kit.aupreset";
        EXPECT_EQ(results_of_writes(read_file(trace), state.string()),
                  std::vector<std::string>{std::to_string(std::filesystem::file_size(state))});
    }
};

TEST_F(StateWrite, OfASmallStateIsOneCall) {
    expect_one_write(1);
}

TEST_F(StateWrite, OfAStateLargerThanAnyBufferIsOneCall) {
    expect_one_write(20000);
}

} // namespace
