// Several runs of the tool that import into one show at the same time.
#include "support/child_process.h"
#include "tool_fixture.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <set>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

class SeveralProcesses : public ToolTest {};

TEST_F(SeveralProcesses, PlaceEachSampleOnceAndGiveEachStateItsOwnName) {
    constexpr std::size_t processes = 8;
    constexpr std::size_t imports = 10;
    constexpr int sounds = 20;
    std::vector<std::string> samples;
    samples.reserve(sounds);
    for (int i = 0; i < sounds; ++i) {
        samples.push_back(make_sound("Kit/" + std::to_string(i) + ".wav", 1000 + i));
    }
    const std::vector<std::string> instruments(imports, make_preset("Kit.aupreset", samples));

    std::vector<std::unique_ptr<Pipe>> outputs;
    std::vector<std::unique_ptr<ChildProcess>> tools;
    for (std::size_t i = 0; i < processes; ++i) {
        outputs.push_back(std::make_unique<Pipe>());
        tools.push_back(
            std::make_unique<ChildProcess>(command(instruments), outputs.back()->writing_end));
        outputs.back()->close_writing_end();
    }

    std::set<std::string> state_files;
    std::uint64_t copied_bytes = 0;
    for (std::size_t i = 0; i < processes; ++i) {
        for (std::string line; !(line = outputs[i]->read_line()).empty();) {
            const json report = json::parse(line);
            EXPECT_EQ(report["ok"], true) << report;
            EXPECT_TRUE(state_files.insert(report["stateFile"]).second) << report;
            EXPECT_TRUE(fs::exists(report["stateFile"].get<std::string>()));
            copied_bytes += report["copiedBytes"].get<std::uint64_t>();
        }
        EXPECT_EQ(tools[i]->wait(), 0);
    }
    EXPECT_EQ(state_files.size(), processes * imports);

    std::uint64_t sample_bytes = 0;
    for (const std::string& sample : samples) {
        const fs::path name = fs::path(sample).filename();
        EXPECT_EQ(read_file(package / "samples/Kit" / name), read_file(sample));
        sample_bytes += fs::file_size(sample);
    }
    EXPECT_EQ(copied_bytes, sample_bytes);
    const auto placed =
        std::distance(fs::directory_iterator(package / "samples/Kit"), fs::directory_iterator());
    EXPECT_EQ(static_cast<std::size_t>(placed), samples.size());
}

} // namespace
