// The part of a sampler state that depends only on an EXS24 instrument's parameters.
#pragma once

#include "sampler/exs_connections.h"
#include "sampler/exs_envelope_state.h"
#include "sampler/state_dictionary.h"

#include <cstdint>
#include <vector>

namespace lumo::platform {

/// Parts of a state that all layers share, except the connections and the envelopes, which differ
/// between layers.
struct ExsSoundState {
    StateValue amplifier;
    StateValue oscillator;
    ExsEnvelopesState envelopes;
    StateValue filters;
    StateValue layer_lfos;
    StateValue instrument_lfos;             ///< part of the instrument, not of its layers
    std::vector<ExsConnection> connections; ///< those of layer 0
};

/// The parts of a state for these parameters.
ExsSoundState exs_sound_state(const StateKeys& keys, const ExsParameters& parameters);

/// The array of `connections`, converted to those of layer `layer`, from 0.
StateValue exs_connections_state(const StateKeys& keys,
                                 const std::vector<ExsConnection>& connections,
                                 std::uint32_t layer);

} // namespace lumo::platform
