// The numbers at the top level of class info.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// Settings of the unit as a whole, applied after the instrument's. Four have the names of
/// parameters, but the real sampler saves states in which the two differ, so they are stored
/// separately.
struct UnitValues {
    float gain = 0;         ///< dB
    SInt32 coarse_tune = 0; ///< semitones
    float fine_tune = 0;    ///< cents
    float pan = 0;          ///< -1 to 1
    SInt32 output = 0;
    SInt32 voice_count = 64;
};

/// The values in `list`, the top level of class info. A value that is missing or not a number has
/// its default; a real where the sampler has an integer is truncated.
UnitValues read_unit_values(CFDictionaryRef list);

/// Stores all values in `info`.
void set_unit_values(CFMutableDictionaryRef info, const UnitValues& values);

} // namespace lumo::platform
