// Shared by the tests over recorded CoreFoundation results: the strings of the records.
#pragma once

#include "base/ref.h"
#include "platform/conformance_table.h"
#include "vectors/vectors.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumo::test {

/// Whether the project's own CoreFoundation is tested. It deliberately differs from some recorded
/// results; any other library must return the recorded result.
inline constexpr bool is_own_core_foundation = LUMO_OWN_COREFOUNDATION != 0;

/// Bytes as lower-case hexadecimal digits, two per byte.
inline std::string to_hex(const std::string& bytes) {
    static const char* digits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex.push_back(digits[byte >> 4]);
        hex.push_back(digits[byte & 15]);
    }
    return hex;
}

/// The value of an encoding named in the records; std::nullopt for one that the platform does not
/// have to offer.
inline std::optional<CFStringEncoding> encoding_named(const std::string& name) {
    static const std::map<std::string, CFStringEncoding> encodings = {
        {"UTF8", kCFStringEncodingUTF8},
        {"ASCII", kCFStringEncodingASCII},
        {"ISOLatin1", kCFStringEncodingISOLatin1},
        {"MacRoman", kCFStringEncodingMacRoman},
        {"WindowsLatin1", kCFStringEncodingWindowsLatin1},
        {"UTF16", kCFStringEncodingUTF16},
        {"UTF16BE", kCFStringEncodingUTF16BE},
        {"UTF16LE", kCFStringEncodingUTF16LE},
        {"Bogus", 0x7FFF0000}};
    const auto found = encodings.find(name);
    return found == encodings.end() ? std::nullopt : std::optional{found->second};
}

/// A string of the UTF-16 units listed in a record.
inline Ref<CFStringRef> string_of_units(const Json& units) {
    std::string bytes;
    for (const auto& unit : units) {
        const auto value = unit.get<unsigned>();
        bytes.push_back(static_cast<char>(value >> 8));
        bytes.push_back(static_cast<char>(value & 0xFF));
    }
    return adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                         static_cast<CFIndex>(bytes.size()),
                                         kCFStringEncodingUTF16BE, false));
}

/// The UTF-16 units of a string.
inline Json units_of(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::vector<UInt8> bytes(static_cast<std::size_t>(2 * length) + 1);
    CFStringGetBytes(string, CFRangeMake(0, length), kCFStringEncodingUTF16BE, 0, false,
                     bytes.data(), 2 * length, nullptr);
    Json units = Json::array();
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        units.push_back(bytes[i] << 8 | bytes[i + 1]);
    }
    return units;
}

} // namespace lumo::test
