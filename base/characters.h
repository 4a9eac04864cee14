// Kinds of ASCII characters. Unlike the C library's functions these do not depend on the locale.
#pragma once

namespace lumo {

constexpr bool is_digit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/// The lower-case form of an ASCII letter; any other character unchanged.
constexpr char to_lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool is_letter(char c) noexcept {
    return to_lower(c) >= 'a' && to_lower(c) <= 'z';
}

} // namespace lumo
