// One dictionary for the instrument, one for each layer, one for each zone. Layers differ in their
// zones, in what their group adds and in the numbers of their connections; all else comes from the
// instrument's one set of parameters, so it is made once and stands in every layer.
//
// What is at its default is left out, but for the keys that the sampler always writes.
#include "sampler/exs_state.h"

#include "sampler/exs_sound_state.h"
#include "sampler/state_dictionary.h"

#include <algorithm>
#include <limits>

namespace lumo::platform {
namespace {

// --- zones ---------------------------------------------------------------------------------------

/// The full range is the default.
void set_range(StateDictionary& state, ExsRange range, const StateValue& low_key,
               const StateValue& high_key) {
    if (range != ExsRange{}) {
        state.integer(low_key, range.low).integer(high_key, range.high);
    }
}

/// Frames, or as many as can be when the file does not tell.
std::int64_t sample_frames(const ExsPlacedZone& placed) {
    if (placed.sample->frames != 0) {
        return placed.sample->frames;
    }
    return placed.zone->sample_end > 0 ? placed.zone->sample_end
                                       : std::numeric_limits<std::int64_t>::max();
}

/// A loop over the whole sample is the default, and so is an end at the sample's end. A loop that
/// cannot be is taken for the whole sample.
void set_loop(StateDictionary& state, const StateKeys& keys, const ExsPlacedZone& placed) {
    const std::int64_t frames = sample_frames(placed);
    const std::int64_t start = placed.zone->loop_start;
    const std::int64_t end = std::min<std::int64_t>(placed.zone->loop_end, frames);
    if (start < 0 || start >= end || (start == 0 && end == frames)) {
        return;
    }
    state.integer(keys.loop_start, start);
    if (end < frames) {
        state.integer(keys.loop_end, end);
    }
}

StateValue zone_state(const StateKeys& keys, const ExsPlacedZone& placed, std::size_t id) {
    const ExsZone& zone = *placed.zone;
    StateDictionary state;
    state.integer(keys.id, static_cast<std::int64_t>(id))
        .boolean(keys.enabled, placed.enabled)
        .boolean(keys.loop_enabled, zone.loop_on)
        .text(keys.name, zone.name)
        .integer(keys.root_key, zone.root_key)
        .integer(keys.waveform, exs_waveform(placed.sample_number));
    set_range(state, placed.keys, keys.min_key, keys.max_key);
    set_range(state, placed.velocities, keys.min_velocity, keys.max_velocity);
    set_loop(state, keys, placed);
    if (zone.volume != 0) {
        state.real(keys.gain, static_cast<float>(zone.volume));
    }
    if (zone.fine_tune != 0) {
        state.real(keys.fine_tune, static_cast<float>(zone.fine_tune));
    }
    if (!zone.pitch_tracking) {
        state.boolean(keys.pitch_tracking, false);
    }
    return state.make();
}

StateValue zones_state(const StateKeys& keys, const std::vector<ExsPlacedZone>& zones) {
    std::vector<StateValue> states;
    states.reserve(zones.size());
    for (const ExsPlacedZone& zone : zones) {
        states.push_back(zone_state(keys, zone, states.size()));
    }
    return state_array(states);
}

// --- layers --------------------------------------------------------------------------------------

void set_group(StateDictionary& state, const StateKeys& keys, const ExsGroup& group) {
    constexpr int when_key_is_let_go = 12;
    state.text(keys.name, group.name);
    if (group.volume != 0) {
        state.real(keys.gain, static_cast<float>(group.volume));
    }
    if (group.on_release) {
        state.integer(keys.trigger_mode, when_key_is_let_go);
    }
    if (group.controller) {
        state.integer(keys.selecting_controller, *group.controller);
    }
}

StateValue layer_state(const StateKeys& keys, const ExsSoundState& sound, const ExsLayer& layer,
                       std::uint32_t id) {
    StateDictionary state;
    state.set(keys.amplifier, sound.amplifier)
        .set(keys.connections, exs_connections_state(keys, sound.connections, id))
        .set(keys.envelopes, sound.envelopes)
        .set(keys.filters, sound.filters)
        .integer(keys.id, id)
        .set(keys.lfos, sound.layer_lfos)
        .set(keys.oscillator, sound.oscillator)
        .set(keys.zones, zones_state(keys, layer.zones));
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

std::int64_t exs_waveform(std::size_t sample_number) {
    constexpr std::int64_t first = 0x10000000;
    return first + static_cast<std::int64_t>(sample_number);
}

Ref<CFDictionaryRef> exs_instrument_state(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers,
                                          const std::string& file_name) {
    if (layers.size() > code::most_layers) {
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
    return Ref<CFDictionaryRef>::adopt(static_cast<CFDictionaryRef>(state.make().release()));
}

} // namespace lumo::platform
