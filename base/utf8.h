// Decodes and validates UTF-8, one character at a time. CoreFoundation on macOS cannot be used to
// validate: it accepts the single byte A9 as a character.
#pragma once

#include <cstddef>
#include <string_view>

namespace lumo {

/// One decoded character.
struct Utf8Character {
    std::size_t size; ///< In bytes, 1 to 4; 0 when the bytes are not valid UTF-8.
    char32_t value;   ///< Undefined when `size` is 0.
};

/// Decodes the first character of `text`, which must not be empty. Overlong forms, surrogates,
/// values above U+10FFFF and truncated sequences are invalid.
inline Utf8Character first_utf8_character(std::string_view text) noexcept {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80) {
        return {1, byte(0)};
    }
    const std::size_t size = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    const char32_t smallest = size == 4 ? 0x10000 : size == 3 ? 0x800 : 0x80;
    if (byte(0) < 0xC0 || byte(0) >= 0xF8 || text.size() < size) {
        return {0, 0};
    }
    char32_t value = byte(0) & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return {0, 0};
        }
        value = value << 6 | (byte(i) & 0x3FU);
    }
    const bool is_valid =
        value >= smallest && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
    return {is_valid ? size : 0, value};
}

/// Whether all of `text` is valid UTF-8; true for empty text.
inline bool is_utf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t size = first_utf8_character(text).size;
        if (size == 0) {
            return false;
        }
        text.remove_prefix(size);
    }
    return true;
}

} // namespace lumo
