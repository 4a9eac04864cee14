// The top level of a state belongs to the unit and is taken apart here; "Instrument" is handed on
// whole. Of the three numbers that say for which unit a state is, the type is not looked at: states
// from all of Apple's own releases load, and so do those whose type a hand spoilt.
#include "audio_toolbox/class_info.h"

#include "audio_toolbox/property_text.h"
#include "audio_toolbox/status.h"
#include "sampler/state_dictionary.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

/// The value of `key` if it is of a type; else null. Borrowed.
CFTypeRef value_of_type(CFDictionaryRef dictionary, const char* key, CFTypeID type) {
    const CFTypeRef value = CFDictionaryGetValue(dictionary, state_text(key).get());
    return value && CFGetTypeID(value) == type ? value : nullptr;
}

/// Whether a number is there and is `wanted`; of a real its whole part counts.
bool has_number(CFDictionaryRef list, const char* key, UInt32 wanted) {
    const CFTypeRef value = value_of_type(list, key, CFNumberGetTypeID());
    SInt32 number = 0;
    if (value) {
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt32Type, &number);
    }
    return value && static_cast<UInt32>(number) == wanted;
}

bool is_for_this_unit(CFPropertyListRef list) {
    if (!list || CFGetTypeID(list) != CFDictionaryGetTypeID()) {
        return false;
    }
    const auto dictionary = static_cast<CFDictionaryRef>(list);
    const bool is_for_a_part =
        CFDictionaryGetValue(dictionary, state_text("part").get()) != nullptr;
    return !is_for_a_part && has_number(dictionary, "version", 0) &&
           has_number(dictionary, "subtype", kAudioUnitSubType_Sampler) &&
           has_number(dictionary, "manufacturer", kAudioUnitManufacturer_Apple);
}

// --- size ---------------------------------------------------------------------------------------

/// An instrument may have so many layers and zones together. A preset of a few kilobytes can name
/// one zone a billion times, and nobody would wait for the end of whoever goes through them.
constexpr CFIndex most_zones = 1 << 22;

CFIndex count_zones(CFTypeRef layer) {
    if (CFGetTypeID(layer) != CFDictionaryGetTypeID()) {
        return 0;
    }
    const CFTypeRef zones =
        value_of_type(static_cast<CFDictionaryRef>(layer), "Zones", CFArrayGetTypeID());
    return zones ? CFArrayGetCount(static_cast<CFArrayRef>(zones)) : 0;
}

bool is_too_large(CFDictionaryRef instrument) {
    const auto layers =
        static_cast<CFArrayRef>(value_of_type(instrument, "Layers", CFArrayGetTypeID()));
    const CFIndex count = layers ? CFArrayGetCount(layers) : 0;
    CFIndex total = count;
    for (CFIndex i = 0; i < count && total <= most_zones; ++i) {
        total += count_zones(CFArrayGetValueAtIndex(layers, i));
    }
    return total > most_zones;
}

// --- parameters ---------------------------------------------------------------------------------

std::optional<SamplerParameters> read_parameters(CFDictionaryRef list,
                                                 const SamplerParameters& before) {
    const auto data = static_cast<CFDataRef>(value_of_type(list, "data", CFDataGetTypeID()));
    if (!data) {
        return before;
    }
    return with_parameter_data(
        before, {CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))});
}

// --- file references ----------------------------------------------------------------------------

/// A reference: its key, for the order, and its path.
using Reference = std::pair<std::string, std::string>;

struct References {
    std::vector<CFTypeRef> keys; ///< borrowed
    std::vector<Ref<CFStringRef>> paths;
    std::vector<Reference> texts;

    void add(CFTypeRef key, CFTypeRef value) {
        if (CFGetTypeID(key) != CFStringGetTypeID() || CFGetTypeID(value) != CFStringGetTypeID()) {
            return;
        }
        Ref<CFStringRef> path = posix_path(static_cast<CFStringRef>(value));
        texts.emplace_back(to_utf8(static_cast<CFStringRef>(key)), to_utf8(path.get()));
        keys.push_back(key);
        paths.push_back(std::move(path));
    }
};

References references_in(CFDictionaryRef list) {
    References references;
    const auto recorded = static_cast<CFDictionaryRef>(
        value_of_type(list, "file-references", CFDictionaryGetTypeID()));
    if (!recorded) {
        return references;
    }
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(recorded));
    std::vector<CFTypeRef> keys(count);
    std::vector<CFTypeRef> values(count);
    CFDictionaryGetKeysAndValues(recorded, keys.data(), values.data());
    for (std::size_t i = 0; i < count; ++i) {
        references.add(keys[i], values[i]);
    }
    return references;
}

