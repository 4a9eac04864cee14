// One dictionary for each zone. Values at their defaults are omitted, except for the keys that the
// sampler always writes.
#include "sampler/exs_zone_state.h"

#include "sampler/exs_formulas.h"

#include <algorithm>
#include <limits>

namespace lumo::platform {
namespace {

/// Stores a range unless it is the full range, which is the default.
void set_range(StateDictionary& state, ExsRange range, const StateValue& low_key,
               const StateValue& high_key) {
    if (range != ExsRange{}) {
        state.integer(low_key, range.low).integer(high_key, range.high);
    }
}

/// The length of the sample in frames; the maximum when it is unknown, so that every end is
/// written.
std::int64_t sample_frames(const ExsPlacedZone& placed) {
    return placed.sample->frames != 0 ? placed.sample->frames
                                      : std::numeric_limits<std::int64_t>::max();
}

/// Stores the crop. A start at 0 and an end at the sample's end are the defaults. An invalid crop
/// (empty, reversed, or starting after the sample's end) is ignored.
void set_crop(StateDictionary& state, const StateKeys& keys, const ExsPlacedZone& placed) {
    const std::int64_t frames = sample_frames(placed);
    const std::int64_t start = std::max(placed.zone->sample_start, 0);
    const bool has_end = placed.zone->sample_end > 0 && placed.zone->sample_end < frames;
    const std::int64_t end = has_end ? placed.zone->sample_end : frames;
    if (start >= end) {
        return;
    }
    if (start != 0) {
        state.integer(keys.sample_start, start);
    }
    if (has_end) {
        state.integer(keys.sample_end, end);
    }
}

/// Stores the loop. The whole sample is the default, and so is an end at the sample's end. An
/// invalid loop is ignored, which gives the whole sample.
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

void set_tuning(StateDictionary& state, const StateKeys& keys, const ExsZone& zone) {
    if (zone.coarse_tune != 0) {
        state.integer(keys.coarse_tune, zone.coarse_tune);
    }
    if (zone.fine_tune != 0) {
        state.real(keys.fine_tune, static_cast<float>(zone.fine_tune));
    }
    if (!zone.pitch_tracking) {
        state.boolean(keys.pitch_tracking, false);
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
    set_exs_ranges(state, keys, zone.keys, zone.velocities);
    set_crop(state, keys, placed);
    set_loop(state, keys, placed);
    set_exs_level(state, keys, zone.volume, zone.pan);
    set_tuning(state, keys, zone);
    return state.make();
}

} // namespace

std::int64_t exs_waveform(std::size_t sample_number) {
    constexpr std::int64_t first = 0x10000000;
    return first + static_cast<std::int64_t>(sample_number);
}

StateValue exs_zones_state(const StateKeys& keys, const std::vector<ExsPlacedZone>& zones) {
    std::vector<StateValue> states;
    states.reserve(zones.size());
    for (const ExsPlacedZone& zone : zones) {
        states.push_back(zone_state(keys, zone, states.size()));
    }
    return state_array(states);
}

void set_exs_ranges(StateDictionary& state, const StateKeys& keys, ExsRange notes,
                    ExsRange velocities) {
    set_range(state, notes, keys.min_key, keys.max_key);
    set_range(state, velocities, keys.min_velocity, keys.max_velocity);
}

void set_exs_level(StateDictionary& state, const StateKeys& keys, int volume, int pan) {
    if (volume != 0) {
        state.real(keys.gain, static_cast<float>(volume));
    }
    if (pan != 0) {
        state.real(keys.pan, exs_pan(pan));
    }
}

} // namespace lumo::platform
