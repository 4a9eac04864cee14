// Real instruments against the states that the real sampler saved after loading them.
#include "sampler/exs_reader.h"
#include "sampler/exs_state.h"
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

/// The part of a whole state below "Instrument". The sampler that saved one of them had loaded
/// another instrument before and kept its LFOs, so that each stands there twice.
test::StatePaths saved_instrument(const std::filesystem::path& preset) {
    const std::string prefix = "Instrument/";
    const Ref<CFPropertyListRef> state = read_plist(preset);
    test::StatePaths paths;
    for (const auto& [path, value] : test::state_paths(state.get())) {
        const bool twice = path.starts_with(prefix + "LFOs/") && path.find(" again/") != path.npos;
        if (path.starts_with(prefix) && !twice) {
            paths[path.substr(prefix.size())] = value;
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
    const std::string bytes = test::read_file(instrument);
    const auto records =
        read_exs({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    ASSERT_TRUE(records);
    const Ref<CFDictionaryRef> state =
        exs_instrument_state(*records, exs_layers(*records), instrument.filename().string());
    ASSERT_TRUE(state);
    const auto saved = saved_instrument(folder / (std::string(GetParam()) + ".aupreset"));
    EXPECT_GT(saved.size(), 100U);
    for (const std::string& difference :
         test::state_differences(saved, test::state_paths(state.get()))) {
        ADD_FAILURE() << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Real, ExsStatePairs, testing::Values("drumSimp", "noisyRez", "sawPiano1"),
                         [](const auto& pair) { return std::string(pair.param); });

} // namespace
} // namespace lumo::platform
