// Inspects a sampler state: the shape of the instrument, and the zones of its layers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumo::exs {

/// Zone and layer statistics of a loaded instrument.
struct Shape {
    /// One layer of the instrument.
    struct Layer {
        std::string name;               ///< UTF-8; empty when the layer has none
        std::int32_t zones = 0;         ///< number of zones, enabled or not
        std::int32_t looped_zones = 0;  ///< zones with loop enabled, disabled zones included
        bool controller_chosen = false; ///< a controller selects the layer
        bool on_release = false;        ///< the layer sounds on key release
    };

    std::vector<Layer> layers;
    std::int32_t zones = 0;        ///< sum of the layers' zones
    std::int32_t max_stack = 1;    ///< maximum number of layers on one cell; at least 1
    double stacked_percent = 0.0;  ///< share of covered cells with two or more layers, 0 to 100
    std::int32_t lowest_key = 127; ///< MIDI key; 127 when no key is covered
    std::int32_t highest_key = 0;  ///< MIDI key; 0 when no key is covered
};

/// The shape of a sampler state (a CFDictionaryRef, borrowed). A state without the expected
/// structure has the default shape.
Shape describe(const void* state);

/// A range of keys (0 to 127) and velocities (1 to 127); both ends are inclusive.
struct KeyArea {
    std::int32_t low_key = 0;
    std::int32_t high_key = 127;
    std::int32_t low_velocity = 1;
    std::int32_t high_velocity = 127;

    friend bool operator==(const KeyArea&, const KeyArea&) = default;
};

/// A layer and the key areas of its zones.
struct LayerAreas {
    Shape::Layer layer;
    std::vector<KeyArea> areas; ///< one for each zone that can sound, in the state's order
};

/// The layers of a sampler state (a CFDictionaryRef, borrowed) with the areas of their zones,
/// clipped to the limits of the layer. A zone that is disabled, or whose clipped area is empty, has
/// no area. Empty for a state without the expected structure.
std::vector<LayerAreas> key_areas(const void* state);

/// As key_areas, for the state in the file at `path`; nothing when the file cannot be read or holds
/// no state.
std::optional<std::vector<LayerAreas>> key_areas_of_file(const std::string& path);

} // namespace lumo::exs