Ref<CFDictionaryRef> dictionary_of(References& references) {
    std::vector<CFTypeRef> paths;
    paths.reserve(references.paths.size());
    for (const Ref<CFStringRef>& path : references.paths) {
        paths.push_back(path.get());
    }
    return Ref<CFDictionaryRef>::adopt(
        CFDictionaryCreate(kCFAllocatorDefault, references.keys.data(), paths.data(),
                           static_cast<CFIndex>(paths.size()), &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks));
}

/// The paths in ascending byte order of their keys.
std::vector<std::string> in_order(std::vector<Reference> texts) {
    std::sort(texts.begin(), texts.end());
    std::vector<std::string> paths;
    paths.reserve(texts.size());
    for (Reference& reference : texts) {
        paths.push_back(std::move(reference.second));
    }
    return paths;
}

LoadedInstrument read_instrument(CFDictionaryRef list, CFDictionaryRef instrument) {
    References references = references_in(list);
    LoadedInstrument loaded;
    loaded.instrument = Ref<CFDictionaryRef>::retain(instrument);
    loaded.references = dictionary_of(references);
    loaded.samples = in_order(std::move(references.texts));
    return loaded;
}

// --- writing ------------------------------------------------------------------------------------

using Info = Ref<CFMutableDictionaryRef>;

void set(const Info& info, const char* key, CFTypeRef value) {
    CFDictionarySetValue(info.get(), state_text(key).get(), value);
}

/// Semitones, which are whole.
std::int64_t whole(float value) {
    constexpr float most = 1 << 24; // beyond it, the whole numbers of a float have gaps
    return std::isnan(value) ? 0 : std::lround(std::clamp(value, -most, most));
}

void set_parameters(const Info& info, const SamplerParameters& parameters) {
    set(info, "gain", state_real(parameters.gain).get());
    set(info, "coarse tune", state_integer(whole(parameters.coarse_tune)).get());
    set(info, "fine tune", state_real(parameters.fine_tune).get());
    set(info, "pan", state_real(parameters.pan).get());
    const auto bytes = parameter_data(parameters);
    const auto data = Ref<CFDataRef>::adopt(
        CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size())));
    set(info, "data", data.get());
}

/// What is the same in all states.
void set_constants(const Info& info) {
    constexpr int voices = 64; // of the unit; an instrument has its own number
    set(info, "AU version", state_real(1).get());
    set(info, "manufacturer", state_integer(kAudioUnitManufacturer_Apple).get());
    set(info, "output", state_integer(0).get());
    set(info, "subtype", state_integer(kAudioUnitSubType_Sampler).get());
    set(info, "type", state_integer(kAudioUnitType_MusicDevice).get());
    set(info, "version", state_integer(0).get());
    set(info, "voice count", state_integer(voices).get());
}

void set_loaded(const Info& info, const LoadedInstrument& loaded) {
    if (loaded.instrument) {
        set(info, "Instrument", loaded.instrument.get());
    }
    set(info, "file-references",
        loaded.references ? loaded.references.get() : StateDictionary().make().get());
}

} // namespace

OSStatus read_class_info(CFPropertyListRef list, SamplerState& state) {
    if (!is_for_this_unit(list)) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    const auto dictionary = static_cast<CFDictionaryRef>(list);
    const auto parameters = read_parameters(dictionary, state.parameters);
    if (!parameters) {
        return kAudioUnitErr_InvalidScope;
    }
    const auto instrument = static_cast<CFDictionaryRef>(
        value_of_type(dictionary, "Instrument", CFDictionaryGetTypeID()));
    if (instrument && is_too_large(instrument)) {
        return memory_full;
    }
    const CFTypeRef name = value_of_type(dictionary, "name", CFStringGetTypeID());
    state = {*parameters, Ref<CFStringRef>::retain(static_cast<CFStringRef>(name)),
             read_instrument(dictionary, instrument)};
    return 0;
}

Ref<CFMutableDictionaryRef> class_info(const SamplerState& state) {
    auto info = Info::adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    set_constants(info);
    set_parameters(info, state.parameters);
    set(info, "name", state.name ? state.name.get() : state_text("Untitled").get());
    set_loaded(info, state.loaded);
    return info;
}

} // namespace lumo::platform
