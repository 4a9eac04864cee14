// Reads the single objects of a binary property list.
#pragma once

#include "base/big_endian.h"
#include "core_foundation/object.h"
#include "property_list/binary_format.h"
#include "property_list/binary_trailer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// A sequence of elements of equal size in the file: characters, bytes or references.
struct Extent {
    std::size_t at;
    std::size_t count;
};

/// Reads single objects of a file whose trailer is valid. Offsets are those of markers and must be
/// below the table of offsets.
class BinaryObjects {
public:
    /// Strings, data and containers may take `budget` bytes of the file in total. `bytes` is
    /// borrowed.
    BinaryObjects(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer,
                  std::size_t budget)
        : bytes_{bytes}, table_{trailer.table}, budget_{budget} {}

    Marker marker(std::size_t offset) const { return static_cast<Marker>(bytes_[offset] >> 4); }
    std::uint64_t number(std::size_t at, std::size_t width) const {
        return read_big_endian(&bytes_[at], width);
    }

    /// The elements after the marker at `offset`; their count is in the marker or in the integer
    /// that follows it, and each has `width` bytes. Nothing when they do not fit before the table,
    /// or exceed the budget.
    std::optional<Extent> extent(std::size_t offset, std::size_t width);

    /// The object at `offset`; null for a container and for objects that CoreFoundation rejects.
    Owned read_leaf(std::size_t offset);

private:
    Owned read_single(std::size_t offset) const;
    Owned read_integer(std::size_t offset) const;
    Owned read_real(std::size_t offset) const;
    Owned read_date(std::size_t offset) const;
    Owned read_uid(std::size_t offset) const;
    Owned read_data(std::size_t offset);
    Owned read_ascii(std::size_t offset);
    Owned read_utf16(std::size_t offset);

    std::uint8_t low_half(std::size_t offset) const { return bytes_[offset] & 0xF; }
    std::size_t room_after(std::size_t offset) const { return table_ - offset - 1; }

    std::span<const std::uint8_t> bytes_;
    std::size_t table_;  ///< Offset of the table of offsets.
    std::size_t budget_; ///< Number of bytes that further objects may take.
};

} // namespace lumo::platform
