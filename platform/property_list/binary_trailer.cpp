// Validates the structure of a binary property list before its objects are read. The reader relies
// on every check.
#include "property_list/binary_trailer.h"

#include "base/big_endian.h"
#include "property_list/binary_format.h"

#include <cstring>

namespace lumo::platform {
namespace {

/// The second digit of the version is ignored.
bool has_magic(std::span<const std::uint8_t> bytes) {
    return bytes.size() > binary_header_size + binary_trailer_size &&
           std::memcmp(bytes.data(), "bplist0", 7) == 0;
}

/// Whether a number of `width` bytes can hold `limit`.
bool reaches(std::size_t width, std::uint64_t limit) {
    return width >= sizeof limit || limit >> (8 * width) == 0;
}

/// Whether the header, at least one byte of objects, the table and the trailer make up exactly the
/// whole file.
bool sizes_match(std::uint64_t size, std::uint64_t table, std::uint64_t count,
                 std::uint64_t offset_width) {
    if (table <= binary_header_size || table >= size - binary_trailer_size) {
        return false;
    }
    const std::uint64_t table_size = size - binary_trailer_size - table;
    return count == table_size / offset_width && table_size % offset_width == 0;
}

bool offsets_precede_table(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer) {
    const std::uint8_t* entry = bytes.data() + trailer.table;
    for (std::size_t i = 0; i < trailer.count; ++i, entry += trailer.offset_width) {
        if (read_big_endian(entry, trailer.offset_width) >= trailer.table) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<BinaryTrailer> read_binary_trailer(std::span<const std::uint8_t> bytes) {
    if (!has_magic(bytes)) {
        return std::nullopt;
    }
    // Five unused bytes, the sort version, the two widths, then three numbers of 8 bytes.
    const std::uint8_t* at = bytes.data() + bytes.size() - binary_trailer_size;
    const BinaryTrailer trailer{.offset_width = at[6],
                                .ref_width = at[7],
                                .count = read_big_endian(at + 8, 8),
                                .root = read_big_endian(at + 16, 8),
                                .table = read_big_endian(at + 24, 8)};
    if (trailer.offset_width == 0 || trailer.ref_width == 0 || trailer.root >= trailer.count ||
        !sizes_match(bytes.size(), trailer.table, trailer.count, trailer.offset_width) ||
        !reaches(trailer.ref_width, trailer.count) ||
        !reaches(trailer.offset_width, trailer.table) || !offsets_precede_table(bytes, trailer)) {
        return std::nullopt;
    }
    return trailer;
}

} // namespace lumo::platform
