// Strings: the characters follow the header in the same allocation, as ASCII bytes or UTF-16 units.
#pragma once

#include "core_foundation/object.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lumo::platform {

/// An immutable string. Stored as ASCII whenever every character is below 0x80, otherwise as UTF-16
/// (lone surrogates are kept), so equal strings have equal storage.
struct String : Object {
    enum Storage : std::uint8_t { ascii_storage, utf16_storage };

    String(Storage storage, std::uint32_t units)
        : Object{Kind::string, storage}, hash_cache{0}, length{units} {}

    bool is_ascii() const noexcept { return detail == ascii_storage; }
    /// The characters of an ASCII string.
    std::string_view ascii() const noexcept {
        return {reinterpret_cast<const char*>(this + 1), length};
    }
    /// The units of a UTF-16 string.
    std::u16string_view utf16() const noexcept {
        return {reinterpret_cast<const char16_t*>(this + 1), length};
    }

    /// The unit at an index below `length`.
    char16_t unit(std::size_t index) const noexcept {
        return is_ascii() ? static_cast<char16_t>(ascii()[index]) : utf16()[index];
    }
    /// The stored bytes of the characters.
    std::string_view bytes() const noexcept {
        return {reinterpret_cast<const char*>(this + 1),
                is_ascii() ? length : length * width_of_unit};
    }

    static constexpr std::size_t width_of_unit = sizeof(char16_t);

    mutable std::atomic<std::uint32_t> hash_cache; ///< 0 until the hash is computed.
    std::uint32_t length;                          ///< In UTF-16 units.
};

/// A string from UTF-8 text; null when the text is not valid UTF-8. A leading U+FEFF is kept.
/// Throws std::length_error beyond 2^32 - 1 UTF-16 units, as do the other string factories.
Owned make_string(std::string_view utf8);
/// A string from ASCII text. The bytes are not checked.
Owned make_string_ascii(std::string_view ascii);
/// A string from ISO 8859-1 text.
Owned make_string_latin1(std::string_view latin1);
/// A string from UTF-16 units in native byte order.
Owned make_string_utf16(std::u16string_view units);

/// Whether two strings have the same units.
bool equal_strings(const String& a, const String& b) noexcept;
/// A hash of the units, cached in the string.
std::uint32_t hash_string(const String& string) noexcept;

} // namespace lumo::platform
