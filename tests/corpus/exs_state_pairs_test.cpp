// Compares the states of real instruments that the tool imported with those that the real sampler
// saved after loading them.
#include "corpus/corpus_folder.h"
#include "support/import_run.h"
#include "support/plist_io.h"
#include "support/state_paths.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace lumo::test {
namespace {

/// The state without entries that do not come from the instrument: the name that a host set, the
/// folders of the samples and, in one state, LFOs left by an instrument that was loaded before.
StatePaths comparable(const StatePaths& state) {
    StatePaths paths;
    for (auto [path, value] : state) {
        if (path.starts_with("file-references/")) {
            value = std::filesystem::path(std::get<std::string>(value)).filename().string();
        }
        const bool stayed =
            path.starts_with("Instrument/LFOs/") && path.find(" again/") != path.npos;
        if (path != "name" && !stayed) {
            paths[path] = value;
        }
    }
    return paths;
}

/// The state in a file. Empty, and the test fails, when the file is not a property list.
StatePaths state_in(const std::filesystem::path& path) {
    const auto list = list_in(path);
    if (!list) {
        ADD_FAILURE() << path;
        return {};
    }
    return comparable(state_paths(list.get()));
}

class ExsStatePairs : public testing::TestWithParam<const char*> {};

TEST_P(ExsStatePairs, StateIsThatOfTheRealSampler) {
    const std::filesystem::path pair = corpus / "exs-state-pairs" / GetParam();
    if (!std::filesystem::exists(corpus)) {
        GTEST_SKIP() << "there are no real instruments at " << corpus;
    }
    const TempFolder folder;
    const nlohmann::json report = import_one(folder / "Show.lumo", folder / "states",
                                             pair.string() + ".exs", {"--search", corpus.string()});
    ASSERT_TRUE(report.at("ok").get<bool>()) << report;
    const StatePaths saved = state_in(pair.string() + ".aupreset");
    EXPECT_GT(saved.size(), 100U);
    for (const std::string& difference :
         state_differences(saved, state_in(report.at("stateFile").get<std::string>()))) {
        ADD_FAILURE() << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Real, ExsStatePairs, testing::Values("drumSimp", "noisyRez", "sawPiano1"),
                         [](const auto& pair) { return std::string(pair.param); });

} // namespace
} // namespace lumo::test
