// A sampler unit for tests, and the property lists that tests pass to it.
#pragma once

#include "base/cf_values.h"
#include "support/plist_io.h"
#include "support/preset_text.h"

#include <AudioToolbox/AudioToolbox.h>
#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>

namespace lumo::test {

/// Statuses that tests expect.
constexpr OSStatus parameter_error = -50;
constexpr OSStatus not_found = -43;
constexpr OSStatus not_audio = 1954115647; // 'typ?'

/// The component description of the sampler.
AudioComponentDescription sampler_description();

/// An initialised sampler unit. The test fails when it cannot be made.
class Sampler {
public:
    Sampler();
    ~Sampler();
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    AudioUnit unit() const { return unit_; }
    /// Sets the class info. Returns the status.
    OSStatus set(CFPropertyListRef list) const;
    OSStatus set(const Ref<CFPropertyListRef>& list) const { return set(list.get()); }
    /// The class info. When it cannot be read, the test fails and the result is null.
    Ref<CFDictionaryRef> state() const;

private:
    AudioUnit unit_ = nullptr;
};

/// The property list written as this XML element.
Ref<CFPropertyListRef> parse(std::string_view xml);

/// A class info with these entries (XML) in addition to `sampler_numbers`.
Ref<CFPropertyListRef> class_info_with(std::string_view entries);
/// A class info with this dictionary of file references, as XML between the dict tags.
Ref<CFPropertyListRef> class_info_with_references(std::string_view entries);

/// The text under `key`; "(none)" when there is no text.
std::string text_at(CFDictionaryRef dictionary, std::string_view key);
/// The number under `key`; -1e9 when there is no number.
double number_at(CFDictionaryRef dictionary, std::string_view key);
/// The keys of a dictionary in ascending order, separated by ", ".
std::string keys_of(CFDictionaryRef dictionary);

} // namespace lumo::test
