// Conversion between UTF-8 and UTF-16, one character at a time; only the test for ASCII, which
// nearly all text of a property list passes, goes by words.
#include "core_foundation/unicode.h"

#include <cstdint>
#include <cstring>

namespace lumo::platform {
namespace {

struct Sequence {
    std::size_t length; ///< In bytes; 0 when the bytes are no valid UTF-8.
    char32_t character;
};

bool is_continuation(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The length that a first byte announces and the smallest character of that length.
Sequence announced(unsigned char first) noexcept {
    if (first < 0x80) {
        return {1, 0};
    }
    if (first >= 0xC2 && first < 0xE0) {
        return {2, 0x80};
    }
    if (first >= 0xE0 && first < 0xF0) {
        return {3, 0x800};
    }
    return {first >= 0xF0 && first < 0xF5 ? 4U : 0U, 0x10000};
}

Sequence read_character(std::string_view text) noexcept {
    const auto first = static_cast<unsigned char>(text.front());
    const Sequence form = announced(first);
    if (form.length <= 1) {
        return {form.length, first};
    }
    if (text.size() < form.length) {
        return {0, 0};
    }
    char32_t character = first & (0x7FU >> form.length);
    for (std::size_t i = 1; i < form.length; ++i) {
        if (!is_continuation(text[i])) {
            return {0, 0};
        }
        character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    const bool valid = character >= form.character && character <= 0x10FFFF &&
                       (character < 0xD800 || character > 0xDFFF);
    return {valid ? form.length : 0, character};
}

} // namespace

bool is_ascii(std::string_view text) noexcept {
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

std::optional<std::size_t> utf16_length(std::string_view utf8) noexcept {
    std::size_t units = 0;
    while (!utf8.empty()) {
        const Sequence next = read_character(utf8);
        if (next.length == 0) {
            return std::nullopt;
        }
        units += next.character < 0x10000 ? 1 : 2;
        utf8.remove_prefix(next.length);
    }
    return units;
}

void write_utf16(std::string_view utf8, char16_t* units) noexcept {
    while (!utf8.empty()) {
        const Sequence next = read_character(utf8);
        if (next.character < 0x10000) {
            *units++ = static_cast<char16_t>(next.character);
        } else {
            *units++ = static_cast<char16_t>(0xD7C0 + (next.character >> 10));
            *units++ = static_cast<char16_t>(0xDC00 | (next.character & 0x3FF));
        }
        utf8.remove_prefix(next.length);
    }
}

} // namespace lumo::platform
