// Class info stores parameters as "data", a sequence of records: scope, element, count, then that
// many pairs of a parameter's ID and its value. All fields are 32 bits, big-endian; values are IEEE
// floating-point numbers. The sampler has four parameters, all in the global scope.
#include "audio_toolbox/sampler_parameters.h"

#include "base/big_endian.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace lumo::platform {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t record_head_size = 12;
constexpr std::size_t pair_size = 8;
constexpr std::uint32_t scope_count = 5; ///< global, input, output, group, part

/// In the order of their IDs.
constexpr std::array<std::pair<std::uint32_t, float SamplerParameters::*>, 4> fields{{
    {900, &SamplerParameters::gain},
    {901, &SamplerParameters::coarse_tune},
    {902, &SamplerParameters::fine_tune},
    {903, &SamplerParameters::pan},
}};

std::uint32_t word(Bytes bytes, std::size_t at) {
    return static_cast<std::uint32_t>(read_big_endian(&bytes[at], 4));
}

void set(SamplerParameters& parameters, std::uint32_t number, float value) {
    for (const auto& [known, field] : fields) {
        if (number == known) {
            parameters.*field = value;
        }
    }
}

} // namespace

std::optional<SamplerParameters> with_parameter_data(SamplerParameters parameters, Bytes data) {
    while (data.size() >= record_head_size) {
        const std::uint32_t scope = word(data, 0);
        const std::uint32_t element = word(data, 4);
        const std::size_t count = word(data, 8);
        if (scope >= scope_count) {
            return std::nullopt;
        }
        data = data.subspan(record_head_size);
        const Bytes pairs = data.first(std::min(count, data.size() / pair_size) * pair_size);
        for (std::size_t at = 0; at < pairs.size() && scope == 0 && element == 0; at += pair_size) {
            set(parameters, word(pairs, at), std::bit_cast<float>(word(pairs, at + 4)));
        }
        data = data.subspan(pairs.size()); // less than a pair if the record is truncated
    }
    return parameters;
}

std::array<std::uint8_t, parameter_data_size> parameter_data(const SamplerParameters& parameters) {
    std::array<std::uint8_t, parameter_data_size> data{};
    std::size_t at = 8; // scope and element are 0
    const auto put = [&](std::uint32_t number) {
        for (const int shift : {24, 16, 8, 0}) {
            data.at(at++) = static_cast<std::uint8_t>(number >> shift);
        }
    };
    put(static_cast<std::uint32_t>(fields.size()));
    for (const auto& [number, field] : fields) {
        put(number);
        put(std::bit_cast<std::uint32_t>(parameters.*field));
    }
    return data;
}

} // namespace lumo::platform
