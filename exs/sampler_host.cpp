// The AudioToolbox calls of an import, with the constants they take.
#include "sampler_host.h"

#include <strings.h>

#include <filesystem>
#include <utility>

namespace lumo::exs {

Sampler make_sampler(std::string& error) {
    const AudioComponentDescription description = {
        kAudioUnitType_MusicDevice, kAudioUnitSubType_Sampler, kAudioUnitManufacturer_Apple, 0, 0};
    const AudioComponent component = AudioComponentFindNext(nullptr, &description);
    AudioUnit unit = nullptr;
    if (!component || AudioComponentInstanceNew(component, &unit) != 0) {
        error = "AUSampler not found";
        return nullptr;
    }
    Sampler sampler(unit);
    if (const OSStatus status = AudioUnitInitialize(unit); status != 0) {
        error = "AUSampler initialise failed (OSStatus " + std::to_string(status) + ")";
        return nullptr;
    }
    return sampler;
}

bool has_extension(const std::string& path, const char* extension) {
    return strcasecmp(std::filesystem::path(path).extension().c_str(), extension) == 0;
}

OSStatus set_exs(AudioUnit sampler, CFURLRef url) {
    const AUSamplerInstrumentData data = {.fileURL = url,
                                          .instrumentType = kInstrumentType_EXS24,
                                          .bankMSB = kAUSampler_DefaultMelodicBankMSB,
                                          .bankLSB = kAUSampler_DefaultBankLSB,
                                          .presetID = 0};
    return AudioUnitSetProperty(sampler, kAUSamplerProperty_LoadInstrument, kAudioUnitScope_Global,
                                0, &data, sizeof data);
}

OSStatus set_state(AudioUnit sampler, CFPropertyListRef state) {
    return AudioUnitSetProperty(sampler, kAudioUnitProperty_ClassInfo, kAudioUnitScope_Global, 0,
                                &state, sizeof state);
}

Ref<CFPropertyListRef> get_state(AudioUnit sampler) {
    CFPropertyListRef list = nullptr;
    UInt32 size = sizeof list;
    const OSStatus status = AudioUnitGetProperty(sampler, kAudioUnitProperty_ClassInfo,
                                                 kAudioUnitScope_Global, 0, &list, &size);
    auto state = adopt(list);
    return status == 0 ? std::move(state) : Ref<CFPropertyListRef>();
}

} // namespace lumo::exs
