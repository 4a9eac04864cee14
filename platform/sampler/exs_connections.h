// The connections of a layer: sources, destinations and amounts of modulation.
#pragma once

#include "sampler/exs_parameters.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::platform {

/// The sampler's codes of sources and destinations. Sources below 128 are MIDI controllers. Codes
/// from `of_layer` on belong to a layer, whose index is in the bits from 8 on.
namespace code {
enum : std::uint32_t {
    none = 0,
    volume_controller = 7,
    pan_controller = 10,
    expression_controller = 11,
    pitch_bend = 224,
    key = 300,
    velocity = 301,
    instrument_lfo_1 = 320,
    instrument_lfo_2 = 321,
    of_layer = 0x10000000,
    layer_lfo = 0x10000000,
    layer_lfo_rate = 0x12A00000, // Hz
    envelope_1 = 0x20000000,
    envelope_2 = 0x20000001,
    envelope_1_attack = 0x22000000, // octaves
    pitch = 0x30B00000,             // cents
    cutoff = 0x41500000,            // cents
    resonance = 0x41600000,         // dB
    gain = 0x50100000,              // dB
    pan = 0x50200000,               // -1 to 1
};

/// The code `number` for another layer; codes below `of_layer` are unchanged.
constexpr std::uint32_t in_layer(std::uint32_t number, std::uint32_t layer) {
    return number < of_layer ? number : number + (layer << 8);
}
/// The maximum number of layers: the codes have bits 8 to 19 for the index.
inline constexpr std::size_t max_layers = 4096;
} // namespace code

/// A connection from `source`, scaled by `control`, to `destination`; the amounts are in the
/// destination's units.
struct ExsConnection {
    enum Transform { linear = 1, concave = 2 };

    int id = 0; ///< unique in the layer
    std::uint32_t source = code::none;
    std::uint32_t destination = code::none;
    std::uint32_t control = code::none; ///< scales the source
    Transform transform = linear;
    bool inverse = false;
    bool has_range = false; ///< from `low` to `high`; else `high` is the scale
    float low = 0;
    float high = 0;
};

/// The connections of layer 0, in the order in which the sampler writes them.
std::vector<ExsConnection> exs_connections(const ExsParameters& parameters);

} // namespace lumo::platform
