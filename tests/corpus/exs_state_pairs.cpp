// Real instruments against the states that the real sampler saved after loading them.
#include "audio_toolbox/class_info.h"
#include "sampler/exs_load.h"
#include "support/state_paths.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace lumo::platform {
namespace {

const std::filesystem::path folder = std::filesystem::path(LUMO_SHARED) / "corpus/exs-state-pairs";

Ref<CFPropertyListRef> read_plist(const std::filesystem::path& path) {
    const std::string bytes = test::read_file(path);
    const auto data = Ref<CFDataRef>::adopt(
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
                     static_cast<CFIndex>(bytes.size())));
    return Ref<CFPropertyListRef>::adopt(CFPropertyListCreateWithData(
        kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
}

/// Without what is not the instrument's: the name that a host gave the state, the folders of the
/// samples and, in one of them, the LFOs of an instrument that had been loaded before and stayed.
test::StatePaths comparable(CFPropertyListRef state) {
    test::StatePaths paths;
    for (auto [path, value] : test::state_paths(state)) {
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

class ExsStatePairs : public testing::TestWithParam<const char*> {};

TEST_P(ExsStatePairs, StateIsThatOfTheRealSampler) {
    const std::filesystem::path instrument = folder / (std::string(GetParam()) + ".exs");
    if (!std::filesystem::exists(instrument)) {
        GTEST_SKIP() << "the corpus is not here";
    }
    SamplerState state;
    ASSERT_EQ(load_exs(instrument.string(), state.loaded), 0);
    const auto saved =
        comparable(read_plist(folder / (std::string(GetParam()) + ".aupreset")).get());
    EXPECT_GT(saved.size(), 100U);
    for (const std::string& difference :
         test::state_differences(saved, comparable(class_info(state).get()))) {
        ADD_FAILURE() << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Real, ExsStatePairs, testing::Values("drumSimp", "noisyRez", "sawPiano1"),
                         [](const auto& pair) { return std::string(pair.param); });

} // namespace
} // namespace lumo::platform
