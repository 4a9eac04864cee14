// The shape of a sampler state: the zones of its layers, the keys they cover, and the overlap of
// the layers that sound on every note.
#include "coverage.h"
#include "state_walk.h"
#include <lumo/state.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace lumo::exs {
namespace {

void extend_key_range(Shape& shape, const Coverage& coverage) {
    for (std::int32_t key = 0; key < 128; ++key) {
        if (coverage[static_cast<std::size_t>(key)] != 0) {
            shape.lowest_key = std::min(shape.lowest_key, key);
            shape.highest_key = std::max(shape.highest_key, key);
        }
    }
}

void describe_stacking(Shape& shape, const Stacking& stacking) {
    shape.max_stack = std::max(shape.max_stack, stacking.highest);
    if (stacking.covered > 0) {
        shape.stacked_percent =
            static_cast<double>(stacking.stacked) * 100.0 / static_cast<double>(stacking.covered);
    }
}

} // namespace

Shape describe(const void* state) {
    Shape shape;
    CoverageCounter counter;
    for_each_layer(state, [&](CFDictionaryRef dictionary) {
        Coverage coverage{};
        Shape::Layer layer = read_layer(dictionary, [&](const KeyArea& area) {
            cover(coverage, area.low_key, area.high_key, area.low_velocity, area.high_velocity);
        });
        shape.zones += layer.zones;
        if (!layer.controller_chosen && !layer.on_release) {
            counter.add(coverage);
        }
        extend_key_range(shape, coverage);
        shape.layers.push_back(std::move(layer));
    });
    describe_stacking(shape, counter.stacking());
    return shape;
}

} // namespace lumo::exs
