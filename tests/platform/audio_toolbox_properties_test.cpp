// The property calls: one test for each rule about their arguments and the status that it returns.
#include "sampler_host.h"

#include <AudioToolbox/AudioToolbox.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace lumo::test {
namespace {

constexpr AudioUnitPropertyID class_info = kAudioUnitProperty_ClassInfo;
constexpr AudioUnitPropertyID load_instrument = kAUSamplerProperty_LoadInstrument;
constexpr AudioUnitPropertyID unknown = 4711;
constexpr AudioUnitScope global = kAudioUnitScope_Global;
constexpr AudioUnitScope output = 2;

class AudioUnitProperties : public testing::Test {
protected:
    Sampler sampler;
    const AudioUnit unit = sampler.unit();
    const Ref<CFPropertyListRef> good = class_info_with("<key>name</key><string>Good</string>");
    CFPropertyListRef list = good.get();
    std::array<char, 64> buffer{};

    OSStatus get(AudioUnitPropertyID property, AudioUnitScope scope, AudioUnitElement element,
                 UInt32& size) {
        return AudioUnitGetProperty(unit, property, scope, element, buffer.data(), &size);
    }
};

// --- setting ------------------------------------------------------------------------------------

TEST_F(AudioUnitProperties, SettingToNothingIsRefused) {
    EXPECT_EQ(AudioUnitSetProperty(unit, class_info, global, 0, nullptr, 0),
              kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(AudioUnitSetProperty(unit, 9999, global, 0, nullptr, 0),
              kAudioUnitErr_InvalidPropertyValue);
}

TEST_F(AudioUnitProperties, SettingAnUnknownOneIsRefusedWhateverItsSize) {
    for (UInt32 size = 1; size <= sizeof(AUSamplerInstrumentData); ++size) {
        EXPECT_EQ(AudioUnitSetProperty(unit, 9999, global, 0, buffer.data(), size),
                  kAudioUnitErr_InvalidProperty)
            << size;
    }
}

TEST_F(AudioUnitProperties, SettingWithoutDataOrWithoutSizeIsAParameterError) {
    EXPECT_EQ(AudioUnitSetProperty(unit, class_info, global, 0, nullptr, 8), parameter_error);
    EXPECT_EQ(AudioUnitSetProperty(unit, class_info, global, 0, &list, 0), parameter_error);
    EXPECT_EQ(AudioUnitSetProperty(unit, unknown, global, 0, &list, 0), parameter_error);
}

TEST_F(AudioUnitProperties, SettingClassInfoOfAnotherSizeIsRefused) {
    for (const UInt32 size : {1U, 4U, 7U, 9U, 16U}) {
        EXPECT_EQ(AudioUnitSetProperty(unit, class_info, global, 0, buffer.data(), size),
                  kAudioUnitErr_InvalidPropertyValue);
    }
}

TEST_F(AudioUnitProperties, SizeIsLookedAtBeforeTheScope) {
    EXPECT_EQ(AudioUnitSetProperty(unit, class_info, output, 0, &list, 4),
              kAudioUnitErr_InvalidPropertyValue);
}

TEST_F(AudioUnitProperties, SettingClassInfoOfAnotherScopeIsRefused) {
    for (const AudioUnitScope scope : {1U, 2U, 3U, 99U}) {
        EXPECT_EQ(AudioUnitSetProperty(unit, class_info, scope, 0, &list, 8),
                  kAudioUnitErr_InvalidScope);
    }
}

TEST_F(AudioUnitProperties, ScopeIsLookedAtBeforeTheValue) {
    list = nullptr;
    EXPECT_EQ(AudioUnitSetProperty(unit, class_info, output, 0, &list, 8),
              kAudioUnitErr_InvalidScope);
}

TEST_F(AudioUnitProperties, SettingClassInfoDoesNotLookAtTheElement) {
    EXPECT_EQ(AudioUnitSetProperty(unit, class_info, global, 17, &list, 8), 0);
    EXPECT_EQ(text_at(sampler.state().get(), "name"), "Good");
}

TEST_F(AudioUnitProperties, SettingAnUnknownPropertyIsRefused) {
    EXPECT_EQ(AudioUnitSetProperty(unit, unknown, global, 0, &list, 8),
              kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(AudioUnitSetProperty(unit, unknown, output, 9, &list, 3),
              kAudioUnitErr_InvalidProperty);
}

// --- getting ------------------------------------------------------------------------------------

TEST_F(AudioUnitProperties, GettingWithoutASizeIsAParameterError) {
    EXPECT_EQ(AudioUnitGetProperty(unit, class_info, global, 0, buffer.data(), nullptr),
              parameter_error);
}

TEST_F(AudioUnitProperties, GettingIntoNoBytesIsAParameterError) {
    UInt32 size = 0;
    EXPECT_EQ(get(class_info, global, 0, size), parameter_error);
    EXPECT_EQ(get(unknown, global, 0, size), parameter_error);
    EXPECT_EQ(size, 0U);
}

TEST_F(AudioUnitProperties, GettingWithoutABufferIsAParameterError) {
    UInt32 size = 8;
    EXPECT_EQ(AudioUnitGetProperty(unit, class_info, global, 0, nullptr, &size), parameter_error);
    EXPECT_EQ(size, 0U);
}

TEST_F(AudioUnitProperties, GettingClassInfoOfAnotherScopeIsRefused) {
    UInt32 size = 8;
    EXPECT_EQ(get(class_info, output, 0, size), kAudioUnitErr_InvalidScope);
    EXPECT_EQ(size, 0U);
}

TEST_F(AudioUnitProperties, GettingClassInfoOfAnotherElementIsRefused) {
    UInt32 size = 8;
    EXPECT_EQ(get(class_info, global, 1, size), kAudioUnitErr_InvalidElement);
    EXPECT_EQ(size, 0U);
}

TEST_F(AudioUnitProperties, ScopeIsLookedAtBeforeTheElement) {
    UInt32 size = 8;
    EXPECT_EQ(get(class_info, output, 1, size), kAudioUnitErr_InvalidScope);
}

TEST_F(AudioUnitProperties, GettingAnUnknownPropertyIsRefused) {
    UInt32 size = 8;
    EXPECT_EQ(get(unknown, global, 0, size), kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(size, 0U);
}

TEST_F(AudioUnitProperties, GettingIntoTooFewBytesGetsThese) {
    buffer.fill('x');
    UInt32 size = 3;
    EXPECT_EQ(get(class_info, global, 0, size), 0);
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(buffer[3], 'x');
}

TEST_F(AudioUnitProperties, GettingIntoMoreBytesSaysHowManyThereAre) {
    UInt32 size = 64;
    EXPECT_EQ(get(class_info, global, 0, size), 0);
    EXPECT_EQ(size, 8U);
    CFPropertyListRef got = nullptr;
    std::memcpy(&got, buffer.data(), sizeof got);
    EXPECT_EQ(CFGetTypeID(got), CFDictionaryGetTypeID());
    CFRelease(got);
}

TEST_F(AudioUnitProperties, EachGetGivesADictionaryOfItsOwnThatCanBeChanged) {
    const Ref<CFDictionaryRef> one = sampler.state();
    const Ref<CFDictionaryRef> other = sampler.state();
    EXPECT_NE(one.get(), other.get());
    EXPECT_TRUE(CFEqual(one.get(), other.get()));
    CFDictionarySetValue(const_cast<CFMutableDictionaryRef>(one.get()), make_string("name").get(),
                         make_string("Mine").get());
    EXPECT_EQ(text_at(one.get(), "name"), "Mine");
    EXPECT_EQ(text_at(sampler.state().get(), "name"), "Untitled");
}

// --- loading instruments ------------------------------------------------------------------------

class LoadInstrument : public AudioUnitProperties {
protected:
    Ref<CFURLRef> url = adopt(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>("/nowhere/a.exs"), 14, false));
    AUSamplerInstrumentData data{url.get(), kInstrumentType_EXS24, kAUSampler_DefaultMelodicBankMSB,
                                 kAUSampler_DefaultBankLSB, 0};

    OSStatus load() {
        return AudioUnitSetProperty(unit, load_instrument, global, 0, &data, sizeof data);
    }
};

TEST_F(LoadInstrument, OfAnotherSizeIsRefused) {
    for (const UInt32 size : {1U, 8U, 12U, 15U, 17U}) {
        EXPECT_EQ(AudioUnitSetProperty(unit, load_instrument, global, 0, buffer.data(), size),
                  kAudioUnitErr_InvalidPropertyValue);
    }
}

TEST_F(LoadInstrument, OfAnotherScopeIsRefused) {
    EXPECT_EQ(AudioUnitSetProperty(unit, load_instrument, output, 0, &data, sizeof data),
              kAudioUnitErr_InvalidScope);
}

TEST_F(LoadInstrument, CannotBeReadBack) {
    UInt32 size = sizeof data;
    EXPECT_EQ(get(load_instrument, global, 0, size), kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(size, 0U);
}

TEST_F(LoadInstrument, OfAnotherKindIsNotSupported) {
    for (const UInt8 kind : {UInt8{0}, UInt8{1}, UInt8{2}, UInt8{3}, UInt8{5}}) {
        data.instrumentType = kind;
        EXPECT_EQ(load(), kAudioUnitErr_FormatNotSupported);
    }
}

TEST_F(LoadInstrument, WithoutAUrlIsRefused) {
    data.fileURL = nullptr;
    EXPECT_EQ(load(), kAudioUnitErr_InvalidPropertyValue);
    data.fileURL = static_cast<CFURLRef>(good.get());
    EXPECT_EQ(load(), kAudioUnitErr_InvalidPropertyValue);
}

TEST_F(LoadInstrument, ThatFailsLeavesTheUnitAsItWas) {
    ASSERT_EQ(sampler.set(good), 0);
    EXPECT_NE(load(), 0);
    EXPECT_EQ(text_at(sampler.state().get(), "name"), "Good");
}

} // namespace
} // namespace lumo::test
