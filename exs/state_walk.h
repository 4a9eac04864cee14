// The walk through the layers and zones of a sampler state, which all who read one share.
#pragma once

#include "property_list.h"
#include <lumo/state.h>

#include <optional>

namespace lumo::exs {

/// Calls `visit` with each dictionary of an array (null: none); other elements are passed over.
template <typename Visit>
void for_each_dictionary(CFArrayRef array, Visit visit) {
    const CFIndex count = array ? CFArrayGetCount(array) : 0;
    for (CFIndex i = 0; i < count; ++i) {
        const CFTypeRef element = CFArrayGetValueAtIndex(array, i);
        if (CFGetTypeID(element) == CFDictionaryGetTypeID()) {
            visit(static_cast<CFDictionaryRef>(element));
        }
    }
}

/// Calls `visit` with each layer of a state (borrowed); not at all when it has no instrument.
template <typename Visit>
void for_each_layer(const void* state, Visit visit) {
    const auto dictionary = static_cast<CFDictionaryRef>(state);
    if (const CFDictionaryRef instrument = dictionary_of(dictionary, "Instrument")) {
        for_each_dictionary(array_of(instrument, "Layers"), visit);
    }
}

/// The name and the switches of a layer; its counts are zero.
Shape::Layer layer_settings(CFDictionaryRef dictionary);

/// The key and velocity limits of a zone or a layer; nothing when they leave no key or velocity.
std::optional<KeyArea> limits_of(CFDictionaryRef dictionary);

/// Where a zone sounds; nothing when it is off or covers nothing.
std::optional<KeyArea> area_of(CFDictionaryRef zone);

/// Reads a layer: its name and switches into the result, each of its zones counted there, and calls
/// `visit` with the area of each zone that sounds.
template <typename Visit>
Shape::Layer read_layer(CFDictionaryRef dictionary, Visit visit) {
    Shape::Layer layer = layer_settings(dictionary);
    for_each_dictionary(array_of(dictionary, "Zones"), [&](CFDictionaryRef zone) {
        layer.zones += 1;
        layer.looped_zones += integer(zone, "loop enabled", 0) != 0 ? 1 : 0;
        if (const std::optional<KeyArea> area = area_of(zone)) {
            visit(*area);
        }
    });
    return layer;
}

} // namespace lumo::exs
