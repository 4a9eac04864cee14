// The zones of a layer, as stored in a sampler state.
#pragma once

#include "sampler/exs_layers.h"
#include "sampler/state_dictionary.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::platform {

/// The sampler's ID of the sample at this index in the instrument; IDs are unique per instrument
/// only.
std::int64_t exs_waveform(std::size_t sample_number);

/// The array of these zones, with IDs from 0 in their order.
StateValue exs_zones_state(const StateKeys& keys, const std::vector<ExsPlacedZone>& zones);

// Keys that zones and layers have in common; each is omitted at its default.

/// "min key", "max key", "min vel" and "max vel"; a pair is omitted for the full range.
void set_exs_ranges(StateDictionary& state, const StateKeys& keys, ExsRange notes,
                    ExsRange velocities);

/// "gain" in dB and "pan" in percent; each is omitted at 0.
void set_exs_level(StateDictionary& state, const StateKeys& keys, int volume, int pan);

} // namespace lumo::platform
