// Filter, LFOs and connections as dictionaries. Amplifier and oscillator have no settings; they are
// just enabled.
#include "sampler/exs_sound_state.h"

#include "sampler/exs_formulas.h"

namespace lumo::platform {
namespace {

StateValue enabled_part(const StateKeys& keys) {
    return StateDictionary().integer(keys.id, 0).boolean(keys.enabled, true).make();
}

// --- filter and LFOs -----------------------------------------------------------------------------

StateValue filter_state(const StateKeys& keys, const ExsParameters& parameters) {
    return StateDictionary()
        .integer(keys.id, 0)
        .real(keys.cutoff, exs_cutoff(parameters))
        .boolean(keys.enabled, parameters.value(ExsParameter::filter_on) != 0)
        .real(keys.resonance, exs_resonance(parameters))
        .make();
}

/// The layers' LFO is always present, but has no rate when it is not running.
StateValue layer_lfos_state(const StateKeys& keys, const ExsParameters& parameters) {
    StateDictionary lfo;
    lfo.integer(keys.id, 0).real(keys.delay, 0).boolean(keys.enabled, true);
    if (const auto rate = exs_lfo_rate(parameters.value(ExsParameter::lfo_1_rate))) {
        lfo.real(keys.rate, *rate);
    }
    return state_array({lfo.make()});
}

/// The two LFOs shared by all layers are omitted when they are not running.
StateValue instrument_lfos_state(const StateKeys& keys, const ExsParameters& parameters) {
    std::vector<StateValue> lfos;
    int id = 240;
    for (const ExsParameter parameter : {ExsParameter::lfo_2_rate, ExsParameter::lfo_3_rate}) {
        if (const auto rate = exs_lfo_rate(parameters.value(parameter))) {
            lfos.push_back(StateDictionary()
                               .integer(keys.id, id)
                               .boolean(keys.enabled, true)
                               .real(keys.rate, *rate)
                               .make());
        }
        ++id;
    }
    return state_array(lfos);
}

// --- connections ---------------------------------------------------------------------------------

StateValue connection_state(const StateKeys& keys, const ExsConnection& connection,
                            std::uint32_t layer) {
    StateDictionary state;
    state.integer(keys.id, connection.id)
        .integer(keys.control, code::in_layer(connection.control, layer))
        .integer(keys.destination, code::in_layer(connection.destination, layer))
        .boolean(keys.enabled, true)
        .boolean(keys.inverse, connection.inverse)
        .integer(keys.source, code::in_layer(connection.source, layer))
        .integer(keys.transform, connection.transform);
    if (connection.has_range) {
        state.real(keys.max_value, connection.high).real(keys.min_value, connection.low);
    } else {
        state.real(keys.scale, connection.high);
    }
    return state.make();
}

} // namespace

ExsSoundState exs_sound_state(const StateKeys& keys, const ExsParameters& parameters) {
    return {
        .amplifier = enabled_part(keys),
        .oscillator = enabled_part(keys),
        .envelopes = ExsEnvelopesState(keys, parameters),
        .filters = filter_state(keys, parameters),
        .layer_lfos = layer_lfos_state(keys, parameters),
        .instrument_lfos = instrument_lfos_state(keys, parameters),
        .connections = exs_connections(parameters),
    };
}

StateValue exs_connections_state(const StateKeys& keys,
                                 const std::vector<ExsConnection>& connections,
                                 std::uint32_t layer) {
    std::vector<StateValue> states;
    states.reserve(connections.size());
    for (const ExsConnection& connection : connections) {
        states.push_back(connection_state(keys, connection, layer));
    }
    return state_array(states);
}

} // namespace lumo::platform
