// Creates string objects from the encodings that property lists use.
#include "core_foundation/string.h"

#include "base/utf8.h"
#include "core_foundation/hashing.h"

#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>

namespace lumo::platform {
namespace {

String* allocate(String::Storage storage, std::size_t units) {
    if (units > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error{"string too long"};
    }
    const std::size_t width = storage == String::ascii_storage ? 1 : String::width_of_unit;
    return new (::operator new(sizeof(String) + units * width))
        String{storage, static_cast<std::uint32_t>(units)};
}

char* bytes_of(String* string) noexcept {
    return reinterpret_cast<char*>(string + 1);
}
char16_t* units_of(String* string) noexcept {
    return reinterpret_cast<char16_t*>(string + 1);
}

/// The number of UTF-16 units of the text; nothing when it is not valid UTF-8.
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

/// Converts valid UTF-8 text to UTF-16; `units` must have room for utf16_length(utf8) units.
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

} // namespace

Owned make_string_ascii(std::string_view ascii) {
    String* string = allocate(String::ascii_storage, ascii.size());
    std::copy(ascii.begin(), ascii.end(), bytes_of(string));
    return Owned{string};
}

Owned make_string(std::string_view utf8) {
    if (is_ascii(utf8)) {
        return make_string_ascii(utf8);
    }
    const auto units = utf16_length(utf8);
    if (!units) {
        return nullptr;
    }
    String* string = allocate(String::utf16_storage, *units);
    write_utf16(utf8, units_of(string));
    return Owned{string};
}

Owned make_string_latin1(std::string_view latin1) {
    if (is_ascii(latin1)) {
        return make_string_ascii(latin1);
    }
    String* string = allocate(String::utf16_storage, latin1.size());
    std::transform(latin1.begin(), latin1.end(), units_of(string),
                   [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
    return Owned{string};
}

Owned make_string_utf16(std::u16string_view units) {
    if (std::all_of(units.begin(), units.end(), [](char16_t unit) { return unit < 0x80; })) {
        String* string = allocate(String::ascii_storage, units.size());
        std::transform(units.begin(), units.end(), bytes_of(string),
                       [](char16_t unit) { return static_cast<char>(unit); });
        return Owned{string};
    }
    String* string = allocate(String::utf16_storage, units.size());
    std::copy(units.begin(), units.end(), units_of(string));
    return Owned{string};
}

bool equal_strings(const String& a, const String& b) noexcept {
    return a.detail == b.detail && !hashes_differ(a.hash_cache, b.hash_cache) &&
           a.bytes() == b.bytes();
}

std::uint32_t hash_string(const String& string) noexcept {
    const std::string_view bytes = string.bytes();
    return cached_hash(string.hash_cache, bytes.data(), bytes.size());
}

} // namespace lumo::platform
