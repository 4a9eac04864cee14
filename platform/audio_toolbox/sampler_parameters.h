// The sampler's parameters, and their byte format in class info.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// The unit's own controls, not those of the instrument.
struct SamplerParameters {
    float gain = 0;        ///< dB
    float coarse_tune = 0; ///< semitones
    float fine_tune = 0;   ///< cents
    float pan = 0;         ///< -1 to 1

    bool operator==(const SamplerParameters&) const = default;
};

/// The size in bytes of one record with all four parameters: a head of 12, and 8 per parameter.
constexpr std::size_t parameter_data_size = 44;

/// `parameters` updated with the records in `data`. Nothing when a record has an unknown scope;
/// records of unknown elements, unknown parameters, and an incomplete record at the end are
/// ignored.
std::optional<SamplerParameters> with_parameter_data(SamplerParameters parameters,
                                                     std::span<const std::uint8_t> data);

/// One record with all parameters.
std::array<std::uint8_t, parameter_data_size> parameter_data(const SamplerParameters& parameters);

} // namespace lumo::platform
