// The structure of a binary property list: magic, offset table and trailer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// The fields of the trailer, checked against the file.
struct BinaryTrailer {
    std::size_t offset_width; ///< Width of an offset in the table in bytes, at least 1.
    std::size_t ref_width;    ///< Width of a reference to an object in bytes, at least 1.
    std::size_t count;        ///< Number of objects, at least 1.
    std::size_t root;         ///< Index of the root object, below `count`.
    std::size_t table;        ///< Offset of the table; all objects are before it.
};

/// The trailer of a binary property list; nothing when `bytes` is not one or its parts are
/// inconsistent. Otherwise every entry of the table is readable and below `table`.
std::optional<BinaryTrailer> read_binary_trailer(std::span<const std::uint8_t> bytes);

} // namespace lumo::platform
