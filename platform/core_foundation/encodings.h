// The string encodings that the project uses: decoding into string objects, encoding out of them.
#pragma once

#include "core_foundation/string.h"

#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// A string of bytes in UTF-8 (one byte order mark at the start is left out), UTF-16 in any order
/// (an odd last byte is left out), ASCII and ISO 8859-1 (read alike), windows-1252 or Mac OS Roman.
/// An external representation in kCFStringEncodingUTF16 heeds a byte order mark and is big-endian
/// without one. Null for another encoding and for bytes that the encoding does not define; no bytes
/// at all are an empty string in any encoding.
Owned decode(std::string_view bytes, CFStringEncoding encoding, bool is_external);

/// The character of a byte in windows-1252; 0 for the bytes 81, 8D, 8F, 90 and 9D, which it does
/// not define.
char16_t from_windows_1252(unsigned char byte) noexcept;

/// How far a conversion got.
struct Encoded {
    std::size_t units; ///< Of the string, in UTF-16 units.
    std::size_t bytes;
};

/// Writes the units [first, last) of a string in UTF-8, UTF-16 in any order or ASCII to `room`
/// bytes at `out`, or only counts when `out` is null. Stops before the first character that has no
/// room or cannot be encoded; in ASCII `loss_byte`, unless 0, then stands in for each unit. An
/// external representation in kCFStringEncodingUTF16 begins with a byte order mark. Writes nothing
/// in another encoding.
Encoded encode(const String& string, std::size_t first, std::size_t last, CFStringEncoding encoding,
               std::uint8_t loss_byte, bool is_external, std::uint8_t* out,
               std::size_t room) noexcept;

} // namespace lumo::platform
