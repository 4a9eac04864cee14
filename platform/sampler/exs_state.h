// The sampler state of an EXS24 instrument.
#pragma once

#include "ref.h"
#include "sampler/exs_layers.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <vector>

namespace lumo::platform {

/// What AUSampler has under "Instrument" once it has loaded `instrument`, laid out in `layers`,
/// from a file named `file_name` (extension and all). Nothing when there are more layers than it
/// can tell apart. Linear time and memory.
Ref<CFDictionaryRef> exs_instrument_state(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers,
                                          const std::string& file_name);

} // namespace lumo::platform
