// The formulas were fitted to states that the real sampler wrote for existing instruments, exact to
// the last bit in single precision; this depends on the order of operations.
#include "sampler/exs_formulas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lumo::platform {
namespace {

/// Maps 0..127 to 0..`max` seconds by a fourth power. The power is rounded to single precision
/// once, since the square of a float is exact in a double.
float seconds(int value, float max) {
    const double part = static_cast<float>(value) / 127.0F;
    const double square = part * part;
    return max * static_cast<float>(square * square);
}

float seconds_of(std::int64_t milliseconds) {
    return static_cast<float>(milliseconds) / 1000.0F;
}

float level(int value) {
    return static_cast<float>(value) / 127.0F;
}

constexpr float max_attack = 10;
constexpr float max_amp_stage = 40;
constexpr float max_stage = 10;

ExsEnvelope amp_envelope(const ExsParameters& parameters) {
    return {
        .attack = seconds(parameters.value(ExsParameter::amp_attack), max_attack),
        .decay = seconds(parameters.value(ExsParameter::amp_decay), max_amp_stage),
        .sustain = level(parameters.value(ExsParameter::amp_sustain)),
        .release = seconds(parameters.value(ExsParameter::amp_release), max_amp_stage),
    };
}

/// The instrument's times are those of a full-scale change; the sampler's are those of the
/// remaining change, above or below the sustain level.
ExsEnvelope second_envelope(const ExsParameters& parameters) {
    const float sustain = level(parameters.value(ExsParameter::envelope_2_sustain));
    const float decay = seconds(parameters.value(ExsParameter::envelope_2_decay), max_stage);
    const float release = seconds(parameters.value(ExsParameter::envelope_2_release), max_stage);
    return {
        .attack = seconds(parameters.value(ExsParameter::envelope_2_attack), max_attack),
        .decay = sustain < 1 ? decay / (1 - sustain) : 0,
        .sustain = sustain,
        .release = sustain > 0 ? release / sustain : release,
    };
}

} // namespace

std::array<ExsEnvelope, 2> exs_envelopes(const ExsParameters& parameters) {
    return {amp_envelope(parameters), second_envelope(parameters)};
}

ExsEnvelope exs_group_envelope(ExsEnvelope amp, const ExsGroup& group) {
    amp.attack = std::max(amp.attack + seconds_of(group.attack_offset), 0.0F);
    if (group.on_release && group.release_decay) {
        amp.decay = seconds_of(*group.release_decay);
    }
    return amp;
}

float exs_pan(int percent) {
    return static_cast<float>(percent) / 100.0F * 100.0F;
}

float exs_cutoff(const ExsParameters& parameters) {
    const auto value = static_cast<float>(parameters.value(ExsParameter::filter_cutoff));
    return std::min(20.0F * std::exp2(value / 100.0F), 20000.0F);
}

float exs_resonance(const ExsParameters& parameters) {
    const auto value = static_cast<float>(parameters.value(ExsParameter::filter_resonance));
    return value * 0.001F * 40.0F;
}

std::optional<float> exs_lfo_rate(int parameter) {
    constexpr int off = 34;
    if (parameter == off) {
        return std::nullopt;
    }
    const double rate = 4.8 * std::exp2((parameter - 98) / 12.0);
    return static_cast<float>(std::round(rate * 100) / 100);
}

} // namespace lumo::platform
