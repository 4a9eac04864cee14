// The unit's own numbers at the top level of class info.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// What is set for the unit as a whole, above its instrument. Four of the names are those of
/// parameters as well; the real sampler saves states in which the two differ, and so they are kept
/// apart.
struct UnitValues {
    float gain = 0;         ///< dB
    SInt32 coarse_tune = 0; ///< semitones
    float fine_tune = 0;    ///< cents
    float pan = 0;          ///< -1 to 1
    SInt32 output = 0;
    SInt32 voice_count = 64;
};

/// The values in `list`, the top level of class info. One that is missing or is no number has its
/// default; a real where the sampler has a whole number counts by its whole part.
UnitValues read_unit_values(CFDictionaryRef list);

/// Sets all of the values in `info`.
void set_unit_values(CFMutableDictionaryRef info, const UnitValues& values);

} // namespace lumo::platform
