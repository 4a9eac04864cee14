// The result of every AudioToolbox call is checked.
#include "sampler_host.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <vector>

namespace lumo::test {
namespace {

std::string to_string(CFTypeRef object) {
    const auto string = static_cast<CFStringRef>(object);
    std::string buffer(static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(
                           CFStringGetLength(string), kCFStringEncodingUTF8)) +
                           1,
                       '\0');
    EXPECT_TRUE(CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(buffer.size()),
                                   kCFStringEncodingUTF8));
    return buffer.c_str();
}

} // namespace

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
    const auto data =
        adopt(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(all.data()),
                           static_cast<CFIndex>(all.size())));
    auto list = adopt(CFPropertyListCreateWithData(kCFAllocatorDefault, data.get(),
                                                   kCFPropertyListImmutable, nullptr, nullptr));
    EXPECT_TRUE(list) << all;
    return list;
}

Ref<CFPropertyListRef> class_info_with(std::string_view entries) {
    return parse("<dict>" + std::string(sampler_numbers) + std::string(entries) + "</dict>");
}

Ref<CFPropertyListRef> class_info_with_references(std::string_view entries) {
    return class_info_with("<key>file-references</key><dict>" + std::string(entries) + "</dict>");
}

Ref<CFStringRef> text(std::string_view utf8) {
    return adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

CFTypeRef value(CFDictionaryRef dictionary, std::string_view key) {
    return CFDictionaryGetValue(dictionary, text(key).get());
}

std::string text_at(CFDictionaryRef dictionary, std::string_view key) {
    const CFTypeRef found = value(dictionary, key);
    return found && CFGetTypeID(found) == CFStringGetTypeID() ? to_string(found) : "(none)";
}

double number_at(CFDictionaryRef dictionary, std::string_view key) {
    const CFTypeRef found = value(dictionary, key);
    double number = -1e9;
    if (found && CFGetTypeID(found) == CFNumberGetTypeID()) {
        CFNumberGetValue(static_cast<CFNumberRef>(found), kCFNumberDoubleType, &number);
    }
    return number;
}

std::string keys_of(CFDictionaryRef dictionary) {
    std::vector<CFTypeRef> keys(static_cast<std::size_t>(CFDictionaryGetCount(dictionary)));
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), nullptr);
    std::set<std::string> ordered;
    for (const CFTypeRef key : keys) {
        ordered.insert(to_string(key));
    }
    std::string all;
    for (const std::string& key : ordered) {
        all += (all.empty() ? "" : ", ") + key;
    }
    return all;
}

} // namespace lumo::test
