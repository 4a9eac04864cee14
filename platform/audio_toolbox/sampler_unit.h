// The sampler unit: its state, and the functions behind the properties that load it.
#pragma once

#include "audio_toolbox/class_info.h"

#include <AudioToolbox/AudioToolbox.h>

/// An instance of the sampler.
struct OpaqueAudioComponentInstance {
    lumo::platform::SamplerState state;
};

namespace lumo::platform {

// Loads are atomic: on failure the state is unchanged.

/// Loads class info (a property list, borrowed) and opens its samples. Returns 0 or a status.
OSStatus load_class_info(SamplerState& state, CFPropertyListRef list);

/// Loads an instrument file and opens its samples; name and parameters are kept. Returns 0 or a
/// status.
OSStatus load_instrument(SamplerState& state, const AUSamplerInstrumentData& data);

} // namespace lumo::platform
