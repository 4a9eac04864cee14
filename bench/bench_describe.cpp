// Measuring the shape of a state: counting layers per cell compared with a bit test of each cell
// and layer, and the whole measurement compared with libplist reading the same state.
#include "base/ref.h"
#include "coverage.h"
#include "paired_time.h"
#include "support/plist_io.h"
#include "support/preset_text.h"
#include <lumo/exs.h>

#include <plist/plist.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace lumo::exs;
using namespace lumo::test;
using lumo::Ref;

/// Layers as in velocity-split instruments: a zone for every few keys.
std::vector<Coverage> make_layers(std::size_t count) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> keys(1, 12);
    std::uniform_int_distribution<int> velocities(1, 127);
    std::vector<Coverage> layers(count);
    for (Coverage& layer : layers) {
        for (int key = 0; key < 128;) {
            const int high_key = std::min(key + keys(random), 127);
            const auto [low, high] = std::minmax({velocities(random), velocities(random)});
            cover(layer, key, high_key, low, high);
            key = high_key + 1;
        }
    }
    return layers;
}

Stacking count_upright(const std::vector<Coverage>& layers) {
    CoverageCounter counter;
    for (const Coverage& layer : layers) {
        counter.add(layer);
    }
    return counter.stacking();
}

Stacking count_bit_by_bit(const std::vector<Coverage>& layers) {
    Stacking result;
    for (std::size_t key = 0; key < 128; ++key) {
        for (int bit = 0; bit < 64; ++bit) {
            std::int32_t count = 0;
            for (const Coverage& layer : layers) {
                count += (layer[key] >> bit & 1) != 0 ? 1 : 0;
            }
            result.covered += count >= 1 ? 1 : 0;
            result.stacked += count >= 2 ? 1 : 0;
            result.highest = std::max(result.highest, count);
        }
    }
    return result;
}

void compare_counting(std::size_t count, const char* goal, int rounds) {
    const std::vector<Coverage> layers = make_layers(count);
    const std::string name = "describe's counting, " + std::to_string(count) + " layers";
    lumo::bench::compare(
        name.c_str(), goal, rounds, [&] { lumo::bench::keep(count_upright(layers)); },
        [&] { lumo::bench::keep(count_bit_by_bit(layers)); });
}

void compare_describing(const char* form, int zones, const Ref<CFPropertyListRef>& state,
                        const Ref<CFDataRef>& binary, int rounds) {
    const auto* bytes = reinterpret_cast<const char*>(CFDataGetBytePtr(binary.get()));
    const auto size = static_cast<std::uint32_t>(CFDataGetLength(binary.get()));
    const std::string name =
        "describe, 2 layers of " + std::to_string(zones) + " zones read from " + form;
    lumo::bench::compare(
        name.c_str(), "0.3 of libplist reading it", rounds,
        [&] { lumo::bench::keep(describe(state.get())); },
        [&] {
            plist_t list = nullptr;
            plist_from_bin(bytes, size, &list);
            plist_free(list);
        });
}

void compare_describing(int zones, int rounds) {
    const Ref<CFPropertyListRef> from_xml = list_of(large_state_text(zones));
    const Ref<CFDataRef> binary = binary_form(from_xml.get());
    const Ref<CFPropertyListRef> from_binary = list_of(binary.get());
    compare_describing("XML", zones, from_xml, binary, rounds);
    compare_describing("binary", zones, from_binary, binary, rounds);
}

} // namespace

int main(int count, char** arguments) {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    compare_counting(16, "0.067 (15 times faster)", small ? 3 : 15);
    compare_counting(256, "0.020 (50 times faster)", small ? 3 : 15);
    compare_describing(small ? 100 : 2000, small ? 3 : 15);
}
