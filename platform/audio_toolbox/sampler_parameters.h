// The sampler's parameters and the bytes that class info keeps them in.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// The unit's own controls, not those of its instrument.
struct SamplerParameters {
    float gain = 0;        ///< dB
    float coarse_tune = 0; ///< semitones
    float fine_tune = 0;   ///< cents
    float pan = 0;         ///< -1 to 1

    bool operator==(const SamplerParameters&) const = default;
};

/// The bytes of one record with all four parameters: its head of 12 and 8 for each.
constexpr std::size_t parameter_data_size = 44;

/// `parameters` with what the records in `data` say. Nothing when a record is for a scope that
/// there is not; elements and parameters that there are not are passed over, and so is the rest of
/// data that ends in the middle of a record.
std::optional<SamplerParameters> with_parameter_data(SamplerParameters parameters,
                                                     std::span<const std::uint8_t> data);

/// The one record that holds all parameters.
std::array<std::uint8_t, parameter_data_size> parameter_data(const SamplerParameters& parameters);

} // namespace lumo::platform
