// Finding the sampler component and creating units of it.
#include "sampler_host.h"

#include <AudioToolbox/AudioToolbox.h>
#include <gtest/gtest.h>

namespace lumo::test {
namespace {

AudioComponent find(AudioComponentDescription description, AudioComponent after = nullptr) {
    return AudioComponentFindNext(after, &description);
}

TEST(AudioComponents, SamplerIsFoundByItsDescription) {
    EXPECT_NE(find(sampler_description()), nullptr);
}

TEST(AudioComponents, ZeroStandsForAnyTypeSubtypeAndManufacturer) {
    const AudioComponent sampler = find(sampler_description());
    EXPECT_EQ(find({0, 0, 0, 0, 0}), sampler);
    EXPECT_EQ(find({kAudioUnitType_MusicDevice, 0, 0, 0, 0}), sampler);
    EXPECT_EQ(find({0, kAudioUnitSubType_Sampler, 0, 0, 0}), sampler);
    EXPECT_EQ(find({0, 0, kAudioUnitManufacturer_Apple, 0, 0}), sampler);
}

TEST(AudioComponents, AnotherTypeSubtypeOrManufacturerIsNotFound) {
    for (const int field : {0, 1, 2}) {
        AudioComponentDescription other = sampler_description();
        (field == 0   ? other.componentType
         : field == 1 ? other.componentSubType
                      : other.componentManufacturer) = 0x61756678; // 'aufx'
        EXPECT_EQ(find(other), nullptr) << field;
    }
}

TEST(AudioComponents, FlagsCountAsFarAsTheMaskGoes) {
    AudioComponentDescription flagged = sampler_description();
    flagged.componentFlags = 2;
    EXPECT_NE(find(flagged), nullptr);
    flagged.componentFlagsMask = 2;
    EXPECT_EQ(find(flagged), nullptr);
    flagged.componentFlagsMask = 4;
    EXPECT_NE(find(flagged), nullptr);
}

TEST(AudioComponents, SearchGoesOnBehindTheLastOneFound) {
    EXPECT_EQ(find({0, 0, 0, 0, 0}, find(sampler_description())), nullptr);
}

TEST(AudioComponents, UnitsAreIndependent) {
    const Sampler one;
    const Sampler other;
    EXPECT_NE(one.unit(), other.unit());
    EXPECT_EQ(one.set(class_info_with("<key>name</key><string>One</string>")), 0);
    EXPECT_EQ(text_at(one.state().get(), "name"), "One");
    EXPECT_EQ(text_at(other.state().get(), "name"), "Untitled");
}

TEST(AudioComponents, UnitIsInitialisedAgain) {
    const Sampler sampler;
    EXPECT_EQ(AudioUnitInitialize(sampler.unit()), 0);
    EXPECT_EQ(AudioUnitInitialize(sampler.unit()), 0);
}

TEST(AudioComponents, StateIsLoadedAndReadWithoutInitialising) {
    AudioUnit unit = nullptr;
    ASSERT_EQ(AudioComponentInstanceNew(find(sampler_description()), &unit), 0);
    CFPropertyListRef list = nullptr;
    UInt32 size = sizeof list;
    EXPECT_EQ(AudioUnitGetProperty(unit, kAudioUnitProperty_ClassInfo, 0, 0, &list, &size), 0);
    EXPECT_EQ(AudioUnitSetProperty(unit, kAudioUnitProperty_ClassInfo, 0, 0, &list, size), 0);
    CFRelease(list);
    EXPECT_EQ(AudioComponentInstanceDispose(unit), 0);
}

TEST(AudioComponents, NothingIsNoComponentAndNoUnit) {
    AudioUnit unit = nullptr;
    UInt32 size = 8;
    EXPECT_EQ(AudioComponentFindNext(nullptr, nullptr), nullptr);
    EXPECT_EQ(AudioComponentInstanceNew(nullptr, &unit), parameter_error);
    EXPECT_EQ(AudioComponentInstanceNew(find(sampler_description()), nullptr), parameter_error);
    EXPECT_EQ(AudioComponentInstanceDispose(nullptr), parameter_error);
    EXPECT_EQ(AudioUnitInitialize(nullptr), parameter_error);
    EXPECT_EQ(AudioUnitSetProperty(nullptr, 0, 0, 0, &unit, size), parameter_error);
    EXPECT_EQ(AudioUnitGetProperty(nullptr, 0, 0, 0, &unit, &size), parameter_error);
}

} // namespace
} // namespace lumo::test
