// Units are numbered objects on the heap, so that sanitizers detect the use of a disposed unit.
#include "fake_audio_toolbox.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace lumo::test {

FakeAudioToolbox& audio_toolbox() {
    static FakeAudioToolbox toolbox;
    return toolbox;
}

namespace {

struct Unit {
    int number; ///< in order of creation, from 0
};

int loads() {
    int count = 0;
    for (const std::string& call : audio_toolbox().calls) {
        count += call.starts_with("set ") ? 1 : 0;
    }
    return count;
}

std::string property_call(const char* verb, AudioUnitPropertyID property, AudioUnitScope scope,
                          AudioUnitElement element, UInt32 size) {
    std::string call = verb;
    for (const UInt32 number : {property, scope, element, size}) {
        call += " " + std::to_string(number);
    }
    return call;
}

void take_instrument(const void* data) {
    audio_toolbox().instrument = *static_cast<const AUSamplerInstrumentData*>(data);
    std::array<UInt8, 4096> path{};
    CFURLGetFileSystemRepresentation(audio_toolbox().instrument.fileURL, true, path.data(),
                                     static_cast<CFIndex>(path.size()));
    audio_toolbox().instrument_path = reinterpret_cast<const char*>(path.data());
}

} // namespace
} // namespace lumo::test

using namespace lumo::test;

AudioComponent AudioComponentFindNext(AudioComponent,
                                      const AudioComponentDescription* description) {
    audio_toolbox().description = *description;
    return audio_toolbox().has_component ? reinterpret_cast<AudioComponent>(&audio_toolbox())
                                         : nullptr;
}

OSStatus AudioComponentInstanceNew(AudioComponent, AudioComponentInstance* out) {
    if (audio_toolbox().instance_status == 0) {
        *out = reinterpret_cast<AudioComponentInstance>(new Unit{audio_toolbox().units_made++});
        ++audio_toolbox().units_alive;
    }
    return audio_toolbox().instance_status;
}

OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance) {
    audio_toolbox().calls.emplace_back("dispose");
    --audio_toolbox().units_alive;
    delete reinterpret_cast<Unit*>(instance);
    return 0;
}

OSStatus AudioUnitInitialize(AudioUnit unit) {
    const auto number = static_cast<std::size_t>(reinterpret_cast<Unit*>(unit)->number);
    const std::vector<OSStatus>& statuses = audio_toolbox().initialise_statuses;
    return number < statuses.size() ? statuses[number] : 0;
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, const void* data, UInt32 size) {
    EXPECT_TRUE(unit) << "a property is set on no unit";
    audio_toolbox().calls.push_back(property_call("set", property, scope, element, size));
    if (property == kAUSamplerProperty_LoadInstrument) {
        take_instrument(data);
    } else {
        audio_toolbox().loaded_state = retain(*static_cast<const CFTypeRef*>(data));
    }
    return audio_toolbox().load(loads());
}

OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, void* data, UInt32* size) {
    EXPECT_TRUE(unit) << "a property is asked of no unit";
    audio_toolbox().calls.push_back(property_call("get", property, scope, element, *size));
    if (audio_toolbox().get_status == 0 && audio_toolbox().state) {
        *static_cast<CFTypeRef*>(data) = CFRetain(audio_toolbox().state.get());
    }
    return audio_toolbox().get_status;
}
