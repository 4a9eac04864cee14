// The result of every AudioToolbox call is checked.
#include "sampler_host.h"

#include <gtest/gtest.h>

#include <set>

namespace lumo::test {
AudioComponentDescription sampler_description() {
    return {kAudioUnitType_MusicDevice, kAudioUnitSubType_Sampler, kAudioUnitManufacturer_Apple, 0,
            0};
}

Sampler::Sampler() {
    const AudioComponentDescription description = sampler_description();
    EXPECT_EQ(AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &description), &unit_), 0);
    EXPECT_EQ(AudioUnitInitialize(unit_), 0);
}

Sampler::~Sampler() {
    EXPECT_EQ(AudioComponentInstanceDispose(unit_), 0);
}

OSStatus Sampler::set(CFPropertyListRef list) const {
    return AudioUnitSetProperty(unit_, kAudioUnitProperty_ClassInfo, kAudioUnitScope_Global, 0,
                                &list, sizeof list);
}

Ref<CFDictionaryRef> Sampler::state() const {
    CFPropertyListRef list = nullptr;
    UInt32 size = sizeof list;
    EXPECT_EQ(AudioUnitGetProperty(unit_, kAudioUnitProperty_ClassInfo, kAudioUnitScope_Global, 0,
                                   &list, &size),
              0);
    EXPECT_EQ(size, sizeof list);
    return adopt(static_cast<CFDictionaryRef>(list));
}

Ref<CFPropertyListRef> parse(std::string_view xml) {
    const std::string all = "<plist version=\"1.0\">" + std::string(xml) + "</plist>";
    auto list = list_of(all);
    EXPECT_TRUE(list) << all;
    return list;
}

Ref<CFPropertyListRef> class_info_with(std::string_view entries) {
    return parse("<dict>" + std::string(sampler_numbers) + std::string(entries) + "</dict>");
}

Ref<CFPropertyListRef> class_info_with_references(std::string_view entries) {
    return class_info_with("<key>file-references</key><dict>" + std::string(entries) + "</dict>");
}

std::string text_at(CFDictionaryRef dictionary, std::string_view key) {
    const auto found = value_of<CFStringRef>(dictionary, key);
    return found ? to_string(found) : "(none)";
}

double number_at(CFDictionaryRef dictionary, std::string_view key) {
    double number = -1e9;
    if (const auto found = value_of<CFNumberRef>(dictionary, key)) {
        CFNumberGetValue(found, kCFNumberDoubleType, &number);
    }
    return number;
}

std::string keys_of(CFDictionaryRef dictionary) {
    std::set<std::string> ordered;
    for_each_entry(dictionary, [&](CFTypeRef key, CFTypeRef) {
        ordered.insert(to_string(static_cast<CFStringRef>(key)));
    });
    std::string all;
    for (const std::string& key : ordered) {
        all += (all.empty() ? "" : ", ") + key;
    }
    return all;
}

} // namespace lumo::test
