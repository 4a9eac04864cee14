// The sampler state of an EXS24 instrument.
#pragma once

#include "base/ref.h"
#include "sampler/exs_layers.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <vector>

namespace lumo::platform {

/// The dictionary that AUSampler stores under "Instrument" after it has loaded `instrument`, with
/// the layers `layers`, from a file named `file_name` (including the extension). Null when there
/// are more than 4096 layers. Linear time and memory.
Ref<CFDictionaryRef> exs_instrument_state(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers,
                                          const std::string& file_name);

} // namespace lumo::platform
