// Checks that a sampler's state is unchanged after it was written and read back.
#pragma once

#include "audio_toolbox/class_info.h"

namespace lumo::test {

/// Reads the state back, writes the result as a binary property list, loads that into another
/// unit's state and reads it back again. The test fails unless each result equals the one before,
/// including the files to open. Opens no sample.
void expect_round_trip(const platform::SamplerState& state);

} // namespace lumo::test
