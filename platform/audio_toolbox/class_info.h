// A sampler unit's class info: the property list that its whole state travels in.
#pragma once

#include "audio_toolbox/sampler_parameters.h"
#include "audio_toolbox/unit_values.h"
#include "ref.h"
#include "sampler/exs_load.h"

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// What a sampler unit holds.
struct SamplerState {
    SamplerParameters parameters;
    UnitValues values;
    Ref<CFStringRef> name; ///< null: "Untitled"
    LoadedInstrument loaded;
};

/// Reads class info into `state`, which holds what the unit has so far. `list` need not be a
/// dictionary, nor be there. Opens no sample. Returns 0 or a status, `state` being as it was.
OSStatus read_class_info(CFPropertyListRef list, SamplerState& state);

/// A new dictionary, mutable, with the keys that AUSampler writes and no others.
Ref<CFMutableDictionaryRef> class_info(const SamplerState& state);

} // namespace lumo::platform
