// Converts UTF-8 to UTF-16, one character at a time. Only the ASCII check, which succeeds for
// nearly all text of property lists, works on words.
#include "core_foundation/unicode.h"

#include "base/utf8.h"

#include <cstdint>
#include <cstring>

namespace lumo::platform {

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
        const Utf8Character next = first_utf8_character(utf8);
        if (next.size == 0) {
            return std::nullopt;
        }
        units += next.value < 0x10000 ? 1 : 2;
        utf8.remove_prefix(next.size);
    }
    return units;
}

void write_utf16(std::string_view utf8, char16_t* units) noexcept {
    while (!utf8.empty()) {
        const Utf8Character next = first_utf8_character(utf8);
        if (next.value < 0x10000) {
            *units++ = static_cast<char16_t>(next.value);
        } else {
            *units++ = static_cast<char16_t>(0xD7C0 + (next.value >> 10));
            *units++ = static_cast<char16_t>(0xDC00 | (next.value & 0x3FF));
        }
        utf8.remove_prefix(next.size);
    }
}

} // namespace lumo::platform
