// The string encodings that the project uses: decodes and encodes string objects.
#pragma once

#include "core_foundation/string.h"

#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// Decodes a string from UTF-8 (one byte order mark at the start is removed), UTF-16 in any byte
/// order (an odd last byte is ignored), ASCII and ISO 8859-1 (decoded alike), windows-1252 or Mac
/// OS Roman. An external representation in kCFStringEncodingUTF16 has the order of its byte order
/// mark, and is big-endian without one. Null for another encoding, and for bytes that are invalid
/// in the encoding; no bytes give an empty string in any encoding.
Owned decode(std::string_view bytes, CFStringEncoding encoding, bool is_external);

/// The number of units converted and of bytes produced.
struct Encoded {
    std::size_t units; ///< UTF-16 units of the string.
    std::size_t bytes;
};

/// Encodes the units [first, last) of a string in UTF-8, UTF-16 in any byte order or ASCII into
/// `room` bytes at `out`, or only counts them when `out` is null. Stops before the first character
/// that does not fit or cannot be encoded; in ASCII, `loss_byte`, unless 0, replaces each such
/// unit. An external representation in kCFStringEncodingUTF16 begins with a byte order mark. Writes
/// nothing in another encoding.
Encoded encode(const String& string, std::size_t first, std::size_t last, CFStringEncoding encoding,
               std::uint8_t loss_byte, bool is_external, std::uint8_t* out,
               std::size_t room) noexcept;

} // namespace lumo::platform
