// The key areas of an instrument's layers. A layer's limits apply to each of its zones.
#include "preset_file.h"
#include "state_walk.h"
#include <lumo/state.h>

#include <algorithm>
#include <utility>

namespace lumo::exs {
namespace {

/// The intersection of two areas; nothing when it is empty.
std::optional<KeyArea> common_area(const KeyArea& one, const KeyArea& other) {
    const KeyArea both = {std::max(one.low_key, other.low_key),
                          std::min(one.high_key, other.high_key),
                          std::max(one.low_velocity, other.low_velocity),
                          std::min(one.high_velocity, other.high_velocity)};
    const bool is_empty = both.low_key > both.high_key || both.low_velocity > both.high_velocity;
    return is_empty ? std::nullopt : std::optional(both);
}

} // namespace

std::vector<LayerAreas> key_areas(const void* state) {
    std::vector<LayerAreas> layers;
    for_each_layer(state, [&](CFDictionaryRef dictionary) {
        const std::optional<KeyArea> limits = limits_of(dictionary);
        std::vector<KeyArea> areas;
        Shape::Layer layer = read_layer(dictionary, [&](const KeyArea& zone) {
            const std::optional<KeyArea> area = limits ? common_area(zone, *limits) : std::nullopt;
            if (area) {
                areas.push_back(*area);
            }
        });
        layers.push_back({std::move(layer), std::move(areas)});
    });
    return layers;
}

std::optional<std::vector<LayerAreas>> key_areas_of_file(const std::string& path) {
    const Ref<CFDictionaryRef> state = read_dictionary(path);
    return state ? std::optional(key_areas(state.get())) : std::nullopt;
}

} // namespace lumo::exs
