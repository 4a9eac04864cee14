// The envelopes of a layer, as stored in a sampler state.
#pragma once

#include "sampler/exs_formulas.h"
#include "sampler/state_dictionary.h"

namespace lumo::platform {

/// The envelopes of an instrument, and the array of their states, shared by all layers whose group
/// does not change them.
class ExsEnvelopesState {
public:
    ExsEnvelopesState(const StateKeys& keys, const ExsParameters& parameters);

    /// The array for the layer of `group` (null: the zones without a group).
    StateValue of_layer(const StateKeys& keys, const ExsGroup* group) const;

private:
    ExsEnvelope amp_;
    StateValue second_state_;
    StateValue unchanged_;
};

} // namespace lumo::platform
