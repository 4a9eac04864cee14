// The only component, the sampler, is a static object.
#include "audio_toolbox/sampler_unit.h"
#include "audio_toolbox/status.h"

#include <AudioToolbox/AudioToolbox.h>

struct OpaqueAudioComponent {
    AudioComponentDescription description;
};

namespace lumo::platform {
namespace {

OpaqueAudioComponent sampler{
    {kAudioUnitType_MusicDevice, kAudioUnitSubType_Sampler, kAudioUnitManufacturer_Apple, 0, 0}};

bool is_match(const AudioComponentDescription& wanted, const AudioComponentDescription& there) {
    const auto fits = [](UInt32 code, UInt32 actual) { return code == 0 || code == actual; };
    const UInt32 mask = wanted.componentFlagsMask;
    return fits(wanted.componentType, there.componentType) &&
           fits(wanted.componentSubType, there.componentSubType) &&
           fits(wanted.componentManufacturer, there.componentManufacturer) &&
           (wanted.componentFlags & mask) == (there.componentFlags & mask);
}

} // namespace
} // namespace lumo::platform

using namespace lumo::platform;

AudioComponent AudioComponentFindNext(AudioComponent after,
                                      const AudioComponentDescription* match) {
    return !after && match && is_match(*match, sampler.description) ? &sampler : nullptr;
}

OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* out) {
    if (!component || !out) {
        return parameter_error;
    }
    *out = nullptr;
    return guarded([&] {
        *out = new OpaqueAudioComponentInstance;
        return 0;
    });
}

OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance) {
    delete instance;
    return instance ? 0 : parameter_error;
}
