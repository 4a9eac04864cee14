// Round trips through the embedded sampler: of states that the real sampler saved, and of states
// that the embedded one makes of real instruments.
#include "corpus/corpus_folder.h"
#include "platform/round_trip.h"
#include "platform/sampler_host.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace lumo::test {
namespace {

/// The state without its samples, whose paths are valid on other machines only, and without an
/// entry that hosts add.
Ref<CFMutableDictionaryRef> without_samples(CFPropertyListRef preset) {
    const auto* const dictionary = static_cast<CFDictionaryRef>(preset);
    auto state = make_mutable_dictionary();
    for_each_entry(dictionary, [&](CFTypeRef key, CFTypeRef value) {
        if (!CFEqual(key, make_string("file-secure-references").get())) {
            CFDictionarySetValue(state.get(), key, value);
        }
    });
    CFDictionarySetValue(state.get(), make_string("file-references").get(), parse("<dict/>").get());
    return state;
}

TEST(RealPresets, ReadBackAsTheyWereSaved) {
    if (!fs::exists(corpus)) {
        GTEST_SKIP() << "the corpus does not exist";
    }
    int compared = 0;
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
        if (entry.path().extension() != ".aupreset") {
            continue;
        }
        if (const auto preset = list_in(entry.path())) {
            const auto state = without_samples(preset.get());
            const Sampler sampler;
            EXPECT_EQ(sampler.set(state.get()), 0) << entry.path();
            EXPECT_TRUE(CFEqual(sampler.state().get(), state.get())) << entry.path();
            ++compared;
        }
    }
    EXPECT_GE(compared, 9);
}

/// Loads the state of an instrument or a preset without opening samples. False when it is refused.
bool load(const fs::path& path, platform::SamplerState& state) {
    if (path.extension() == ".exs") {
        return platform::load_exs(path, state.loaded) == 0;
    }
    const auto preset = path.extension() == ".aupreset" ? list_in(path) : Ref<CFPropertyListRef>();
    return preset && platform::read_class_info(preset.get(), state) == 0;
}

TEST(RealInstruments, HaveStatesThatAreTheSameAfterBeingWrittenAndLoadedAgain) {
    if (!fs::exists(corpus)) {
        GTEST_SKIP() << "the corpus does not exist";
    }
    int compared = 0;
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
        platform::SamplerState state;
        if (load(entry.path(), state)) {
            SCOPED_TRACE(entry.path());
            expect_round_trip(state);
            ++compared;
        }
    }
    EXPECT_GE(compared, 19);
}

} // namespace
} // namespace lumo::test
