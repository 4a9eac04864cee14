// A sampler's state on its way through a file and back.
#pragma once

#include "audio_toolbox/class_info.h"

namespace lumo::test {

/// Reads the state back, writes that as a binary property list, loads it into another unit's state
/// and reads it back again. The test fails unless each equals the one before, the files to open
/// included. Opens no sample.
void expect_round_trip(const platform::SamplerState& state);

} // namespace lumo::test
