// States that the real sampler saved, through the embedded one and back.
#include "platform/sampler_host.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace lumo::test {
namespace {

const fs::path corpus = fs::path(LUMO_SHARED) / "corpus";

/// Null when the file is no property list.
Ref<CFPropertyListRef> read_preset(const fs::path& path) {
    const std::string bytes = read_file(path);
    const auto data = Ref<CFDataRef>::adopt(
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
                     static_cast<CFIndex>(bytes.size())));
    return Ref<CFPropertyListRef>::adopt(CFPropertyListCreateWithData(
        kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
}

/// The state without its samples, whose paths are those of other machines, and without what hosts
/// add for themselves.
Ref<CFMutableDictionaryRef> without_samples(CFPropertyListRef preset) {
    auto state = Ref<CFMutableDictionaryRef>::adopt(CFDictionaryCreateMutableCopy(
        kCFAllocatorDefault, 0, static_cast<CFDictionaryRef>(preset)));
    CFDictionarySetValue(state.get(), text("file-references").get(), parse("<dict/>").get());
    CFDictionaryRemoveValue(state.get(), text("file-secure-references").get());
    return state;
}

TEST(RealPresets, ReadBackAsTheyWereSaved) {
    if (!fs::exists(corpus)) {
        GTEST_SKIP() << "the corpus is not here";
    }
    int compared = 0;
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
        if (entry.path().extension() != ".aupreset") {
            continue;
        }
        if (const auto preset = read_preset(entry.path())) {
            const auto state = without_samples(preset.get());
            const Sampler sampler;
            EXPECT_EQ(sampler.set(state.get()), 0) << entry.path();
            EXPECT_TRUE(CFEqual(sampler.state().get(), state.get())) << entry.path();
            ++compared;
        }
    }
    EXPECT_GE(compared, 9);
}

} // namespace
} // namespace lumo::test
