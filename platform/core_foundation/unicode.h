// UTF-8 and UTF-16.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace lumo::platform {

/// Whether every byte is below 0x80.
bool is_ascii(std::string_view text) noexcept;
/// The number of UTF-16 units that the text takes; nothing when it is not valid UTF-8 (overlong
/// forms, surrogates, beyond U+10FFFF or cut off).
std::optional<std::size_t> utf16_length(std::string_view utf8) noexcept;
/// Writes text known to be valid UTF-8 as UTF-16 units.
void write_utf16(std::string_view utf8, char16_t* units) noexcept;

} // namespace lumo::platform
