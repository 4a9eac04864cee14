// The sampler state of an EXS24 instrument.
#pragma once

#include "ref.h"
#include "sampler/exs_layers.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lumo::platform {

/// The number under which the sampler knows the sample at this position among the instrument's;
/// numbers start afresh with each instrument.
std::int64_t exs_waveform(std::size_t sample_number);

/// What AUSampler has under "Instrument" once it has loaded `instrument`, laid out in `layers`,
/// from a file named `file_name` (extension and all). Nothing when there are more layers than it
/// can tell apart. Linear time and memory.
Ref<CFDictionaryRef> exs_instrument_state(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers,
                                          const std::string& file_name);

} // namespace lumo::platform
