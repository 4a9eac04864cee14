// Iterates over the layers and zones of a sampler state; shared by all code that reads states.
#pragma once

#include "property_list.h"
#include <lumo/state.h>

#include <optional>

namespace lumo::exs {

/// The keys of a state that its shape depends on.
struct ShapeKeys {
    Key enabled = "enabled";
    Key instrument = "Instrument";
    Key layers = "Layers";
    Key loop_enabled = "loop enabled";
    Key max_key = "max key";
    Key max_velocity = "max vel";
    Key min_key = "min key";
    Key min_velocity = "min vel";
    Key name = "name";
    Key selecting_controller = "sel ctrlr";
    Key trigger_mode = "trigger mode";
    Key zones = "Zones";
};

/// These keys, made once: a state has thousands of values for each of them.
const ShapeKeys& shape_keys();

/// Calls `visit` with each dictionary of an array (null: none); other elements are skipped.
template <typename Visit>
void for_each_dictionary(CFArrayRef array, Visit visit) {
    const CFIndex count = array ? CFArrayGetCount(array) : 0;
    for (CFIndex i = 0; i < count; ++i) {
        if (const auto element = value_as<CFDictionaryRef>(CFArrayGetValueAtIndex(array, i))) {
            visit(element);
        }
    }
}

/// Calls `visit` with each layer of a state (borrowed); never when it has no instrument.
template <typename Visit>
void for_each_layer(const void* state, Visit visit) {
    const ShapeKeys& keys = shape_keys();
    const auto dictionary = static_cast<CFDictionaryRef>(state);
    if (const CFDictionaryRef instrument = value_of<CFDictionaryRef>(dictionary, keys.instrument)) {
        for_each_dictionary(value_of<CFArrayRef>(instrument, keys.layers), visit);
    }
}

/// The name and the flags of a layer; its counts are zero.
Shape::Layer layer_settings(CFDictionaryRef dictionary);

/// The key and velocity limits of a zone or a layer; nothing when the range is empty.
std::optional<KeyArea> limits_of(CFDictionaryRef dictionary);

/// The area of a zone; nothing when the zone is disabled or its area is empty.
std::optional<KeyArea> area_of(CFDictionaryRef zone);

/// Returns a layer with its name, flags and zone counts, and calls `visit` with the area of each
/// enabled zone whose area is not empty.
template <typename Visit>
Shape::Layer read_layer(CFDictionaryRef dictionary, Visit visit) {
    const ShapeKeys& keys = shape_keys();
    Shape::Layer layer = layer_settings(dictionary);
    for_each_dictionary(value_of<CFArrayRef>(dictionary, keys.zones), [&](CFDictionaryRef zone) {
        layer.zones += 1;
        layer.looped_zones += integer(zone, keys.loop_enabled, 0) != 0 ? 1 : 0;
        if (const std::optional<KeyArea> area = area_of(zone)) {
            visit(*area);
        }
    });
    return layer;
}

} // namespace lumo::exs
