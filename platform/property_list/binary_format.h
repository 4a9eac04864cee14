// The format of binary property lists. All numbers are big-endian.
//
//     "bplist00"   the magic and a version of two characters
//     objects      each a marker byte, a count in some cases, and its bytes
//     table        the offset of each object in the file
//     trailer      32 bytes: the widths of offsets and references, the number of objects, the
//                  index of the root object, and the offset of the table
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// The high half of a marker byte; the low half is a size or count.
enum class Marker : std::uint8_t {
    single = 0x0,    ///< null, false, true
    integer = 0x1,   ///< 2^n bytes
    real = 0x2,      ///< 2^n bytes, n is 2 or 3
    date = 0x3,      ///< 2^3 bytes
    data = 0x4,      ///< n bytes
    ascii = 0x5,     ///< n bytes
    utf16 = 0x6,     ///< n units
    uid = 0x8,       ///< n + 1 bytes
    array = 0xA,     ///< n references
    set = 0xC,       ///< n references
    dictionary = 0xD ///< n references to keys, then n to values
};

inline constexpr std::uint8_t marker_null = 0x00;
inline constexpr std::uint8_t marker_false = 0x08;
inline constexpr std::uint8_t marker_true = 0x09;
/// The low half of a marker whose count follows as an integer object.
inline constexpr std::uint8_t count_follows = 0xF;

inline constexpr std::size_t binary_header_size = 8;
inline constexpr std::size_t binary_trailer_size = 32;

} // namespace lumo::platform
