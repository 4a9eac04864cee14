// Parameter IDs are the same in all versions of EXS24; newer versions only added some. Files omit
// parameters at their defaults, and the whole chunk when all are. These defaults differ from the
// settings of a new instrument in the output volume (0 dB, not -6).
//
// The matrix is in two ranges of IDs. Each of the first ten slots has six consecutive IDs
// (destination, source, via, two amounts, inverted via), with the inversion of the source and the
// bypass in separate ranges; the other ten have eight consecutive IDs each.
#include "sampler/exs_parameters.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace lumo::platform {
namespace {

struct Range {
    ExsParameter parameter;
    std::int16_t default_value;
    std::int16_t min;
    std::int16_t max;
};

constexpr std::array ranges{
    Range{ExsParameter::bend_up, 2, 0, 127},
    Range{ExsParameter::bend_down, -1, -1, 127},
    Range{ExsParameter::polyphony, 16, 1, 1024},
    Range{ExsParameter::output_volume, 0, -96, 24},
    Range{ExsParameter::volume_key_scale, 0, -96, 96},
    Range{ExsParameter::filter_resonance, 0, 0, 1000},
    Range{ExsParameter::filter_cutoff, 1000, 0, 1000},
    Range{ExsParameter::filter_on, 0, 0, 1},
    Range{ExsParameter::filter_key_track, 0, -1000, 1000},
    Range{ExsParameter::lfo_1_rate, 98, 0, 127},
    Range{ExsParameter::lfo_2_rate, 98, 0, 127},
    Range{ExsParameter::lfo_3_rate, 98, 0, 127},
    Range{ExsParameter::envelope_2_attack, 0, 0, 127},
    Range{ExsParameter::envelope_2_decay, 0, 0, 127},
    Range{ExsParameter::envelope_2_sustain, 0, 0, 127},
    Range{ExsParameter::envelope_2_release, 0, 0, 127},
    Range{ExsParameter::amp_sustain, 127, 0, 127},
    Range{ExsParameter::amp_attack, 0, 0, 127},
    Range{ExsParameter::amp_attack_soft, 0, 0, 127},
    Range{ExsParameter::amp_decay, 0, 0, 127},
    Range{ExsParameter::amp_release, 0, 0, 127},
    Range{ExsParameter::level_by_velocity, -60, -96, 0},
};

/// The IDs of one slot of the matrix.
struct SlotIds {
    std::size_t first; ///< destination, source, via, low, high, consecutive
    std::size_t via_inverted;
    std::size_t source_inverted;
    std::size_t bypassed;
};

constexpr SlotIds slot_ids(int slot) {
    const auto n = static_cast<std::size_t>(slot);
    if (slot < 10) {
        const std::size_t first = 173 + 6 * n;
        return {first, first + 5, 233 + n, 244 + n};
    }
    const std::size_t first = 411 + 8 * (n - 10);
    return {first, first + 6, first + 5, first + 7};
}

/// The defaults of the first two slots: envelope 2 modulates the cutoff (with amount 0), LFO 1 the
/// pitch, scaled by the modulation wheel.
constexpr std::array<std::array<std::int16_t, 5>, 2> default_slots{
    {{8, -14, -1, 0, 0}, {6, -12, 1, 0, 343}}};

} // namespace

ExsParameters::ExsParameters() {
    for (const Range& range : ranges) {
        values_[static_cast<std::size_t>(range.parameter)] = range.default_value;
    }
    for (int slot = 0; slot < slot_count; ++slot) {
        const std::size_t first = slot_ids(slot).first;
        values_[first + 2] = -1;
        if (static_cast<std::size_t>(slot) < default_slots.size()) {
            std::ranges::copy(default_slots[static_cast<std::size_t>(slot)],
                              values_.begin() + static_cast<std::ptrdiff_t>(first));
        }
    }
}

void ExsParameters::set(std::uint16_t id, std::int16_t value) {
    if (id >= values_.size()) {
        return;
    }
    const auto* range = std::ranges::find(ranges, ExsParameter{id}, &Range::parameter);
    values_[id] = range == ranges.end() ? value : std::clamp(value, range->min, range->max);
}

ExsModulation ExsParameters::modulation(int slot) const {
    const SlotIds ids = slot_ids(slot);
    ExsModulation result{
        .destination = at(ids.bypassed) != 0 ? 0 : at(ids.first),
        .source = at(ids.first + 1),
        .via = at(ids.first + 2),
        .low = std::clamp(at(ids.first + 3), -1000, 1000),
        .high = std::clamp(at(ids.first + 4), -1000, 1000),
        .inverted = at(ids.source_inverted) != 0,
    };
    if (at(ids.via_inverted) != 0) {
        std::swap(result.low, result.high);
    }
    return result;
}

} // namespace lumo::platform
