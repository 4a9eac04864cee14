// The part of a sampler state that comes from an EXS24 instrument's parameters alone.
#pragma once

#include "sampler/exs_connections.h"
#include "sampler/exs_envelope_state.h"
#include "sampler/state_dictionary.h"

#include <cstdint>
#include <vector>

namespace lumo::platform {

/// Parts of a state, ready to stand in every layer, but for the connections and the envelopes.
struct ExsSoundState {
    StateValue amplifier;
    StateValue oscillator;
    ExsEnvelopesState envelopes;
    StateValue filters;
    StateValue layer_lfos;
    StateValue instrument_lfos;             ///< of the instrument, not of its layers
    std::vector<ExsConnection> connections; ///< those of layer 0
};

/// The parts of a state that these parameters stand for.
ExsSoundState exs_sound_state(const StateKeys& keys, const ExsParameters& parameters);

/// The array of `connections` as those of layer `layer`, numbered from 0.
StateValue exs_connections_state(const StateKeys& keys,
                                 const std::vector<ExsConnection>& connections,
                                 std::uint32_t layer);

} // namespace lumo::platform
