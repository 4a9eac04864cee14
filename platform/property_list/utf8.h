// Encodes single characters in UTF-8.
#pragma once

#include <string>

namespace lumo::platform {

/// Whether `c` is a code point other than a surrogate.
constexpr bool is_unicode_scalar(char32_t c) {
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

/// Appends `c`, a Unicode scalar value, to `text`.
inline void append_utf8(std::string& text, char32_t c) {
    const auto tail = [&](unsigned shift) {
        text.push_back(static_cast<char>(0x80 | (c >> shift & 0x3F)));
    };
    if (c < 0x80) {
        text.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        text.push_back(static_cast<char>(0xC0 | c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        text.push_back(static_cast<char>(0xE0 | c >> 12));
        tail(6);
        tail(0);
    } else {
        text.push_back(static_cast<char>(0xF0 | c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace lumo::platform
