// Converts the parameters of an EXS24 instrument to the sampler's units: seconds, Hz, dB.
#pragma once

#include "sampler/exs_instrument.h"
#include "sampler/exs_parameters.h"

#include <array>
#include <optional>

namespace lumo::platform {

/// Times in seconds, the level from 0 to 1. Delay and hold are always 0.
struct ExsEnvelope {
    float attack = 0;
    float decay = 0;
    float sustain = 0;
    float release = 0;

    bool operator==(const ExsEnvelope&) const = default;
};

/// The envelope of the amplifier, and the second envelope, which is available to the modulation
/// matrix.
std::array<ExsEnvelope, 2> exs_envelopes(const ExsParameters& parameters);

/// The envelope of the amplifier for the zones of a group; `amp` is the instrument's.
ExsEnvelope exs_group_envelope(ExsEnvelope amp, const ExsGroup& group);

/// The pan of a zone or a group as the sampler stores it, in percent. The sampler computes it as a
/// fraction of 1, so most values have a rounding error.
float exs_pan(int percent);

/// The cutoff frequency, 20 to 20000 Hz.
float exs_cutoff(const ExsParameters& parameters);
/// The resonance in dB.
float exs_resonance(const ExsParameters& parameters);
/// The rate in Hz of an LFO with this rate parameter; nothing when the LFO is not running.
std::optional<float> exs_lfo_rate(int parameter);

} // namespace lumo::platform
