// The sampler unit: a state and the properties through which it is loaded and read.
#pragma once

#include "audio_toolbox/class_info.h"

#include <AudioToolbox/AudioToolbox.h>

/// An instance of the sampler.
struct OpaqueAudioComponentInstance {
    lumo::platform::SamplerState state;
};

namespace lumo::platform {

// A load takes all or nothing: when it fails, be it at its very end in a sample, the state is as it
// was.

/// Takes over class info (a property list, borrowed) and opens its samples. Returns 0 or a status.
OSStatus load_class_info(SamplerState& state, CFPropertyListRef list);

/// Loads an instrument file and opens its samples; name and parameters stay. Returns 0 or a status.
OSStatus load_instrument(SamplerState& state, const AUSamplerInstrumentData& data);

} // namespace lumo::platform
