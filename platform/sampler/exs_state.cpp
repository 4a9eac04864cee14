// One dictionary for the instrument and one for each layer. Layers differ in their zones, in the
// settings of their group and in the codes of their connections; everything else depends on the
// instrument's parameters, so it is created once and shared by all layers.
//
// Values at their defaults are omitted, except for the keys that the sampler always writes.
#include "sampler/exs_state.h"

#include "sampler/exs_sound_state.h"
#include "sampler/exs_zone_state.h"
#include "sampler/state_dictionary.h"

namespace lumo::platform {
namespace {

/// A group that a controller selects has all three keys, even for the full range of values.
void set_selection(StateDictionary& state, const StateKeys& keys, const ExsSelection& selection) {
    state.integer(keys.selecting_controller, selection.controller)
        .integer(keys.selecting_min, selection.values.low)
        .integer(keys.selecting_max, selection.values.high);
}

void set_group(StateDictionary& state, const StateKeys& keys, const ExsGroup& group) {
    constexpr int on_release = 12;
    state.text(keys.name, group.name);
    set_exs_ranges(state, keys, group.keys, group.velocities);
    set_exs_level(state, keys, group.volume, group.pan);
    if (group.on_release) {
        state.integer(keys.trigger_mode, on_release);
    }
    if (group.selection) {
        set_selection(state, keys, *group.selection);
    }
}

StateValue layer_state(const StateKeys& keys, const ExsSoundState& sound, const ExsLayer& layer,
                       std::uint32_t id) {
    StateDictionary state;
    state.set(keys.amplifier, sound.amplifier)
        .set(keys.connections, exs_connections_state(keys, sound.connections, id))
        .set(keys.envelopes, sound.envelopes.of_layer(keys, layer.group))
        .set(keys.filters, sound.filters)
        .integer(keys.id, id)
        .set(keys.lfos, sound.layer_lfos)
        .set(keys.oscillator, sound.oscillator)
        .set(keys.zones, exs_zones_state(keys, layer.zones));
    if (layer.group) {
        set_group(state, keys, *layer.group);
    }
    return state.make();
}

StateValue layers_state(const StateKeys& keys, const ExsSoundState& sound,
                        const std::vector<ExsLayer>& layers) {
    std::vector<StateValue> states;
    states.reserve(layers.size());
    for (const ExsLayer& layer : layers) {
        states.push_back(
            layer_state(keys, sound, layer, static_cast<std::uint32_t>(states.size())));
    }
    return state_array(states);
}

} // namespace

Ref<CFDictionaryRef> exs_instrument_state(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers,
                                          const std::string& file_name) {
    if (layers.size() > code::max_layers) {
        return {};
    }
    const ExsParameters& parameters = instrument.parameters;
    const StateKeys keys;
    const ExsSoundState sound = exs_sound_state(keys, parameters);
    StateDictionary state;
    state.set(keys.lfos, sound.instrument_lfos)
        .set(keys.layers, layers_state(keys, sound, layers))
        .text(keys.name, file_name)
        .integer(keys.voice_count, parameters.value(ExsParameter::polyphony));
    if (const int volume = parameters.value(ExsParameter::output_volume); volume != 0) {
        state.real(keys.gain, static_cast<float>(volume));
    }
    return state.make();
}

} // namespace lumo::platform
