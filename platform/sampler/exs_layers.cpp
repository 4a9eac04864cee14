// Muting a group mutes its zones; its other limits apply to the layer, and its zones keep their
// own. The sampler numbers the zones of a layer by ascending low key, so they are sorted here, once
// for all layers. Counting sort is used, since there are only 128 keys but possibly very many
// zones.
#include "sampler/exs_layers.h"

#include <array>
#include <cstdint>
#include <numeric>
#include <optional>

namespace lumo::platform {
namespace {

struct GroupedZone {
    std::size_t layer; ///< 0: no group, else group index + 1
    ExsPlacedZone placed;
};

bool empty(ExsRange range) {
    return range.low > range.high;
}

/// Whether a number from the file is a valid index of a list.
template <class T>
bool is_position(std::int32_t number, const std::vector<T>& list) {
    return number >= 0 && static_cast<std::size_t>(number) < list.size();
}

std::optional<GroupedZone> place(const ExsZone& zone, const ExsInstrument& instrument) {
    if (!is_position(zone.sample, instrument.samples) || empty(zone.keys) ||
        empty(zone.velocities)) {
        return std::nullopt;
    }
    const auto sample = static_cast<std::size_t>(zone.sample);
    GroupedZone result{0, {&zone, &instrument.samples[sample], sample, !zone.muted}};
    if (is_position(zone.group, instrument.groups)) {
        const ExsGroup& group = instrument.groups[static_cast<std::size_t>(zone.group)];
        result.layer = 1 + static_cast<std::size_t>(zone.group);
        result.placed.enabled = !zone.muted && !group.muted;
    }
    return result;
}

std::vector<GroupedZone> sorted_by_low_key(const std::vector<GroupedZone>& zones) {
    std::array<std::size_t, 129> first{};
    for (const GroupedZone& zone : zones) {
        ++first[static_cast<std::size_t>(zone.placed.zone->keys.low) + 1];
    }
    std::partial_sum(first.begin(), first.end(), first.begin());
    std::vector<GroupedZone> sorted(zones.size());
    for (const GroupedZone& zone : zones) {
        sorted[first[static_cast<std::size_t>(zone.placed.zone->keys.low)]++] = zone;
    }
    return sorted;
}

} // namespace

std::vector<ExsLayer> exs_layers(const ExsInstrument& instrument) {
    std::vector<GroupedZone> zones;
    std::vector<ExsLayer> candidates(instrument.groups.size() + 1);
    for (const ExsZone& zone : instrument.zones) {
        if (const auto placed = place(zone, instrument)) {
            zones.push_back(*placed);
        }
    }
    for (std::size_t i = 0; i < instrument.groups.size(); ++i) {
        candidates[i + 1].group = &instrument.groups[i];
    }
    for (const GroupedZone& zone : sorted_by_low_key(zones)) {
        candidates[zone.layer].zones.push_back(zone.placed);
    }
    std::erase_if(candidates, [](const ExsLayer& layer) { return layer.zones.empty(); });
    if (candidates.empty()) {
        candidates.emplace_back();
    }
    return candidates;
}

std::vector<std::size_t> exs_used_samples(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers) {
    std::vector<bool> used(instrument.samples.size());
    for (const ExsLayer& layer : layers) {
        for (const ExsPlacedZone& zone : layer.zones) {
            used[zone.sample_number] = true;
        }
    }
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < used.size(); ++i) {
        if (used[i]) {
            numbers.push_back(i);
        }
    }
    return numbers;
}

} // namespace lumo::platform
