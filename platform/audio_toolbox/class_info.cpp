// Reads and writes the top level of a state, which belongs to the unit; "Instrument" is passed on
// unchanged. Of the numbers that identify the unit of a state, `type` is not checked: states from
// all of Apple's own releases load, and existing presets have other values there.
#include "audio_toolbox/class_info.h"

#include "audio_toolbox/file_references.h"
#include "audio_toolbox/status.h"
#include "base/cf_values.h"
#include "sampler/state_dictionary.h"

#include <AudioToolbox/AudioToolbox.h>

#include <optional>
#include <utility>

namespace lumo::platform {
namespace {

/// Whether `key` has a number that equals `wanted`; a real is truncated.
bool has_number(CFDictionaryRef list, const char* key, UInt32 wanted) {
    const auto value = value_of<CFNumberRef>(list, key);
    SInt32 number = 0;
    if (value) {
        CFNumberGetValue(value, kCFNumberSInt32Type, &number);
    }
    return value && static_cast<UInt32>(number) == wanted;
}

bool is_for_this_unit(CFPropertyListRef list) {
    const auto dictionary = value_as<CFDictionaryRef>(list);
    return dictionary && !value_of(dictionary, "part") && has_number(dictionary, "version", 0) &&
           has_number(dictionary, "subtype", kAudioUnitSubType_Sampler) &&
           has_number(dictionary, "manufacturer", kAudioUnitManufacturer_Apple);
}

// --- size ---------------------------------------------------------------------------------------

/// The maximum number of layers and zones together. A preset of a few kilobytes can refer to one
/// zone a billion times; to visit them all would take too long.
constexpr CFIndex max_zones = 1 << 22;

CFIndex count_zones(CFTypeRef layer) {
    const auto dictionary = value_as<CFDictionaryRef>(layer);
    const auto zones = dictionary ? value_of<CFArrayRef>(dictionary, "Zones") : nullptr;
    return zones ? CFArrayGetCount(zones) : 0;
}

bool is_too_large(CFDictionaryRef instrument) {
    const auto layers = value_of<CFArrayRef>(instrument, "Layers");
    const CFIndex count = layers ? CFArrayGetCount(layers) : 0;
    CFIndex total = count;
    for (CFIndex i = 0; i < count && total <= max_zones; ++i) {
        total += count_zones(CFArrayGetValueAtIndex(layers, i));
    }
    return total > max_zones;
}

// --- parameters ---------------------------------------------------------------------------------

std::optional<SamplerParameters> read_parameters(CFDictionaryRef list,
                                                 const SamplerParameters& before) {
    const auto data = value_of<CFDataRef>(list, "data");
    if (!data) {
        return before;
    }
    return with_parameter_data(
        before, {CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))});
}

// --- writing ------------------------------------------------------------------------------------

using Info = Ref<CFMutableDictionaryRef>;

void set(const Info& info, const char* key, CFTypeRef value) {
    CFDictionarySetValue(info.get(), state_text(key).get(), value);
}

void set_parameters(const Info& info, const SamplerParameters& parameters) {
    const auto bytes = parameter_data(parameters);
    const auto data =
        adopt(CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size())));
    set(info, "data", data.get());
}

/// The entries that are equal in all states.
void set_constants(const Info& info) {
    set(info, "AU version", state_real(1).get());
    set(info, "manufacturer", state_integer(kAudioUnitManufacturer_Apple).get());
    set(info, "subtype", state_integer(kAudioUnitSubType_Sampler).get());
    set(info, "type", state_integer(kAudioUnitType_MusicDevice).get());
    set(info, "version", state_integer(0).get());
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
    const auto instrument = value_of<CFDictionaryRef>(dictionary, "Instrument");
    if (instrument && is_too_large(instrument)) {
        return memory_full;
    }
    LoadedInstrument loaded;
    loaded.instrument = retain(instrument);
    read_references(dictionary, loaded);
    state = {*parameters, read_unit_values(dictionary),
             retain(value_of<CFStringRef>(dictionary, "name")), std::move(loaded)};
    return 0;
}

Ref<CFMutableDictionaryRef> class_info(const SamplerState& state) {
    auto info = make_mutable_dictionary();
    set_constants(info);
    set_parameters(info, state.parameters);
    set_unit_values(info.get(), state.values);
    set(info, "name", state.name ? state.name.get() : state_text("Untitled").get());
    set_loaded(info, state.loaded);
    return info;
}

} // namespace lumo::platform
