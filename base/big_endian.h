// Reads big-endian numbers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumo {

/// The number in `width` bytes at `bytes`, which must be readable; only the last eight are
/// significant.
inline std::uint64_t read_big_endian(const std::uint8_t* bytes, std::size_t width) noexcept {
    if (width == 2) { // by far the most common width of references in binary property lists
        return static_cast<std::uint64_t>(bytes[0] << 8 | bytes[1]);
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

} // namespace lumo
