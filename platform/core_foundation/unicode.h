// Conversion from UTF-8 to UTF-16.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace lumo::platform {

/// Whether every byte is below 0x80.
bool is_ascii(std::string_view text) noexcept;
/// The number of UTF-16 units of the text; nothing when it is not valid UTF-8 (overlong forms,
/// surrogates, values above U+10FFFF, truncated sequences).
std::optional<std::size_t> utf16_length(std::string_view utf8) noexcept;
/// Converts valid UTF-8 text to UTF-16; `units` must have room for utf16_length(utf8) units.
void write_utf16(std::string_view utf8, char16_t* units) noexcept;

} // namespace lumo::platform
