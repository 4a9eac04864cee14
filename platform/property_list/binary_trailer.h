// The frame of a binary property list: its magic, offset table and trailer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// The number in `width` big-endian bytes, of which only the last eight count. They must be there.
inline std::uint64_t read_big_endian(const std::uint8_t* bytes, std::size_t width) {
    if (width == 2) { // by far the most common width of references
        return static_cast<std::uint64_t>(bytes[0] << 8 | bytes[1]);
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

/// What the trailer tells, checked against the file.
struct BinaryTrailer {
    std::size_t offset_width; ///< Bytes of an offset in the table, at least 1.
    std::size_t ref_width;    ///< Bytes of a reference to an object, at least 1.
    std::size_t count;        ///< Number of objects, at least 1.
    std::size_t root;         ///< The root's number, below `count`.
    std::size_t table;        ///< Where the table begins: all objects lie before it.
};

/// The trailer of a binary property list; nothing when `bytes` are none or the file's parts do not
/// fit together. After this every entry of the table can be read and is below `table`.
std::optional<BinaryTrailer> read_binary_trailer(std::span<const std::uint8_t> bytes);

} // namespace lumo::platform
