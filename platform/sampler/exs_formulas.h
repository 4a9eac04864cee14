// From the parameters of an EXS24 instrument to what the sampler counts in: seconds, Hz, dB.
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

/// The envelope of the amplifier and the second one, which the matrix can use.
std::array<ExsEnvelope, 2> exs_envelopes(const ExsParameters& parameters);

/// The envelope of the amplifier, `amp` being the instrument's, for the zones of a group.
ExsEnvelope exs_group_envelope(ExsEnvelope amp, const ExsGroup& group);

/// The pan of a zone or a group as the sampler has it, in percent. It keeps it as a part of 1, so
/// most values come back with the rounding error of that.
float exs_pan(int percent);

/// Hz, 20 to 20000.
float exs_cutoff(const ExsParameters& parameters);
/// dB.
float exs_resonance(const ExsParameters& parameters);
/// The rate in Hz of an LFO with this rate parameter; nothing when it stands still.
std::optional<float> exs_lfo_rate(int parameter);

} // namespace lumo::platform
