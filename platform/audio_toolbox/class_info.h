// A sampler unit's class info: the property list that holds its whole state.
#pragma once

#include "audio_toolbox/sampler_parameters.h"
#include "audio_toolbox/unit_values.h"
#include "base/ref.h"
#include "sampler/exs_load.h"

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// The state of a sampler unit.
struct SamplerState {
    SamplerParameters parameters;
    UnitValues values;
    Ref<CFStringRef> name; ///< null: "Untitled"
    LoadedInstrument loaded;
};

/// Reads class info into `state`, which holds the unit's current state. `list` may be null or not a
/// dictionary. Opens no sample. Returns 0, or a status with `state` unchanged.
OSStatus read_class_info(CFPropertyListRef list, SamplerState& state);

/// A new mutable dictionary with exactly the keys that AUSampler writes.
Ref<CFMutableDictionaryRef> class_info(const SamplerState& state);

} // namespace lumo::platform
