// The property calls: check property, scope and size before the code of the property runs. The
// statuses and the order of the checks are those of Apple's open-source base class for units; a
// null reference or a null unit, which would crash that class, is rejected.
#include "audio_toolbox/sampler_unit.h"
#include "audio_toolbox/status.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cstring>

namespace lumo::platform {
namespace {

/// The size in bytes of a property's value; 0 when there is no such property.
UInt32 property_size(AudioUnitPropertyID property) {
    switch (property) {
    case kAudioUnitProperty_ClassInfo:
        return sizeof(CFPropertyListRef);
    case kAUSamplerProperty_LoadInstrument:
        return sizeof(AUSamplerInstrumentData);
    default:
        return 0;
    }
}

OSStatus check_property(AudioUnitPropertyID property, AudioUnitScope scope,
                        AudioUnitElement element) {
    if (property_size(property) == 0) {
        return kAudioUnitErr_InvalidProperty;
    }
    if (scope != kAudioUnitScope_Global) {
        return kAudioUnitErr_InvalidScope;
    }
    return element == 0 ? 0 : kAudioUnitErr_InvalidElement;
}

/// Sets a property; the element is not checked.
OSStatus set_property(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                      const void* data, UInt32 size) {
    if (property_size(property) == 0) {
        return kAudioUnitErr_InvalidProperty;
    }
    if (size != property_size(property)) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    if (scope != kAudioUnitScope_Global) {
        return kAudioUnitErr_InvalidScope;
    }
    if (property == kAUSamplerProperty_LoadInstrument) {
        AUSamplerInstrumentData instrument{};
        std::memcpy(&instrument, data, sizeof instrument);
        return load_instrument(unit->state, instrument);
    }
    CFPropertyListRef list = nullptr;
    std::memcpy(&list, data, sizeof list);
    return load_class_info(unit->state, list);
}

/// Copies the reference to `data` and transfers ownership. A buffer that is too small gets the
/// leading bytes only, and no ownership.
void copy_out(Ref<CFMutableDictionaryRef> info, void* data, UInt32& size) {
    const CFPropertyListRef list = info.get();
    if (size >= sizeof list) {
        size = sizeof list;
        static_cast<void>(info.release());
    }
    std::memcpy(data, &list, size);
}

} // namespace
} // namespace lumo::platform

using namespace lumo::platform;

OSStatus AudioUnitInitialize(AudioUnit unit) {
    return unit ? 0 : parameter_error;
}

OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, void* data, UInt32* size) {
    if (!size) {
        return parameter_error;
    }
    OSStatus status =
        unit && data && *size != 0 ? check_property(property, scope, element) : parameter_error;
    if (status == 0 && property != kAudioUnitProperty_ClassInfo) {
        status = kAudioUnitErr_InvalidProperty; // an instrument cannot be read back
    }
    if (status == 0) {
        status = guarded([&] {
            copy_out(class_info(unit->state), data, *size);
            return 0;
        });
    }
    if (status != 0) {
        *size = 0;
    }
    return status;
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement /*element*/, const void* data, UInt32 size) {
    if (!unit || !data != (size == 0)) {
        return parameter_error;
    }
    if (!data) {
        return kAudioUnitErr_InvalidPropertyValue; // every property requires a value
    }
    return guarded([&] { return set_property(unit, property, scope, data, size); });
}
