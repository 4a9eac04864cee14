// Decodes, validates and encodes UTF-8, one character at a time. CoreFoundation on macOS cannot be
// used to validate: it accepts the single byte A9 as a character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace lumo {

/// Whether `c` is a Unicode scalar value: a code point other than a surrogate.
constexpr bool is_unicode_scalar(char32_t c) noexcept {
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

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
    return {value >= smallest && is_unicode_scalar(value) ? size : 0, value};
}

/// Whether every byte of `text` is below 0x80. Works on words, since it succeeds for nearly all
/// text.
inline bool is_ascii(std::string_view text) noexcept {
    constexpr std::uint64_t high_bits = 0x8080808080808080;
    const char* at = text.data();
    std::size_t left = text.size();
    std::uint64_t word = 0;
    for (; left >= sizeof word; at += sizeof word, left -= sizeof word) {
        std::memcpy(&word, at, sizeof word);
        if ((word & high_bits) != 0) {
            return false;
        }
    }
    word = 0;
    if (left != 0) {
        std::memcpy(&word, at, left);
    }
    return (word & high_bits) == 0;
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

/// Writes the UTF-8 form of `c`, a Unicode scalar value, to `bytes`, which must have room for four.
/// Returns the number of bytes.
inline std::size_t encode_utf8(char32_t c, char* bytes) noexcept {
    const std::size_t size = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    if (size == 1) {
        bytes[0] = static_cast<char>(c);
        return size;
    }
    for (std::size_t i = size - 1; i > 0; --i, c >>= 6) {
        bytes[i] = static_cast<char>(0x80 | (c & 0x3F));
    }
    bytes[0] = static_cast<char>(0xF00U >> size | c);
    return size;
}

/// Appends `c`, a Unicode scalar value, to `text`.
inline void append_utf8(std::string& text, char32_t c) {
    char bytes[4];
    text.append(bytes, encode_utf8(c, bytes));
}

} // namespace lumo
