// The zones of a layer as a sampler state has them.
#pragma once

#include "sampler/exs_layers.h"
#include "sampler/state_dictionary.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::platform {

/// The number under which the sampler knows the sample at this position among the instrument's;
/// numbers start afresh with each instrument.
std::int64_t exs_waveform(std::size_t sample_number);

/// The array of these zones, numbered from 0 in their order.
StateValue exs_zones_state(const StateKeys& keys, const std::vector<ExsPlacedZone>& zones);

// Keys that zones and layers have in common; each is left out at its default.

/// "min key", "max key", "min vel" and "max vel"; a pair is left out when its range is full.
void set_exs_ranges(StateDictionary& state, const StateKeys& keys, ExsRange notes,
                    ExsRange velocities);

/// "gain" in dB and "pan" in percent; each is left out at 0.
void set_exs_level(StateDictionary& state, const StateKeys& keys, int volume, int pan);

} // namespace lumo::platform
