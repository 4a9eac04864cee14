// UTF-8 text: its characters, one at a time, and whether bytes are such text at all. On a Mac no
// function of CoreFoundation answers the latter: it takes the byte A9 for a character of its own.
#pragma once

#include <cstddef>
#include <string_view>

namespace lumo {

/// One character of a text.
struct Utf8Character {
    std::size_t size; ///< In bytes, 1 to 4; 0 when the bytes are no valid UTF-8.
    char32_t value;   ///< Of no meaning when `size` is 0.
};

/// The character that a text, which must not be empty, begins with. Overlong forms, surrogates,
/// characters beyond U+10FFFF and ones that are cut off are not valid.
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

/// Whether all of `text` is valid UTF-8; no text at all is.
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
