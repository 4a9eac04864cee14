// The shape of a sampler state: how many zones its layers have, which keys they cover, and how
// much the layers that sound on every note lie on top of one another.
#include "coverage.h"
#include "property_list.h"
#include <lumo/exs.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace lumo::exs {
namespace {

constexpr std::int32_t release_trigger = 12; // "trigger mode" of a layer that sounds on release

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

void describe_zone(CFDictionaryRef zone, Shape::Layer& layer, Coverage& coverage) {
    layer.zones += 1;
    layer.looped_zones += integer(zone, "loop enabled", 0) != 0 ? 1 : 0;
    if (integer(zone, "enabled", 1) == 0) {
        return;
    }
    const std::int32_t low_key = std::max(integer(zone, "min key", 0), 0);
    const std::int32_t high_key = std::min(integer(zone, "max key", 127), 127);
    const std::int32_t low_velocity = std::max(integer(zone, "min vel", 0), 1);
    const std::int32_t high_velocity = std::min(integer(zone, "max vel", 127), 127);
    if (low_key <= high_key && low_velocity <= high_velocity) {
        cover(coverage, low_key, high_key, low_velocity, high_velocity);
    }
}

Shape::Layer describe_layer(CFDictionaryRef dictionary, Coverage& coverage) {
    Shape::Layer layer;
    layer.name = to_string(string_of(dictionary, "name"));
    layer.controller_chosen = integer(dictionary, "sel ctrlr", -1) >= 0;
    layer.on_release = integer(dictionary, "trigger mode", 0) == release_trigger;
    for_each_dictionary(array_of(dictionary, "Zones"),
                        [&](CFDictionaryRef zone) { describe_zone(zone, layer, coverage); });
    return layer;
}

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
    const CFDictionaryRef instrument =
        dictionary_of(static_cast<CFDictionaryRef>(state), "Instrument");
    if (!instrument) {
        return shape;
    }
    CoverageCounter counter;
    for_each_dictionary(array_of(instrument, "Layers"), [&](CFDictionaryRef dictionary) {
        Coverage coverage{};
        Shape::Layer layer = describe_layer(dictionary, coverage);
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
