// Reads the values of the layers and zones of a state, with the sampler's own defaults for missing
// values.
#include "state_walk.h"

#include <algorithm>
#include <cstdint>

namespace lumo::exs {
namespace {

constexpr std::int32_t release_trigger = 12; // "trigger mode" of layers that sound on key release

} // namespace

const ShapeKeys& shape_keys() {
    static const ShapeKeys keys;
    return keys;
}

Shape::Layer layer_settings(CFDictionaryRef dictionary) {
    const ShapeKeys& keys = shape_keys();
    Shape::Layer layer;
    layer.name = to_string(value_of<CFStringRef>(dictionary, keys.name));
    layer.controller_chosen = integer(dictionary, keys.selecting_controller, -1) >= 0;
    layer.on_release = integer(dictionary, keys.trigger_mode, 0) == release_trigger;
    return layer;
}

std::optional<KeyArea> limits_of(CFDictionaryRef dictionary) {
    const ShapeKeys& keys = shape_keys();
    KeyArea area;
    area.low_key = std::max(integer(dictionary, keys.min_key, 0), 0);
    area.high_key = std::min(integer(dictionary, keys.max_key, 127), 127);
    area.low_velocity = std::max(integer(dictionary, keys.min_velocity, 0), 1);
    area.high_velocity = std::min(integer(dictionary, keys.max_velocity, 127), 127);
    const bool is_empty = area.low_key > area.high_key || area.low_velocity > area.high_velocity;
    return is_empty ? std::nullopt : std::optional(area);
}

std::optional<KeyArea> area_of(CFDictionaryRef zone) {
    return integer(zone, shape_keys().enabled, 1) == 0 ? std::nullopt : limits_of(zone);
}

} // namespace lumo::exs
