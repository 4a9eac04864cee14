// The envelopes of a layer as a sampler state has them.
#pragma once

#include "sampler/exs_formulas.h"
#include "sampler/state_dictionary.h"

namespace lumo::platform {

/// The envelopes of an instrument, and the array of their states, ready to stand in every layer
/// whose group does not change them.
class ExsEnvelopesState {
public:
    ExsEnvelopesState(const StateKeys& keys, const ExsParameters& parameters);

    /// The array for the layer of `group`; null: of the zones without a group.
    StateValue of_layer(const StateKeys& keys, const ExsGroup* group) const;

private:
    ExsEnvelope amp_;
    StateValue second_state_;
    StateValue unchanged_;
};

} // namespace lumo::platform
